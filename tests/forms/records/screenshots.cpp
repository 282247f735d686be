// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// Makes the pictures of the viewer for the user guide: screenshots OUTPUT FOLDER, where OUTPUT is a shapefile with a
/// run report beside it. Needs a screen.

#include <QApplication>
#include <QTest>
#include <iostream>

#include "base/files.h"
#include "forms/desktop/qt_interaction.h"
#include "forms/records/frmISTParams.h"
#include "hosting/headless_application.h"
#include "tests/support/window_pictures.h"

namespace {

void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: screenshots OUTPUT FOLDER\n";
        return 2;
    }
    kestrel::test::use_picture_style();
    kestrel::QtInteraction user;
    const kestrel::reporting::ScopedInteraction scope(user);
    const std::string output = argv[1];
    const std::string folder = argv[2];

    kestrel::hosting::HeadlessApplication host(user.progress());
    host.map().append_layer(std::make_shared<kestrel::hosting::HeadlessFeatureLayer>(
        kestrel::base::base_name_of(output), kestrel::data::FeatureSource{.path = output}));
    kestrel::frmISTParams viewer;
    viewer.Application(&host);
    viewer.FileType("prm");
    viewer.move(40, 40);
    viewer.show();
    viewer.activateWindow();
    kestrel::test::take_picture(viewer, folder + "/record-viewer.png");
    key(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), "scenario");
    key(Qt::Key_Return);
    kestrel::test::take_picture(viewer, folder + "/record-viewer-find.png");
    return 0;
}
