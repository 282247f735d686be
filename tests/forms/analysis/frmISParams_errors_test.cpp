// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QScrollBar>

#include "base/files.h"
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"
#include "tests/support/failing_event.h"
#include "tests/support/failing_interaction.h"
#include "tests/support/failure.h"
#include "tests/support/leaks_of_qt.h"

/// \file
/// What the call stack of an error says: its bottom line is the procedure that failed, with its module.
namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ErrorsTest : public ParamsTest {
  protected:
    void SetUp() override { open(); }

    static auto entry(const std::string& procedure_and_module) {
        return HasSubstr("error line.\r\n\r\n\t" + procedure_and_module + " Line : 45\r\n");
    }
    /// The same, where the line is the library's.
    static auto entry_anywhere(const std::string& procedure_and_module) {
        return HasSubstr("error line.\r\n\r\n\t" + procedure_and_module + " ");
    }
    /// What is reported when `act` is done and no box can be shown.
    std::vector<std::string> reported_by(const std::function<void()>& act, bool notices_fail = false) {
        FailingInteraction user;
        user.notices_fail = notices_fail;
        act();
        EXPECT_TRUE(m_form->isVisible());
        return user.call_stacks;
    }
    /// A layer whose file is not there.
    void add_lost_layer() {
        map().add_layer(std::make_shared<hosting::HeadlessFeatureLayer>(
            "lost", data::FeatureSource{.path = m_world.folder / "lost.shp"}));
    }
    void lose(const std::string& layer) { base::remove_file(m_world.folder / (layer + ".shp")); }
};

/// Errors that pass through Qt, which then keeps texts of its own and of the form's lists.
class ErrorsThroughQtTest : private LeaksOfQt, public ErrorsTest {};

TEST_F(ErrorsTest, ButtonsThatLeaveTheOutputBoxReportUnderTheirOwnNames) {
    click("cmdDSAdd");
    for (const auto& [button, procedure] : {std::pair{"cmdDSAdd", "cmdDSAdd_Click ISParams"},
                                            {"cmdDSDelete", "cmdDSDelete_Click ISParams"},
                                            {"optPopDensity(1)", "optPopDensity_MouseUp ISParams"},
                                            {"cmdISRun", "cmdISRun_Click ISParams"}}) {
        type_output("roads");
        EXPECT_THAT(reported_by([this, name = button] { click(name); }), ElementsAre(entry(procedure))) << button;
    }
    EXPECT_FALSE(has("cboDSTheme(1)")) << "no row was added after the error";
}

TEST_F(ErrorsTest, TheModuleOfTheRowsReportsItsOwnProcedures) {
    click("cmdDSAdd");
    EXPECT_THAT(reported_by([this] { click("cmdDSDelete"); }), ElementsAre(entry("RemoveDS basISModelUtil")));
    EXPECT_TRUE(list("cboDSTheme(0)").isVisible());
    list("cboLCType").setCurrentIndex(-1);
    EXPECT_THAT(reported_by([this] { click("cmdDSAdd"); }), ElementsAre(entry("AddDS basISModelUtil")));
}

TEST_F(ErrorsTest, ValidationReportsAndDoesNotRun) {
    type_output(out("is"));
    tab();
    EXPECT_THAT(reported_by([this] { click("cmdISRun"); }), ElementsAre(entry("ValidateForm basISModelUtil")));
    EXPECT_TRUE(m_host.results.empty());
}

TEST_F(ErrorsTest, AnAnalysisLayerThatIsGoneIsReportedByTheListOfItsFields) {
    lose("blocks");
    EXPECT_THAT(reported_by([this] { choose("cboAnalysisTheme", "blocks"); }),
                ElementsAre(entry_anywhere("LoadFldsCombobox basISModelUtil")));
    EXPECT_TRUE(entries("cboAnalysisUnit").empty());
}

TEST_F(ErrorsTest, AChoiceWithoutAHostReportsItsClick) {
    m_form->Application(nullptr);
    EXPECT_THAT(reported_by([this] { choose("cboAnalysisTheme", "blocks"); }),
                ElementsAre(entry_anywhere("cboAnalysisTheme_Click ISParams")));
}

TEST_F(ErrorsTest, MapEventsReportUnderTheirNames) {
    lose("blocks");
    EXPECT_THAT(reported_by([this] { map().move_layer(0, 1); }, true), ElementsAre(entry("ItemReordered ISParams")));
    EXPECT_THAT(reported_by([this] { add_lost_layer(); }, true), ElementsAre(entry("ItemAdded ISParams")));
    click("cmdISQuit");
    m_form->show();
    lose("plan");
    EXPECT_THAT(reported_by([this] { map().remove_layer(map().layers().at(0)); }, true),
                ElementsAre(entry("ItemDeleted ISParams")));
}

TEST_F(ErrorsTest, AnotherDocumentReportsUnderItsName) {
    lose("blocks");
    EXPECT_THAT(reported_by([this] { map().open_document(map().layers()); }, true),
                ElementsAre(entry("OpenDocument ISParams")));
}

