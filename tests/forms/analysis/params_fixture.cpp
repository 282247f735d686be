// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/forms/analysis/params_fixture.h"

#include <QApplication>
#include <QTimer>

#include "base/files.h"
#include "coefficients/basUtil.h"
#include "tests/coefficients/sets.h"

namespace kestrel::test {

bool ActingProgress::report(double, std::string_view) {
    ++reports;
    if (act) act();
    return !stopped;
}

ParamsTest::ParamsTest() {
    base::create_folder(m_world.extension / "etc");
    clsISModelProperties props;
    add_set(props, "Town",
            {land_class(2, "Developed", 90, 80, 70), land_class(5, "Grassland", 2, 1.5F, 1),
             land_class(7, "Roads", 100, 100, 100)});
    add_set(props, "Valley", {land_class(5, "Grassland", 4, 3, 2), land_class(9, "Swamp", 0, 0, 0)});
    EXPECT_TRUE(basUtil::PutISModelProperties(props, CoefficientStore::in_extension_folder(m_world.extension.path())));
    m_world.land_cover("2 2 5 5\n2 2 5 5\n7 7 5 5\n7 7 5 5");
    m_world.layer("sheds", {text_field("NAME"), integer_field("ID"), real_field("RATE")},
                  {{{{0, 0, 2, 4}}, {"West", 1, 0.5}}, {{{2, 0, 4, 4}}, {"East", 2, 0.5}}});
    m_world.layer("blocks", {integer_field("ID"), real_field("DENSITY"), text_field("KIND")},
                  {{{{0, 0, 4, 2}}, {1, 20.0, "a"}}, {{{0, 2, 4, 4}}, {2, 1.0, "b"}}});
    m_world.layer("plan", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
    m_world.application.map().set_distance_units(contracts::kMeters);
    m_form = std::make_unique<frmISParams>(m_world.extension.path());
    m_form->Application(&m_host);
}

ParamsTest::~ParamsTest() = default;

void ParamsTest::open() {
    m_form->show();
    ASSERT_TRUE(m_form->isVisible());
    activate();
}

void ParamsTest::activate() {
    m_form->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == m_form.get(); }));
}

QRadioButton& ParamsTest::option(int index) {
    return control<QRadioButton>(qPrintable(QString("optPopDensity(%1)").arg(index)));
}

std::vector<std::string> ParamsTest::entries(const char* name) {
    std::vector<std::string> texts;
    for (int i = 0; i < list(name).count(); ++i)
        texts.push_back(list(name).itemText(i).toStdString());
    return texts;
}

std::string ParamsTest::focused() {
    return m_form->focusWidget() == nullptr ? "" : m_form->focusWidget()->objectName().toStdString();
}

void ParamsTest::click(const char* button) {
    press(*m_form, button);
}

void ParamsTest::choose(const char* name, const std::string& text) {
    choose_entry(list(name), text);
}

void ParamsTest::choose_option(int index) {
    QTest::mouseClick(&option(index), Qt::LeftButton, Qt::NoModifier, {8, option(index).height() / 2});
}

void ParamsTest::type_output(const std::string& text) {
    QTest::mouseClick(&output(), Qt::LeftButton);
    QTest::keyClick(&output(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&output(), QString::fromStdString(text));
}

void ParamsTest::tab() {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
}

void ParamsTest::fill() {
    choose("cboAnalysisUnit", "NAME");
    choose_option(1);
}

std::string ParamsTest::row(int row) {
    const auto name = [row](const char* array) { return QString("%1(%2)").arg(array).arg(row).toStdString(); };
    const std::string number = control<QLabel>(name("lblDSNum").c_str()).text().toStdString();
    const std::string theme = list(name("cboDSTheme").c_str()).currentText().toStdString();
    const std::string to_class = list(name("cboDSToClass").c_str()).currentText().toStdString();
    const std::string text = number + " " + theme + " -> " + to_class;
    return control<QCheckBox>(name("chkDSApply").c_str()).isChecked() ? text : "[" + text + "]";
}

void ParamsTest::in_dialog(std::function<void(QDialog&)> act) {
    QTimer::singleShot(0, m_form.get(), [act = std::move(act)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr) << "no dialog opened";
        dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([dialog] { return QApplication::activeWindow() == dialog; }));
        act(*dialog);
        if (dialog->isVisible()) dialog->reject();  // whatever went wrong, the test must come back
    });
}

std::string ParamsTest::parameter_file() const {
    return base::read_file(m_world.extension / "temp/model_params.txt");
}

}  // namespace kestrel::test
