// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <qgsapplication.h>
#include <qgsproject.h>

#include <QTemporaryDir>

#ifdef __SANITIZE_ADDRESS__
/// What QGIS, its libraries and Qt's platform without a screen never give back is not looked for.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:QgsClassificationMethodRegistry\nleak:libcrypto\nleak:libqoffscreen\nleak:QScreen\n"
           "leak:QWindowSystemInterface\nleak:QPlatformScreen\n";
}
#endif

/// Tests inside QGIS need its application, a profile that is nobody's, and no screen.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir profile;
    QgsApplication application(argc, argv, true, profile.path());
    QgsApplication::setPrefixPath(KESTREL_QGIS_PREFIX, true);
    QgsApplication::initQgis();
    const int status = RUN_ALL_TESTS();
    QgsProject::instance()->clear();
    QgsApplication::exitQgis();
    return status;
}
