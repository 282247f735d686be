// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/records/frmISTParams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFontMetricsF>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <memory>

#include "base/files.h"
#include "hosting/headless_application.h"
#include "tests/support/failing_event.h"
#include "tests/support/failing_interaction.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel::test {
namespace {

using hosting::HeadlessFeatureLayer;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const MessageBox kNoParameters = {"There are no layers with an associated \"Parameters\" file.", "No Parameter Files",
                                  reporting::Icon::none, reporting::Buttons::ok};
const MessageBox kNoMetadata = {"There are no layers with an associated \"Metadata\" file.", "No Metadata Files",
                                reporting::Icon::none, reporting::Buttons::ok};

/// A layer whose source cannot be asked for.
class BrokenLayer final : public contracts::FeatureLayer {
  public:
    std::string name() const override { return "broken"; }
    data::FeatureClass feature_class() const override { throw std::runtime_error("no data"); }
    data::FeatureSource source() const override { throw std::runtime_error("no source"); }
    const contracts::Selection& selection() const override { return m_selection; }
    void set_renderer(const data::ClassBreaksRenderer&) override {}

  private:
    hosting::HeadlessSelection m_selection{{}};
};

class frmISTParamsTest : public testing::Test {
  protected:
    frmISTParamsTest() { m_form.Application(&m_application); }

    void make(const std::string& name, const std::string& text = "text") { base::write_file(m_folder / name, text); }
    std::shared_ptr<HeadlessFeatureLayer> add(const std::string& name, const std::string& file) {
        const auto layer = std::make_shared<HeadlessFeatureLayer>(name, data::FeatureSource{m_folder / file});
        m_application.map().append_layer(layer);
        return layer;
    }
    /// Two outputs of runs, of which the first has both files and the second a run report.
    void two_outputs() {
        make("north.prm", "Impervious surface analysis run: north\r\n\r\n  Output Layer Name: north\r\n");
        make("north.met", "Identification_Information:\r\n");
        make("south.prm", "Impervious surface analysis run: south\r\n");
        add("north", "north.shp");
        add("roads", "roads.shp");
        add("south", "south.shp");
    }
    void open(const std::string& file_type) {
        m_form.FileType(file_type);
        m_form.show();
        if (!m_opened_before) {
            activate();  // without a screen only a window's first opening makes it the active one
        }
        m_opened_before = true;
        QApplication::processEvents();
    }
    /// As the user does who comes back to the window.
    void activate() {
        m_form.activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &m_form; }));
        QApplication::processEvents();
    }
    void leave_and_come_back() {
        QWidget other;
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &other; }));
        other.close();
        activate();
    }
    template <typename Control>
    Control& control(const char* name) {
        return *m_form.findChild<Control*>(name);
    }
    QComboBox& names() { return control<QComboBox>("cboSelLayers"); }
    QListWidget& folders() { return control<QListWidget>("lstSelLayers"); }
    QPlainTextEdit& text() { return control<QPlainTextEdit>("txtTParams"); }
    std::string shown() { return text().toPlainText().toStdString(); }
    std::string title() { return m_form.windowTitle().toStdString(); }
    std::vector<std::string> listed() {
        std::vector<std::string> entries;
        for (int i = 0; i < names().count(); ++i) {
            entries.push_back(names().itemText(i).toStdString());
        }
        return entries;
    }
    void choose(int position) {
        names().setFocus();
        while (names().currentIndex() < position) {
            QTest::keyClick(&names(), Qt::Key_Down);
        }
    }

    TemporaryFolder m_folder;
    ScriptedInteraction m_user;
    base::NoProgress m_progress;
    hosting::HeadlessApplication m_application{m_progress};
    frmISTParams m_form;
    bool m_opened_before = false;
};

