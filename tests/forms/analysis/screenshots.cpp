// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// Makes the pictures of the parameter form for the user guide: screenshots DEMO FOLDER, where DEMO holds what
/// `kestrel demo` writes. Needs a screen.

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <iostream>

#include "base/files.h"
#include "forms/analysis/frmISParams.h"
#include "forms/desktop/qt_interaction.h"
#include "hosting/headless_application.h"
#include "tests/support/window_pictures.h"

namespace {

using kestrel::frmISParams;

std::string g_folder;

void take(const QWidget& window, const char* name) {
    kestrel::test::take_picture(window, g_folder + "/" + name);
}

/// Does `act` while the dialog is open that the next call opens, and closes it.
template <typename Act>
void in_next_dialog(Act act) {
    QTimer::singleShot(300, [act] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            std::cerr << "no dialog has opened\n";
            std::exit(1);
        }
        dialog->activateWindow();
        kestrel::test::wait_for_paint();
        act(*dialog);
        dialog->reject();
    });
}

QComboBox& list(QWidget& form, const char* name) {
    return *form.findChild<QComboBox*>(name);
}

void choose(QWidget& form, const char* name, const char* text) {
    list(form, name).setCurrentText(text);
}

void press(QWidget& form, const char* name) {
    auto* button = form.findChild<QAbstractButton*>(name);
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, {8, button->height() / 2});
}

void add_layers(kestrel::hosting::HeadlessMap& map, const std::string& demo) {
    for (const char* name : {"watersheds", "census_blocks", "new_mall", "subdivision"}) {
        map.append_layer(std::make_shared<kestrel::hosting::HeadlessFeatureLayer>(
            name, kestrel::data::FeatureSource{.path = demo + "/" + name + ".shp"}));
    }
    map.append_layer(std::make_shared<kestrel::hosting::HeadlessRasterLayer>("land_cover", demo + "/land_cover.tif"));
    map.set_distance_units(kestrel::contracts::kMeters);
}

void fill_density(QDialog& dialog) {
    choose(dialog, "cboPDenTheme", "census_blocks");
    choose(dialog, "cboPDenFld", "POP_DEN");
    QTest::keyClicks(dialog.findChild<QLineEdit*>("txtHigh"), "1500");
    QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLow"), "250");
}

void fill(frmISParams& form, const std::string& output) {
    choose(form, "cboAnalysisTheme", "watersheds");
    choose(form, "cboAnalysisUnit", "NAME");
    choose(form, "cboLCType", "NLCD legend");
    for (int i = 0; i < 3; ++i)
        press(form, "cmdDSAdd");
    choose(form, "cboDSTheme(0)", "new_mall");
    choose(form, "cboDSToClass(0)", "Developed High Intensity");
    choose(form, "cboDSTheme(1)", "subdivision");
    choose(form, "cboDSToClass(1)", "Developed Low Intensity");
    press(form, "chkDSApply(2)");
    auto* box = form.findChild<QLineEdit*>("txtOutputTheme");
    box->setFocus();
    QTest::keyClicks(box, QString::fromStdString(output));
    QTest::keyClick(box, Qt::Key_Tab);
}

void take_all(frmISParams& form, kestrel::QtInteraction& user, const std::string& output) {
    take(form, "analysis-form-empty.png");
    fill(form, output);
    in_next_dialog([&form](QDialog& dialog) {
        fill_density(dialog);
        take(form, "analysis-form-density.png");
        press(dialog, "cmdOK");
    });
    press(form, "optPopDensity(3)");
    form.activateWindow();
    form.findChild<QPushButton*>("cmdISRun")->setFocus();
    take(form, "analysis-form.png");
    const auto waiting = user.waiting_window("Performing Impervious Surface Analysis.  Please wait...");
    waiting->report(0.42, "Counting land cover");
    take(form, "analysis-form-waiting.png");
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: screenshots DEMO FOLDER\n";
        return 2;
    }
    kestrel::test::use_picture_style();
    g_folder = argv[2];
    kestrel::QtInteraction user;
    const kestrel::reporting::ScopedInteraction scope(user);
    const std::string demo = argv[1];
    kestrel::base::create_folder(demo + "/etc");
    kestrel::base::copy_file(demo + "/isprops.xml", demo + "/etc/isprops.xml");

    kestrel::hosting::HeadlessApplication host(user.progress());
    add_layers(host.map(), demo);
    frmISParams form(demo);
    form.Application(&host);
    form.move(40, 40);
    form.show();
    form.activateWindow();
    take_all(form, user, kestrel::base::temporary_folder() + "/watersheds_is");
    return 0;
}
