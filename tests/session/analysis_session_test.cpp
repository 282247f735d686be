// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <map>
#include <sstream>

#include "apps/cli/run.h"
#include "base/files.h"
#include "data/class_breaks.h"
#include "tests/real/output_layer_file.h"
#include "tests/real/run_settings.h"
#include "tests/session/session_user.h"
#include "tests/support/desktop_host.h"
#include "tests/support/test_host.h"
#include "tests/support/user_actions.h"

/// \file
/// A session from the menu to the output: the built library in a desktop host, its windows driven by keys and mouse, on
/// real land cover.
namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AnalysisSession : public RealData {
  protected:
    void SetUp() override {
        RealData::SetUp();
        if (IsSkipped()) return;
        // Copies, since whoever opens the data may write beside them.
        for (const auto& entry : std::filesystem::directory_iterator(real_data_folder()))
            base::copy_file(entry.path().string(), m_data / entry.path().filename().string());
        base::create_folder(m_output);
        m_host = std::make_unique<TestHost>();
        base::copy_file(m_data / "isprops.xml", m_host->extension_folder() + "/etc/isprops.xml");
        add_layers();
        m_desktop = std::make_unique<DesktopHost>(m_host->application, m_interaction);
        m_host->kestrel().stop();
        m_host->kestrel().start(*m_desktop);
        m_user.in_dialog["frmISPDensity"] = [](QDialog& dialog) { fill_density(dialog); };
    }

    void add_layers() {
        map().append_layer(std::make_shared<hosting::HeadlessRasterLayer>("nlcd2011", m_data / "nlcd2011.tif"));
        for (const char* file : {"sheds.shp", "blockgroups.shp", "town_plan.shp", "resort_wgs84.gpkg"}) {
            map().append_layer(std::make_shared<hosting::HeadlessFeatureLayer>(
                base::base_name_of(file), data::FeatureSource{.path = m_data / file}));
        }
        map().set_distance_units(contracts::kMeters);
    }

    static void fill_density(QDialog& dialog) {
        choose_entry(control_in<QComboBox>(dialog, "cboPDenTheme"), "blockgroups");
        choose_entry(control_in<QComboBox>(dialog, "cboPDenFld"), "POP_DEN");
        QTest::keyClicks(&control_in<QLineEdit>(dialog, "txtHigh"), "100");
        QTest::keyClicks(&control_in<QLineEdit>(dialog, "txtLow"), "20");
        press(dialog, "cmdOK");
    }

    QWidget& form() {
        QWidget* const form = m_host->window("frmISParams");
        if (form == nullptr) throw std::runtime_error("the analysis form is not open");
        return *form;
    }
    void choose(const std::string& list, const std::string& text) {
        choose_entry(control_in<QComboBox>(form(), list), text);
    }
    void choose_inputs(const std::string& set) {
        choose("cboLCTheme", "nlcd2011");
        choose("cboLCUnits", "Feet");
        choose("cboAnalysisTheme", "sheds");
        choose("cboAnalysisUnit", "SHED_NAME");
        choose("cboLCType", set);
    }
    void add_two_scenarios_and_delete_the_first() {
        press(form(), "cmdDSAdd");
        press(form(), "cmdDSAdd");
        choose("cboDSTheme(0)", "town_plan");
        choose("cboDSToClass(0)", "Developed Medium Intensity");
        choose("cboDSTheme(1)", "resort_wgs84");
        choose("cboDSToClass(1)", "Developed Low Intensity");
        m_user.answers = {"1"};
        press(form(), "cmdDSDelete");
        EXPECT_THAT(m_user.questions, ElementsAre("Delete Scenario: Enter number of scenario to delete:"));
        EXPECT_EQ(control_in<QLabel>(form(), "lblDSNum(0)").text(), "1.");
        EXPECT_EQ(control_in<QComboBox>(form(), "cboDSTheme(0)").currentText(), "resort_wgs84");
        EXPECT_EQ(form().findChild<QComboBox*>("cboDSTheme(1)"), nullptr);
    }
    /// Names the output and runs; nothing strange opens meanwhile.
    void run() {
        form().activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &form(); }));
        auto& box = control_in<QLineEdit>(form(), "txtOutputTheme");
        QTest::mouseClick(&box, Qt::LeftButton);
        QTest::keyClicks(&box, QString::fromStdString(m_output + "/result"));
        QTest::keyClick(&box, Qt::Key_Tab);
        EXPECT_EQ(control_in<QLineEdit>(form(), "txtThemeName").text(), "result");
        m_user.boxes.clear();
        press(form(), "cmdISRun");
        EXPECT_EQ(visible_window("frmISProcessing"), nullptr);
        EXPECT_THAT(m_user.strange, IsEmpty());
    }
    void expect_finished(std::size_t runs) {
        ASSERT_THAT(m_desktop->results, SizeIs(runs));
        EXPECT_TRUE(m_desktop->results.back().finished);
        EXPECT_THAT(m_user.boxes, ElementsAre(testing::StartsWith("NODATA Cells!: ")));
    }

    /// What `kestrel run` makes of the same choices.
    std::string output_of_the_command(const std::string& set) {
        cli::RunRequest request{.land_cover = m_data / "nlcd2011.tif",
                                .units = "Feet",
                                .zones = m_data / "sheds.shp",
                                .field = "SHED_NAME",
                                .store = m_data / "isprops.xml",
                                .set = set,
                                .option = CoefficientOption::by_density,
                                .density_layer = m_data / "blockgroups.shp",
                                .density_field = "POP_DEN",
                                .density_high = "100",
                                .density_low = "20",
                                .scenarios = {{m_data / "resort_wgs84.gpkg", 22}},
                                .output = m_by_command / (set + ".shp")};
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(cli::run(request, out, err, false), 0) << err.str();
        return request.output;
    }
    /// The output in the folder has the figures of the command's.
    void expect_figures_of_the_command(const std::string& set) {
        const std::string by_command = output_of_the_command(set);
        const OutputFile shown = read_output(m_output + "/result.shp");
        EXPECT_THAT(shown.field_names, ElementsAre("SHED_NAME", "TotAcres", "TotISAcr", "pctIS", "Complete"));
        EXPECT_GT(shown.rows.size(), 10U);
        EXPECT_EQ(shown.rows.size(), read_output(by_command).rows.size());
        EXPECT_EQ(table_bytes(m_output + "/result.shp"), table_bytes(by_command));
    }
    /// The text that the viewer shows for a command of the menu.
    std::string viewed(const std::string& command) {
        m_host->click(command);
        QWidget* const viewer = m_host->window("frmISTParams");
        if (viewer == nullptr) return "no viewer";
        EXPECT_EQ(control_in<QComboBox>(*viewer, "cboSelLayers").currentText().section('.', 0, 0), "result");
        return control_in<QPlainTextEdit>(*viewer, "txtTParams").toPlainText().toStdString();
    }
    /// A file of the output, its lines as a text box has them.
    std::string record(const std::string& ending) const {
        QString text = QString::fromStdString(base::read_file(m_output + "/result." + ending)).replace("\r\n", "\n");
        return text.toStdString();
    }
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> bytes;
        for (const std::string& name : names_in(m_output))
            bytes[name] = base::read_file(m_output + "/" + name);
        return bytes;
    }
    std::vector<std::string> layers() {
        std::vector<std::string> names;
        for (const auto& layer : map().layers())
            names.push_back(layer->name());
        return names;
    }
    hosting::HeadlessMap& map() { return m_host->application.map(); }

    void expect_output_in_the_map() {
        EXPECT_THAT(layers(), ElementsAre("result", "nlcd2011", "sheds", "blockgroups", "town_plan", "resort_wgs84"));
        const auto* output = dynamic_cast<const hosting::HeadlessFeatureLayer*>(map().layers().front().get());
        ASSERT_NE(output, nullptr);
        EXPECT_EQ(output->source().file(), m_output + "/result.shp");
        ASSERT_TRUE(output->renderer().has_value());
        EXPECT_EQ(output->renderer()->field, "pctIS");
        EXPECT_THAT(output->renderer()->classes, SizeIs(3));
    }

    TemporaryFolder m_data;
    TemporaryFolder m_by_command;
    std::string m_output = m_data / "out";
    std::unique_ptr<TestHost> m_host;
    QtInteraction m_interaction;
    std::unique_ptr<DesktopHost> m_desktop;
    SessionUser m_user;
};