TEST_F(frmISTParamsTest, ListsTheLayersWithARunReportInMapOrderAndShowsTheFirst) {
    two_outputs();
    open("prm");
    EXPECT_THAT(listed(), ElementsAre("north", "south"));
    EXPECT_EQ(names().currentIndex(), 0);
    EXPECT_EQ(shown(), "Impervious surface analysis run: north\n\n  Output Layer Name: north\n");
    EXPECT_EQ(title(), "Kestrel Parameters for north.shp");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(frmISTParamsTest, ColumnsOfTheTextStandBelowEachOther) {
    const QFontMetricsF metrics(text().font());
    EXPECT_DOUBLE_EQ(metrics.horizontalAdvance('i'), metrics.horizontalAdvance('W'));
}

TEST_F(frmISTParamsTest, ListsTheLayersWithMetadata) {
    two_outputs();
    open("met");
    EXPECT_THAT(listed(), ElementsAre("north"));
    EXPECT_EQ(shown(), "Identification_Information:\n");
    EXPECT_EQ(title(), "Kestrel Metadata for north.shp");
}

TEST_F(frmISTParamsTest, KeepsAFoldersColumnForEveryLayerThatIsFound) {
    two_outputs();
    open("prm");
    EXPECT_EQ(m_form.FileCount(), 2);
    EXPECT_THAT(m_form.ParamLayers(),
                ElementsAre(ElementsAre("north", m_folder.path() + "/"), ElementsAre("south", m_folder.path() + "/")));
    ASSERT_EQ(folders().count(), 2);
    EXPECT_EQ(folders().item(1)->text().toStdString(), m_folder.path() + "/");
    EXPECT_FALSE(folders().isVisible());
}

TEST_F(frmISTParamsTest, ChoosingALayerShowsItsFileAndSelectsItsFolder) {
    two_outputs();
    open("prm");
    choose(1);
    EXPECT_EQ(folders().currentRow(), 1);
    EXPECT_EQ(shown(), "Impervious surface analysis run: south\n");
    EXPECT_EQ(title(), "Kestrel Parameters for south.shp");
}

TEST_F(frmISTParamsTest, LayersOfOneNameInTwoFoldersShowTheirOwnFiles) {
    base::create_folder(m_folder / "old");
    make("sheds.prm", "new");
    make("old/sheds.prm", "old");
    add("sheds", "sheds.shp");
    add("sheds", "old/sheds.shp");
    open("prm");
    EXPECT_EQ(shown(), "new");
    choose(1);
    EXPECT_EQ(shown(), "old");
}

TEST_F(frmISTParamsTest, OutputWithARunReportButNoMetadataIsListedInTheOneAndMissedInTheOther) {
    make("south.prm", "report");
    add("south", "south.shp");
    open("prm");
    EXPECT_THAT(listed(), ElementsAre("south"));
    m_form.close();

    m_form.FileType("met");
    m_form.show();
    EXPECT_FALSE(m_form.isVisible());
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoMetadata));
}

TEST_F(frmISTParamsTest, MapWithoutAnyRunReportIsToldAndOpensNoWindow) {
    add("roads", "roads.shp");
    m_form.FileType("prm");
    m_form.show();
    QApplication::processEvents();
    EXPECT_FALSE(m_form.isVisible());
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoParameters));
    EXPECT_EQ(m_form.FileCount(), 0);
    EXPECT_THAT(m_form.ParamLayers(), IsEmpty());
}

TEST_F(frmISTParamsTest, CaptionEndsInShpWhateverTheFormat) {
    make("sheds.met");
    add("sheds", "sheds.geojson");
    open("met");
    EXPECT_EQ(title(), "Kestrel Metadata for sheds.shp");
}

TEST_F(frmISTParamsTest, LayerWhoseFileHasItsOwnNameIsListedByThatName) {
    make("Impervious.prm", "report");
    add("Impervious", "run7.shp");
    open("prm");
    EXPECT_THAT(listed(), ElementsAre("Impervious"));
    EXPECT_EQ(shown(), "report");
}

TEST_F(frmISTParamsTest, OpenWindowTurnsToTheOtherKindOfFile) {
    two_outputs();
    open("prm");
    choose(1);
    m_form.FileType("met");
    m_form.show();
    m_form.activateWindow();
    QApplication::processEvents();
    EXPECT_THAT(listed(), ElementsAre("north"));
    EXPECT_EQ(title(), "Kestrel Metadata for north.shp");
}

