// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>

#ifdef __SANITIZE_ADDRESS__
/// What Qt's platform without a screen never gives back is not looked for.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libqoffscreen\nleak:QScreen\nleak:QWindowSystemInterface\nleak:QPlatformScreen\n";
}
#endif

/// Tests of windows need an application, and no screen.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);  // the next test opens another
    return RUN_ALL_TESTS();
}