TEST_F(AnalysisSession, FromTheMenuToACancelledThirdRun) {
    m_host->click("Run Impervious Surface Analysis...");
    choose_inputs("NLCD spread");
    add_two_scenarios_and_delete_the_first();
    press(form(), "optPopDensity(3)");
    run();
    expect_finished(1);
    EXPECT_TRUE(m_user.waiting_window_seen);
    expect_output_in_the_map();
    expect_figures_of_the_command("NLCD spread");
    EXPECT_EQ(viewed("View Kestrel Parameters for a Layer..."), record("prm"));
    EXPECT_EQ(viewed("View Kestrel Metadata for a Layer..."), record("met"));
    m_host->window("frmISTParams")->close();

    const auto first = map().layers().front();
    const auto files_of_the_first = files();
    choose_inputs("NLCD legend");
    run();
    expect_finished(2);
    expect_output_in_the_map();
    EXPECT_NE(map().layers().front(), first);
    EXPECT_NE(files().at("result.dbf"), files_of_the_first.at("result.dbf"));
    expect_figures_of_the_command("NLCD legend");

    const auto layers_before = map().layers();
    const auto files_before = files();
    choose_inputs("NLCD spread");
    m_user.cancels = true;
    run();
    ASSERT_THAT(m_desktop->results, SizeIs(3));
    EXPECT_TRUE(m_desktop->results[2].cancelled);
    EXPECT_THAT(m_user.cancelled_at, SizeIs(1));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(map().layers(), layers_before);
    EXPECT_EQ(files(), files_before) << "byte for byte";
    EXPECT_THAT(names_in(m_host->extension_folder() + "/temp"), IsEmpty());
}

}  // namespace
}  // namespace kestrel::test
