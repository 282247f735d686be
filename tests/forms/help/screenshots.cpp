// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// Makes the pictures of the about box, the help window and the call stack for the user guide: screenshots
/// EXTENSION_FOLDER FOLDER. Needs a screen.

#include <QApplication>
#include <QDialog>
#include <iostream>

#include "forms/desktop/call_stack_window.h"
#include "forms/desktop/qt_interaction.h"
#include "forms/help/frmHelpBrowser2.h"
#include "forms/help/frmISAbout.h"
#include "tests/support/window_pictures.h"

namespace {

void take(QDialog& window, const std::string& path) {
    window.move(40, 40);
    window.show();
    window.activateWindow();
    kestrel::test::take_picture(window, path);
    window.close();
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: screenshots EXTENSION_FOLDER FOLDER\n";
        return 2;
    }
    kestrel::test::use_picture_style();
    kestrel::QtInteraction user;
    const kestrel::reporting::ScopedInteraction scope(user);
    const std::string folder = argv[2];

    kestrel::frmISAbout about(argv[1]);
    take(about, folder + "/about.png");
    kestrel::frmHelpBrowser2 help(argv[1]);
    take(help, folder + "/help.png");
    kestrel::CallStackWindow call_stack(
        "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
        "\tExecuteModel clsISExecuteModel \r\n\tisWriteMetadata clsISExecuteModel Line : 45\r\n"
        "\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n");
    take(call_stack, folder + "/call-stack.png");
    return 0;
}
