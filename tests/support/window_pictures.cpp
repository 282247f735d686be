// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/window_pictures.h"

#include <QApplication>
#include <QDialog>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <QVector>
#include <algorithm>
#include <iostream>
#include <map>
#include <vector>

namespace kestrel::test {

namespace {

constexpr int kTitleBar = 26;

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

}  // namespace

void use_picture_style() {
    QApplication::setStyle("fusion");
    QFont font("DejaVu Sans", 9);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);  // small files
    QApplication::setFont(font);
}

void wait_for_paint() {
    QTest::qWait(300);
}

void take_picture(const QWidget& window, const std::string& path) {
    wait_for_paint();
    const QRect place = window.geometry();
    const QRect part = place.adjusted(-1, -kTitleBar, 1, 1);
    QImage picture = QApplication::primaryScreen()
                         ->grabWindow(0, part.x(), part.y(), part.width(), part.height())
                         .toImage()
                         .convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    draw_frame(painter, window, place.translated(-part.topLeft()));
    for (const QWidget* other : QApplication::topLevelWidgets()) {
        if (other != &window && other->isVisible() && qobject_cast<const QDialog*>(other) != nullptr) {
            draw_frame(painter, *other, other->geometry().translated(-part.topLeft()));
        }
    }
    painter.end();
    if (!picture.convertToFormat(QImage::Format_Indexed8, commonest_colours(picture))
             .save(QString::fromStdString(path), "PNG", 0)) {
        std::cerr << "cannot write " << path << "\n";
        std::exit(1);
    }
}

}  // namespace kestrel::test