TEST_F(frmISTParamsTest, ComingBackKeepsTheChoiceAndThePlaceInTheText) {
    two_outputs();
    std::string report;
    for (int line = 0; line < 500; ++line) {
        report += "line\r\n";
    }
    make("south.prm", report);
    open("prm");
    choose(1);
    text().verticalScrollBar()->setValue(200);
    leave_and_come_back();
    EXPECT_EQ(names().currentIndex(), 1);
    EXPECT_EQ(text().verticalScrollBar()->value(), 200);
}

TEST_F(frmISTParamsTest, ComingBackShowsAFileThatAnotherRunHasWritten) {
    two_outputs();
    open("prm");
    choose(1);
    make("south.prm", "the next run");
    leave_and_come_back();
    EXPECT_EQ(names().currentIndex(), 1);
    EXPECT_EQ(shown(), "the next run");
}

TEST_F(frmISTParamsTest, ComingBackToAnotherMapListsItsLayersAndShowsTheFirst) {
    two_outputs();
    open("prm");
    choose(1);
    make("west.prm", "west");
    add("west", "west.shp");
    leave_and_come_back();
    EXPECT_THAT(listed(), ElementsAre("north", "south", "west"));
    EXPECT_EQ(names().currentIndex(), 0);
    EXPECT_EQ(title(), "Kestrel Parameters for north.shp");
}

TEST_F(frmISTParamsTest, ComingBackToAMapWithoutRunReportsTellsItOnceAndClosesTheWindow) {
    two_outputs();
    open("prm");
    m_application.map().open_document({});
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &other; }));
    m_form.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_form.isVisible(); }));
    QTest::qWait(50);
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoParameters));
}

TEST_F(frmISTParamsTest, OpeningAgainBeginsWithTheFirstLayer) {
    two_outputs();
    open("prm");
    choose(1);
    m_form.close();
    open("prm");
    EXPECT_EQ(names().currentIndex(), 0);
    EXPECT_EQ(title(), "Kestrel Parameters for north.shp");
}

TEST_F(frmISTParamsTest, CloseButtonAndEscapeClose) {
    two_outputs();
    open("prm");
    QTest::mouseClick(&control<QPushButton>("cmdClose"), Qt::LeftButton);
    EXPECT_FALSE(m_form.isVisible());
    open("prm");
    QTest::keyClick(&text(), Qt::Key_Escape);
    EXPECT_FALSE(m_form.isVisible());
}

TEST_F(frmISTParamsTest, TextCanBeMarkedAndCopiedButNotChanged) {
    two_outputs();
    open("prm");
    const std::string before = shown();
    text().setFocus();
    QTest::keyClicks(&text(), "x");
    EXPECT_EQ(shown(), before);
    QTest::keyClick(&text(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&text(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), before);
}

TEST_F(frmISTParamsTest, TextStandsInAFontOfOneWidth) {
    const QFontMetrics metrics(text().font());
    EXPECT_EQ(metrics.horizontalAdvance("iiii"), metrics.horizontalAdvance("mmmm"));
}

TEST_F(frmISTParamsTest, TextInTheOldEncodingIsRead) {
    make("north.met", "ArcView\xAE version");
    add("north", "north.shp");
    open("met");
    EXPECT_EQ(shown(), "ArcView\u00AE version");
}

TEST_F(frmISTParamsTest, FileThatCannotBeReadIsReportedOnceAndLeavesNoOtherText) {
    two_outputs();
    open("prm");
    base::remove_file(m_folder / "south.prm");
    choose(1);
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(title(), "Kestrel");
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks[0],
                StartsWith("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tcboSelLayers_Click "
                           "frmISTParams Line : "));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("Error Number \r\n\t53\r\n"));
    m_user.call_stacks.clear();
    make("south.prm", "there again");
    leave_and_come_back();
    EXPECT_EQ(shown(), "there again");
    EXPECT_EQ(title(), "Kestrel Parameters for south.shp");
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(frmISTParamsTest, LayerThatFailsIsReportedAndTheOthersAreListed) {
    two_outputs();
    m_application.map().add_layer(std::make_shared<BrokenLayer>());
    m_form.FileType("prm");
    m_form.show();
    EXPECT_THAT(listed(), ElementsAre("north", "south"));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("\tGetPath frmISTParams "));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("no source"));
}