TEST_F(ErrorsThroughQtTest, PuttingTheListsBackReportsWhatTheListsBelowCouldNotReport) {
    type_output(out("is"));
    tab();
    choose("cboAnalysisTheme", "blocks");
    lose("sheds");
    FailingInteraction user;
    user.boxes_fail = false;
    user.reports_that_fail = 2;
    click("cmdISRun");
    EXPECT_THAT(user.call_stacks, ElementsAre(entry_anywhere("LoadFldsCombobox basISModelUtil"),
                                              entry("cboAnalysisTheme_Click ISParams"), entry("RefreshForm ISParams")));
    EXPECT_TRUE(m_form->isVisible());
}

TEST_F(ErrorsThroughQtTest, ANewSetReportsUnderItsName) {
    click("cmdDSAdd");
    QObject::connect(list("cboDSToClass(0)").model(), &QAbstractItemModel::rowsInserted, fail_denied);
    EXPECT_THAT(reported_by([this] { choose("cboLCType", "Valley"); }), ElementsAre(entry("cboLCType_Click ISParams")));
}

TEST_F(ErrorsTest, QuitReportsUnderItsName) {
    QObject::connect(m_form.get(), &QDialog::rejected, fail_denied);
    const FailingInteraction user;
    click("cmdISQuit");
    EXPECT_THAT(user.call_stacks, ElementsAre(entry("cmdISQuit_Click ISParams")));
    EXPECT_FALSE(m_form->isVisible());
}

TEST_F(ErrorsTest, ADensityLayerThatIsGoneIsReportedByTheListOfItsFields) {
    in_dialog([this](QDialog& dialog) {
        lose("blocks");
        EXPECT_THAT(reported_by([&] { choose_entry(control_in<QComboBox>(dialog, "cboPDenTheme"), "blocks"); }),
                    ElementsAre(entry_anywhere("LoadFldsCombobox basISModelUtil")));
        EXPECT_TRUE(dialog.isVisible());
    });
    choose_option(3);
}

TEST_F(ErrorsTest, TheDensityDialogReportsItsChecksAndItsLoad) {
    in_dialog([this](QDialog& dialog) {
        EXPECT_THAT(reported_by([&] { press(dialog, "cmdOK"); }),
                    ElementsAre(entry("ValidatePDenForm basISModelUtil")));
    });
    choose_option(3);
    activate();
    lose("blocks");
    in_dialog([](QDialog&) {});
    EXPECT_THAT(reported_by([this] { choose_option(3); }, true), testing::Contains(entry("Form_Load ISPDensity")));
}

TEST_F(ErrorsTest, ADensityLayerChosenWithoutAHostReportsItsClick) {
    in_dialog([this](QDialog& dialog) {
        dynamic_cast<frmISPDensity&>(dialog).Application(nullptr);
        const auto reports =
            reported_by([&] { choose_entry(control_in<QComboBox>(dialog, "cboPDenTheme"), "blocks"); });
        EXPECT_THAT(reports, ElementsAre(entry_anywhere("cboPDenTheme_Click ISPDensity")));
        EXPECT_THAT(reports, ElementsAre(HasSubstr("Error Number \r\n\t91\r\n")));
        EXPECT_TRUE(dialog.isVisible());
    });
    choose_option(3);
}

TEST_F(ErrorsThroughQtTest, TheBoundsOfDensityReportUnderTheirNames) {
    in_dialog([this](QDialog& dialog) {
        for (const auto& [box, mirror, procedure] : {std::tuple{"txtHigh", "txtMed(1)", "txtHigh_Change ISPDensity"},
                                                     {"txtLow", "txtMed(0)", "txtLow_Change ISPDensity"}}) {
            QObject::connect(&control_in<QLineEdit>(dialog, mirror), &QLineEdit::textChanged, fail_denied);
            auto& typed_in = control_in<QLineEdit>(dialog, box);
            EXPECT_THAT(reported_by([&] { QTest::keyClicks(&typed_in, "7"); }), ElementsAre(entry(procedure)));
            EXPECT_EQ(typed_in.text(), "7");
        }
    });
    choose_option(3);
}

TEST_F(ErrorsTest, TheButtonsOfTheDensityDialogReportUnderTheirNames) {
    in_dialog([this](QDialog& dialog) {
        QTest::keyClicks(&control_in<QLineEdit>(dialog, "txtHigh"), "7");
        QTest::keyClicks(&control_in<QLineEdit>(dialog, "txtLow"), "2");
        QObject::connect(&dialog, &QDialog::accepted, fail_denied);
        EXPECT_THAT(reported_by([&] { press(dialog, "cmdOK"); }), ElementsAre(entry("cmdOK_Click ISPDensity")));
        EXPECT_FALSE(dialog.isVisible());
    });
    choose_option(3);
    activate();
    in_dialog([this](QDialog& dialog) {
        QObject::connect(&dialog, &QDialog::rejected, fail_denied);
        EXPECT_THAT(reported_by([&] { press(dialog, "cmdCancel"); }), ElementsAre(entry("cmdCancel_Click ISPDensity")));
        EXPECT_FALSE(dialog.isVisible());
    });
    choose_option(3);
}

TEST_F(ErrorsTest, ScrollingReportsUnderItsName) {
    for (int i = 0; i < 12; ++i)
        click("cmdDSAdd");
    FailingEvent failing(control<QFrame>("fraDSItems"), QEvent::Move);
    EXPECT_THAT(reported_by([this] { control<QScrollBar>("VScroll1").setValue(0); }),
                ElementsAre(entry("VScroll1_Change ISParams")));
}

}  // namespace
}  // namespace kestrel::test
