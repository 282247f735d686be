// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// Makes the pictures of the coefficient editor for the user guide: screenshots STORE FOLDER. Works on a copy of the
/// store, and needs a screen.

#include <QApplication>
#include <QCheckBox>
#include <QTest>
#include <QTimer>
#include <iostream>

#include "base/files.h"
#include "forms/coefficients/frmISModelProps.h"
#include "forms/desktop/qt_interaction.h"
#include "tests/support/window_pictures.h"

namespace {

using kestrel::frmISModelProps;

std::string g_folder;

using kestrel::test::wait_for_paint;

/// What the screen shows of the editor, with everything that lies over it.
void take(const frmISModelProps& form, const char* name) {
    kestrel::test::take_picture(form, g_folder + "/" + name);
}

/// Does `act` while the dialog is open that the next call opens, and closes it.
template <typename Act>
void in_dialog(Act act) {
    QTimer::singleShot(300, [act] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            std::cerr << "no dialog has opened\n";
            std::exit(1);
        }
        dialog->activateWindow();
        wait_for_paint();
        act(*dialog);
        dialog->reject();
    });
}

void press(frmISModelProps& form, const char* button) {
    QTest::mouseClick(form.findChild<QPushButton*>(button), Qt::LeftButton);
}

void take_all(frmISModelProps& form) {
    auto& grid = *form.findChild<kestrel::CoefficientGrid*>("grdLCDef");
    const auto click = [&grid](int row, int column, Qt::MouseButton button) {
        QTest::mouseClick(grid.viewport(), button, Qt::NoModifier, grid.place_of({row, column}).center());
    };
    take(form, "coefficient-editor.png");

    in_dialog([&form](QDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLCType"), "My county");
        QTest::mouseClick(dialog.findChild<QCheckBox*>("ChkModelAfter"), Qt::LeftButton, Qt::NoModifier, {5, 8});
        QTest::keyClick(dialog.findChild<QComboBox*>("cboLCType"), Qt::Key_Down);
        take(form, "coefficient-editor-new.png");
    });
    press(form, "cmdNew");
    form.activateWindow();

    click(4, 4, Qt::LeftButton);
    QTest::keyClicks(&grid, "3");
    auto* overlay = form.findChild<QLineEdit*>("txtActiveCell");
    QTest::keyClicks(overlay, "6.5");
    take(form, "coefficient-editor-cell.png");

    in_dialog([&form](QDialog&) { take(form, "coefficient-editor-refused.png"); });
    QTest::keyClicks(overlay, "x");
    form.activateWindow();

    click(4, 2, Qt::RightButton);
    take(form, "coefficient-editor-rows.png");
    form.findChild<QMenu*>("MnuFGridRows")->close();
    form.activateWindow();
    wait_for_paint();

    in_dialog([&form](QDialog&) { take(form, "coefficient-editor-unsaved.png"); });
    press(form, "cmdQuit");
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: screenshots STORE FOLDER\n";
        return 2;
    }
    kestrel::test::use_picture_style();
    g_folder = argv[2];
    kestrel::QtInteraction user;
    const kestrel::reporting::ScopedInteraction scope(user);
    const std::string folder =
        kestrel::base::make_unique_folder(kestrel::base::temporary_folder(), "kestrel-screenshots-");
    kestrel::base::create_folder(folder + "/etc");
    kestrel::base::copy_file(argv[1], folder + "/etc/isprops.xml");

    frmISModelProps form(kestrel::CoefficientStore::in_extension_folder(folder));
    form.move(40, 40);
    form.show();
    form.activateWindow();
    take_all(form);
    kestrel::base::remove_folder(folder);
    return 0;
}
