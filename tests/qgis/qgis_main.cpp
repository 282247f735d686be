// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <qgsapplication.h>
#include <qgsproject.h>

#include <QTemporaryDir>

#ifdef __SANITIZE_ADDRESS__
/// QGIS and Qt never give everything back.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
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
