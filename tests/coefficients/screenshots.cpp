// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// Makes the pictures of the coefficient editor for the user guide: screenshots STORE FOLDER. Works on a copy of the
/// store, and needs a screen.

#include <QApplication>
#include <QCheckBox>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QVector>
#include <algorithm>
#include <iostream>
#include <map>
#include <vector>

#include "coefficients/frmISModelProps.h"
#include "host/qt_interaction.h"
#include "platform/files.h"

namespace {

using kestrel::frmISModelProps;

QString g_folder;
constexpr int kTitleBar = 26;

void wait_for_paint() {
    QTest::qWait(300);
}

/// Draws a title bar and a frame around a window's place, as a desktop would: this screen has none.
void draw_frame(QPainter& painter, const QWidget& window, QRect place) {
    const QRect bar(place.left(), place.top() - kTitleBar, place.width(), kTitleBar);
    painter.fillRect(bar, QColor(70, 78, 90));
    painter.setPen(Qt::white);
    const QString title = window.windowTitle().replace("[*]", window.isWindowModified() ? "*" : "");
    painter.drawText(bar, Qt::AlignCenter, title);
    painter.setPen(QColor(70, 78, 90));
    painter.drawRect(bar.united(place).adjusted(-1, 0, 0, 0));
}

/// The palette of a small file that looks the same.
QVector<QRgb> commonest_colours(const QImage& picture) {
    std::map<QRgb, int> uses;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ++uses[picture.pixel(x, y)];
    std::vector<std::pair<int, QRgb>> ordered;
    for (const auto& [colour, count] : uses)
        ordered.emplace_back(count, colour);
    std::sort(ordered.rbegin(), ordered.rend());
    QVector<QRgb> palette;
    for (std::size_t i = 0; i < std::min<std::size_t>(ordered.size(), 256); ++i)
        palette.push_back(ordered[i].second);
    return palette;
}

/// What the screen shows of the editor, with everything that lies over it.
void take(const frmISModelProps& form, const char* name) {
    wait_for_paint();
    const QRect place = form.geometry();
    const QRect part = place.adjusted(-1, -kTitleBar, 1, 1);
    QImage picture = QApplication::primaryScreen()
                         ->grabWindow(0, part.x(), part.y(), part.width(), part.height())
                         .toImage()
                         .convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    draw_frame(painter, form, place.translated(-part.topLeft()));
    if (const QWidget* dialog = QApplication::activeModalWidget()) {
        draw_frame(painter, *dialog, dialog->geometry().translated(-part.topLeft()));
    }
    painter.end();
    const QString path = g_folder + "/" + name;
    if (!picture.convertToFormat(QImage::Format_Indexed8, commonest_colours(picture)).save(path, "PNG", 0)) {
        std::cerr << "cannot write " << path.toStdString() << "\n";
        std::exit(1);
    }
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
    QApplication::setStyle("fusion");
    QFont font("DejaVu Sans", 9);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);  // small files
    QApplication::setFont(font);
    g_folder = argv[2];
    kestrel::QtInteraction user;
    const kestrel::platform::ScopedInteraction scope(user);
    const std::string folder =
        kestrel::platform::make_unique_folder(kestrel::platform::temporary_folder(), "kestrel-screenshots-");
    kestrel::platform::create_folder(folder + "/etc");
    kestrel::platform::copy_file(argv[1], folder + "/etc/isprops.xml");

    frmISModelProps form(kestrel::CoefficientStore::in_extension_folder(folder));
    form.move(40, 40);
    form.show();
    form.activateWindow();
    take_all(form);
    kestrel::platform::remove_folder(folder);
    return 0;
}