TEST_F(frmISTParamsTest, WithoutAnApplicationTheScanIsReportedAndFindsNothing) {
    m_form.Application(nullptr);
    m_form.FileType("prm");
    m_form.show();
    EXPECT_FALSE(m_form.isVisible());
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("\tParamLayers frmISTParams Line : "));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("Error Number \r\n\t91\r\n"));
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoParameters));
}

/// The report of a failing procedure.
std::string report_of(const std::string& procedure) {
    return "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t" + procedure +
           " frmISTParams Line : 45\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n";
}

TEST_F(frmISTParamsTest, FailingMessageIsReportedByTheActivation) {
    FailingInteraction nobody;
    m_form.FileType("prm");
    m_form.show();
    EXPECT_THAT(nobody.call_stacks, ElementsAre(report_of("Form_Activate")));
    EXPECT_FALSE(m_form.isVisible());
}

TEST_F(frmISTParamsTest, FailingCloseIsReported) {
    two_outputs();
    open("prm");
    const FailingEvent failing(m_form, QEvent::Hide);
    control<QPushButton>("cmdClose").click();
    EXPECT_THAT(m_user.call_stacks, ElementsAre(report_of("cmdClose_Click")));
}

TEST_F(frmISTParamsTest, LayersOfGroupsStandInTheirPlaceAndASourceTwiceIsListedTwice) {
    two_outputs();
    m_application.map().append_layer(std::make_shared<hosting::HeadlessGroupLayer>(
        "outputs", std::vector<std::shared_ptr<contracts::Layer>>{
                       std::make_shared<HeadlessFeatureLayer>("once more", data::FeatureSource{m_folder / "north.shp"}),
                       std::make_shared<HeadlessFeatureLayer>("lost", data::FeatureSource{})}));
    open("prm");
    EXPECT_THAT(listed(), ElementsAre("north", "south", "north"));
    choose(2);
    EXPECT_EQ(title(), "Kestrel Parameters for north.shp");
}

TEST_F(frmISTParamsTest, HugeReportIsShownToItsLastLine) {
    std::string report;
    for (int line = 0; line < 200'000; ++line) {
        report += "  A class with a name and three coefficients\r\n";
    }
    make("north.prm", report + "the last line");
    add("north", "north.shp");
    open("prm");
    EXPECT_EQ(text().document()->blockCount(), 200'001);
    text().setFocus();
    QTest::keyClick(&text(), Qt::Key_End, Qt::ControlModifier);
    EXPECT_TRUE(text().viewport()->rect().contains(text().cursorRect()));
    EXPECT_EQ(text().textCursor().block().text(), "the last line");
}

TEST_F(frmISTParamsTest, ReturnClosesFromTextAndList) {
    two_outputs();
    for (QWidget* const from : std::initializer_list<QWidget*>{&text(), &names()}) {
        open("prm");
        from->setFocus();
        QTest::keyClick(from, Qt::Key_Return);
        EXPECT_FALSE(m_form.isVisible()) << from->objectName().toStdString();
    }
}

TEST_F(frmISTParamsTest, NothingIsCutOff) {
    two_outputs();
    open("prm");
    for (const QWidget* found : m_form.findChildren<QWidget*>()) {
        if (!found->objectName().startsWith("qt_") && found->isVisible()) {
            EXPECT_GE(found->width(), found->minimumSizeHint().width()) << found->objectName().toStdString();
            EXPECT_GE(found->height(), found->minimumSizeHint().height()) << found->objectName().toStdString();
        }
    }
    EXPECT_GE(text().viewport()->width(), 80 * text().fontMetrics().horizontalAdvance('m'));
}

}  // namespace
}  // namespace kestrel::test
