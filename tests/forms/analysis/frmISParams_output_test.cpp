// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <cstdlib>

#include "base/errors.h"
#include "base/files.h"
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"

namespace kestrel::test {
namespace {

using reporting::FileDialog;
using reporting::Icon;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

reporting::MessageBox moved_to(const std::string& folder) {
    return {"Either no path was specified or the path does not exist. \rThe output layer will be created in " + folder +
                ".",
            "Output Location", Icon::information};
}

/// What happens when the box of the output's name is left.
class OutputBoxTest : public ParamsTest {
  protected:
    void SetUp() override {
        open();
        m_temporary = base::temporary_folder();
    }
    std::string shown() { return output().text().toStdString(); }
    std::string m_temporary;
};

TEST_F(OutputBoxTest, ABareNameIsCompletedAfterTheMessage) {
    type_output("roads");
    tab();
    EXPECT_EQ(shown(), m_temporary + "/roads.shp");
    EXPECT_EQ(layer_name().text(), "roads");
    EXPECT_THAT(boxes(), ElementsAre(moved_to(m_temporary)));
}

TEST_F(OutputBoxTest, ATrailingPointIsCompleted) {
    type_output(out("roads."));
    tab();
    EXPECT_EQ(shown(), out("roads.shp"));
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(OutputBoxTest, CapitalsAreKept) {
    type_output(out("ROADS.SHP"));
    tab();
    EXPECT_EQ(shown(), out("ROADS.SHP"));
    EXPECT_EQ(layer_name().text(), "ROADS");
}

TEST_F(OutputBoxTest, TheTextIsTrimmedAndEmptyTextIsLeft) {
    type_output("   ");
    layer_name().setText("mine");
    tab();
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(layer_name().text(), "mine");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(OutputBoxTest, LeavingByAClickOnAnotherControlAppliesTheRules) {
    type_output("roads");
    QTest::mouseClick(&layer_name(), Qt::LeftButton);
    EXPECT_EQ(shown(), m_temporary + "/roads.shp");
    EXPECT_THAT(boxes(), SizeIs(1));
}

TEST_F(OutputBoxTest, ReturnAppliesTheRulesOnce) {
    type_output("roads");
    QTest::keyClick(&output(), Qt::Key_Return);
    ASSERT_FALSE(boxes().empty());
    EXPECT_EQ(boxes()[0], moved_to(m_temporary));
    EXPECT_EQ(std::count(boxes().begin(), boxes().end(), moved_to(m_temporary)), 1);
}

TEST_F(OutputBoxTest, AClickOnRunAppliesTheRulesOnceAndRuns) {
    type_output("roads");
    click("cmdISRun");
    EXPECT_THAT(boxes(), ElementsAre(moved_to(m_temporary),
                                     warning("Analysis unit not defined, please select from dropdown list.")));
}

TEST_F(OutputBoxTest, AClickOnAnotherButtonIsNotSwallowed) {
    type_output("roads");
    click("cmdDSAdd");
    EXPECT_THAT(boxes(), ElementsAre(moved_to(m_temporary)));
    EXPECT_EQ(row(0), "1.  -> ");
    EXPECT_FALSE(control<QPushButton>("cmdDSAdd").isDown());
}

TEST_F(OutputBoxTest, HelpIsOpenedBeforeTheRulesAreApplied) {
    type_output("roads");
    click("cmdISHelp");
    EXPECT_EQ(m_world.said.help_requests, 1);
    EXPECT_THAT(boxes(), ElementsAre(moved_to(m_temporary)));
    click("cmdISHelp");
    EXPECT_THAT(boxes(), SizeIs(1)) << "the box was not left again";
}

TEST_F(OutputBoxTest, LeavingTheWindowIsNotLeavingTheBox) {
    type_output("roads");
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&other] { return QApplication::activeWindow() == &other; }));
    EXPECT_EQ(shown(), "roads");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(OutputBoxTest, BrowseAsksForAShapefileAndTheRulesComeWhenTheBoxIsLeft) {
    m_world.said.chosen_files = {" " + out("picked") + " "};
    click("cmdOutputBrowse");
    EXPECT_THAT(m_world.said.file_dialogs, SizeIs(1));
    const FileDialog& dialog = m_world.said.file_dialogs.at(0);
    EXPECT_EQ(dialog.kind, FileDialog::Kind::save);
    EXPECT_EQ(dialog.title, "Select Output Shapefile");
    EXPECT_EQ(dialog.filter, "Shapefile (*.shp)|*.shp");
    EXPECT_EQ(shown(), out("picked"));
    EXPECT_EQ(focused(), "txtOutputTheme");
    tab();
    EXPECT_EQ(shown(), out("picked.shp"));
    EXPECT_EQ(layer_name().text(), "picked");
}

TEST_F(OutputBoxTest, WithoutAChosenNameBrowseSetsKestrel) {
    type_output("roads");
    click("cmdOutputBrowse");
    EXPECT_EQ(shown(), "kestrel");
    EXPECT_EQ(focused(), "txtOutputTheme");
    EXPECT_THAT(boxes(), IsEmpty()) << "the name that Browse replaces needs no completing";
    tab();
    EXPECT_EQ(shown(), m_temporary + "/kestrel.shp");
}

TEST_F(OutputBoxTest, AnErrorIsReportedAndTheFormStaysOpen) {
    struct FailingBox final : reporting::Interaction {
        explicit FailingBox(ScriptedInteraction& rest) : said(rest) {}
        reporting::Answer message_box(const reporting::MessageBox&) override {
            throw base::RuntimeError(base::kOutOfMemory, "no memory");
        }
        std::string input_box(const reporting::InputBox& box) override { return said.input_box(box); }
        std::optional<std::string> file_dialog(const FileDialog&) override {
            throw base::RuntimeError(base::kOutOfMemory, "no memory");
        }
        void show_call_stack(std::string_view text) override { said.show_call_stack(text); }
        std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override {
            return said.waiting_window(text);
        }
        void show_help() override { throw base::RuntimeError(base::kOutOfMemory, "no memory"); }
        void notice(std::string_view text) override { said.notice(text); }
        void beep() override {}
        ScriptedInteraction& said;
        reporting::ScopedInteraction scope{*this};
    } failing(m_world.said);
    type_output("roads");
    tab();
    click("cmdOutputBrowse");
    click("cmdISHelp");
    output().clear();
    click("cmdISRun");
    const auto entry = [](const char* name) {
        return testing::HasSubstr("\t" + std::string(name) + " ISParams Line :");
    };
    EXPECT_THAT(m_world.said.call_stacks, ElementsAre(entry("txtOutputTheme_Validate"), entry("cmdOutputBrowse_Click"),
                                                      entry("cmdISHelp_Click"), entry("cmdISRun_Click")));
    EXPECT_TRUE(m_form->isVisible());
}

}  // namespace
}  // namespace kestrel::test
