// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QCloseEvent>
#include <QPointer>
#include <QTimer>

#include "base/files.h"
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Icon;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class RunTest : public ParamsTest {
  protected:
    void SetUp() override { open(); }
    /// Names the output and runs.
    void run(const std::string& name = "is") {
        type_output(out(name));
        click("cmdISRun");
    }
    bool finished() const { return !m_host.results.empty() && m_host.results.back().finished; }
    bool run_is_under_way() { return !list("cboLCTheme").isEnabled(); }
    /// What the next run needs again, since a new layer changes the lists.
    void fill_again() {
        choose("cboAnalysisTheme", "sheds");
        fill();
    }
};

TEST_F(RunTest, WithoutANameNothingIsChecked) {
    click("cmdISRun");
    EXPECT_THAT(boxes(), ElementsAre(reporting::MessageBox{"Please specify an output name.", "Shapefile Name",
                                                           Icon::information}));
}

TEST_F(RunTest, AFolderAloneIsNoShapefileName) {
    fill();
    type_output(m_world.output.path() + "/");
    click("cmdISRun");
    EXPECT_THAT(boxes(), ElementsAre(reporting::MessageBox{"Please enter a shapefile name.", "Shapefile Name?"}));
    EXPECT_EQ(output().text().toStdString(), out(".shp")) << "nothing is refreshed";
}

TEST_F(RunTest, ChecksComeInTheirOrderAndEachPutsTheFocusOnItsControl) {
    const auto refuses = [this](const char* text, const char* focus) {
        boxes().clear();
        run();
        EXPECT_THAT(boxes(), ElementsAre(warning(text)));
        EXPECT_EQ(focused(), focus);
        EXPECT_EQ(output().text(), "") << "the form is refreshed";
    };
    list("cboAnalysisTheme").setCurrentIndex(-1);
    list("cboLCTheme").setCurrentIndex(-1);
    list("cboLCUnits").setCurrentIndex(-1);
    list("cboLCType").setCurrentIndex(-1);
    refuses("No Analysis theme selected, please select from dropdown list.", "cboAnalysisTheme");
    choose("cboAnalysisTheme", "sheds");
    refuses("No Land Cover theme selected, please select from dropdown list.", "cboLCTheme");
    choose("cboLCTheme", "cover");
    refuses("Land Cover units not defined, please select from dropdown list.", "cboLCUnits");
    choose("cboLCUnits", "Meters");
    refuses("Land Cover Type not defined, please select from dropdown list.", "cboLCType");
    choose("cboLCType", "Town");
    refuses("Analysis unit not defined, please select from dropdown list.", "cboAnalysisUnit");
    choose("cboAnalysisUnit", "ID");
    refuses("Population Density option not defined, please select option.", "optPopDensity(0)");
    choose_option(0);
    click("cmdDSAdd");
    refuses("No theme selected, please select from dropdown list.", "cboDSTheme(0)");
    choose("cboDSTheme(0)", "plan");
    refuses("No class selected, please select from dropdown list.", "cboDSToClass(0)");
    EXPECT_THAT(m_host.results, IsEmpty());
}

TEST_F(RunTest, MakesTheOutputAndPutsItsLayerOnTop) {
    fill();
    run();
    EXPECT_THAT(boxes(), IsEmpty());
    ASSERT_TRUE(finished());
    EXPECT_TRUE(base::file_exists(out("is.shp")));
    EXPECT_THAT(layers(), ElementsAre("is", "cover", "sheds", "blocks", "plan"));
    EXPECT_THAT(m_world.said.waiting_texts, ElementsAre("Performing Impervious Surface Analysis.  Please wait..."));
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("is", "sheds", "blocks", "plan"));
    EXPECT_EQ(m_host.results.back().layer_name, "is");
}

TEST_F(RunTest, TheLayerTakesTheNameThatWasTyped) {
    fill();
    type_output(out("is"));
    tab();
    tab();
    ASSERT_EQ(focused(), "txtThemeName");
    QTest::keyClicks(&layer_name(), "is of 2020");
    click("cmdISRun");
    EXPECT_EQ(layers().front(), "is of 2020");
    EXPECT_TRUE(base::file_exists(out("is of 2020.prm")));
}

TEST_F(RunTest, AnEmptyLayerNameIsDerivedAgain) {
    fill();
    type_output(out("is"));
    tab();
    layer_name().clear();
    click("cmdISRun");
    EXPECT_EQ(layers().front(), "is");
}

TEST_F(RunTest, ANameThatEndsInShpWithoutAPointBecomesAShapefile) {
    fill();
    run("myshp");
    EXPECT_TRUE(base::file_exists(out("myshp.shp")));
    EXPECT_EQ(layers().front(), "myshp");
}

TEST_F(RunTest, WritesTheParameterFile) {
    fill();
    click("cmdDSAdd");
    click("cmdDSAdd");
    click("cmdDSAdd");
    choose("cboDSTheme(0)", "plan");
    choose("cboDSToClass(0)", "Roads");
    click("chkDSApply(1)");
    choose("cboDSTheme(2)", "blocks");
    choose("cboDSToClass(2)", "Developed");
    std::string file;
    m_host.run_progress.act = [&] { file = parameter_file(); };
    run();
    EXPECT_EQ(file,
              "VIEW#\r\nLCTHEME#cover\r\nLCUNITS#Meters\r\nANALYSISTHEME#sheds\r\nANALYSISUNIT#NAME\r\n"
              "POPDENSITY#1\r\nOUTTHEME#" +
                  out("is.shp") +
                  "\r\nOUTTHEMENAME#is\r\nDS#1#plan#Roads#7\r\nDS#3#blocks#Developed#2\r\n"
                  "CLASS#2#Developed#90#80#70\r\nCLASS#5#Grassland#2#1.5#1\r\nCLASS#7#Roads#100#100#100\r\n");
}

TEST_F(RunTest, TwoRowsAreNotChecked) {
    fill();
    click("cmdDSAdd");
    click("cmdDSAdd");
    choose("cboDSTheme(0)", "plan");
    choose("cboDSToClass(0)", "Roads");
    choose("cboDSTheme(1)", "plan");
    std::string file;
    m_host.run_progress.act = [&] { file = parameter_file(); };
    run();
    EXPECT_THAT(boxes(), Not(Contains(warning("No class selected, please select from dropdown list."))));
    EXPECT_THAT(m_world.said.waiting_texts, SizeIs(1)) << "the run was started";
}

TEST_F(RunTest, AMissingWorkingFolderIsToldAndTheRunStartedNevertheless) {
    fill();
    base::remove_folder(m_world.extension / "temp");
    run();
    ASSERT_GE(boxes().size(), 2U);
    EXPECT_EQ(boxes()[0].text,
              "Working directory (" + (m_world.extension / "temp") + ") defined in ArcView project does not exist.");
    EXPECT_EQ(boxes()[1].title, "Missing: Model_Params File");
    EXPECT_THAT(layers(), Not(Contains("is")));
}

TEST_F(RunTest, ASecondRunOfTheSameNameReplacesTheFirstWithoutAsking) {
    fill();
    run();
    const std::string first = base::read_file(out("is.dbf"));
    base::write_file(out("is.shp.xml"), "of the first run");
    fill_again();
    choose_option(0);
    run();
    EXPECT_THAT(boxes(), IsEmpty());
    ASSERT_THAT(m_host.results, SizeIs(2));
    EXPECT_TRUE(finished());
    EXPECT_THAT(layers(), ElementsAre("is", "cover", "sheds", "blocks", "plan"));
    EXPECT_NE(base::read_file(out("is.dbf")), first);
    EXPECT_FALSE(base::file_exists(out("is.shp.xml"))) << "the first run's files are gone";
    EXPECT_THAT(names_in(m_world.output.path()), Not(Contains(testing::StartsWith(".kestrel"))));
}

TEST_F(RunTest, OneLayerDrawsFromAReplacedFileWhateverItIsCalled) {
    fill();
    run();
    map().append_layer(
        std::make_shared<hosting::HeadlessFeatureLayer>("renamed", data::FeatureSource{.path = out("is.shp")}));
    map().append_layer(std::make_shared<hosting::HeadlessFeatureLayer>(
        "in a folder", data::FeatureSource{.path = m_world.output.path(), .layer_name = "is"}));
    fill_again();
    run();
    EXPECT_THAT(layers(), ElementsAre("is", "cover", "sheds", "blocks", "plan"));
}

TEST_F(RunTest, AnEarlierOutputInsideAGroupGoes) {
    fill();
    run();
    const auto earlier = map().layers().front();
    map().remove_layer(earlier);
    const auto group = std::make_shared<hosting::HeadlessGroupLayer>(
        "results", std::vector<std::shared_ptr<contracts::Layer>>{earlier});
    map().append_layer(group);
    fill_again();
    run();
    EXPECT_TRUE(finished());
    EXPECT_THAT(layers(), ElementsAre("is", "cover", "sheds", "blocks", "plan", "results"));
    EXPECT_THAT(group->members(), IsEmpty());
}

TEST_F(RunTest, ACancelledRunLeavesMapAndDiskAsTheyWere) {
    fill();
    run();
    const auto layers_before = map().layers();
    const auto names_before = names_in(m_world.output.path());
    const std::string table_before = base::read_file(out("is.dbf"));
    fill_again();
    m_host.run_progress.stopped = true;
    run();
    ASSERT_THAT(m_host.results, SizeIs(2));
    EXPECT_TRUE(m_host.results.back().cancelled);
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(map().layers(), layers_before);
    EXPECT_EQ(names_in(m_world.output.path()), names_before);
    EXPECT_EQ(base::read_file(out("is.dbf")), table_before);
}

TEST_F(RunTest, AFailedRunLeavesMapAndDiskAsTheyWere) {
    fill();
    run();
    const auto layers_before = map().layers();
    const auto names_before = names_in(m_world.output.path());
    fill_again();
    choose("cboLCType", "Valley");  // knows neither developed land nor roads
    run();
    EXPECT_THAT(boxes(), SizeIs(1)) << "the run says what is wrong";
    EXPECT_FALSE(finished());
    EXPECT_EQ(map().layers(), layers_before);
    EXPECT_EQ(names_in(m_world.output.path()), names_before);
}

TEST_F(RunTest, AnOutputThatIsAnInputIsRefusedBeforeAnythingIsDeleted) {
    fill();
    const auto refusal = [](const std::string& path) {
        return warning("The output '" + path + "' would replace the input '" + path +
                       "', or files that belong to it. Give another output name.");
    };
    for (const char* input : {"sheds", "plan"}) {
        boxes().clear();
        if (std::string(input) == "plan") {
            click("cmdDSAdd");
            choose("cboDSTheme(0)", "plan");
            choose("cboDSToClass(0)", "Roads");
        }
        const auto before = names_in(m_world.folder.path());
        const std::string path = m_world.folder / (std::string(input) + ".shp");
        type_output(path);
        click("cmdISRun");
        EXPECT_THAT(boxes(), ElementsAre(refusal(path)));
        EXPECT_EQ(focused(), "txtOutputTheme");
        EXPECT_EQ(names_in(m_world.folder.path()), before);
        EXPECT_THAT(m_world.temp(), IsEmpty()) << "no parameter file is written";
    }
    EXPECT_THAT(m_world.said.waiting_texts, IsEmpty());
}

TEST_F(RunTest, NamesAndFoldersThatCannotTakeTheOutputAreRefused) {
    fill();
    type_output(out("is"));
    tab();
    layer_name().setText("a/b");
    click("cmdISRun");
    base::create_folder(out("is.shp"));
    run();
    EXPECT_THAT(boxes(), ElementsAre(warning("'a/b' cannot be a layer's name: the run report and the metadata are "
                                             "files of that name, so it may hold no slash. Give another output name."),
                                     warning("'" + out("is.shp") +
                                             "' is a folder, where a file of the output would stand. Give another "
                                             "output name.")));
    EXPECT_THAT(m_world.said.waiting_texts, IsEmpty());
}

TEST_F(RunTest, AFolderInUseIsToldAndNothingIsTouched) {
    fill();
    run();
    const auto names_before = names_in(m_world.output.path());
    fill_again();
    const base::FolderLock other(m_world.extension.path());
    run();
    EXPECT_THAT(boxes(),
                ElementsAre(warning("The run cannot be started. Another run, or another save of coefficients, is "
                                    "using the folder \"" +
                                    m_world.extension.path() + "\"; try again when it has ended.")));
    EXPECT_EQ(names_in(m_world.output.path()), names_before);
    EXPECT_THAT(m_world.temp(), IsEmpty());
    EXPECT_THAT(m_host.results, SizeIs(1));
}

TEST_F(RunTest, TheFolderIsLockedWhileTheParameterFileIsThere) {
    fill();
    bool free = true;
    m_host.run_progress.act = [&] {
        try {
            const base::FolderLock second(m_world.extension.path());
        } catch (const base::RuntimeError&) {
            free = false;
        }
    };
    run();
    EXPECT_FALSE(free);
    EXPECT_NO_THROW(base::FolderLock(m_world.extension.path()));
}

TEST_F(RunTest, TheFormShowsTheHourglassAndTakesNoInputWhileTheRunWorks) {
    fill();
    bool looked = false;
    m_host.run_progress.act = [&] {
        looked = true;
        EXPECT_EQ(m_form->cursor().shape(), Qt::WaitCursor);
        EXPECT_TRUE(run_is_under_way());
        click("cmdISRun");
        click("cmdISQuit");
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QTest::keyClick(m_form.get(), Qt::Key_Return);
        m_form->close();
        QApplication::processEvents();
        EXPECT_TRUE(m_form->isVisible());
    };
    run();
    EXPECT_TRUE(looked);
    EXPECT_EQ(m_form->cursor().shape(), Qt::ArrowCursor);
    EXPECT_FALSE(run_is_under_way());
    EXPECT_THAT(m_host.results, SizeIs(1));
    EXPECT_THAT(m_world.said.waiting_texts, SizeIs(1));
    EXPECT_TRUE(finished());
}

TEST_F(RunTest, ChangesOfTheMapDuringARunReachTheListsAfterIt) {
    fill();
    bool done = false;
    m_host.run_progress.act = [&] {
        if (!done) {
            m_world.layer("wells", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
            EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("sheds", "blocks", "plan"));
        }
        done = true;
    };
    run();
    EXPECT_TRUE(finished());
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("is", "sheds", "blocks", "plan", "wells"));
    EXPECT_THAT(m_world.said.notices, IsEmpty());
}

TEST_F(RunTest, AFormThatIsDestroyedDuringARunCrashesNothing) {
    fill();
    m_host.run_progress.act = [&] { m_form.reset(); };
    type_output(out("is"));
    QTest::keyClick(&output(), Qt::Key_Tab);
    // A button that goes in the middle of its own click would be the test's fault, not the form's.
    QTimer::singleShot(0, &control<QPushButton>("cmdISRun"), &QPushButton::click);
    QApplication::processEvents();
    EXPECT_EQ(m_form, nullptr);
    EXPECT_TRUE(finished());
    EXPECT_NO_THROW(base::FolderLock(m_world.extension.path()));
    map().move_layer(0, 1);  // nobody listens any more
}

TEST_F(RunTest, AnErrorIsReportedAndTheFormIsUsableAgain) {
    fill();
    m_host.run_progress.act = [] { throw base::RuntimeError(base::kOutOfMemory, "no memory"); };
    run();
    EXPECT_THAT(m_world.said.call_stacks, Not(IsEmpty()));
    EXPECT_FALSE(run_is_under_way());
    EXPECT_EQ(m_form->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(m_form->isVisible());
}

TEST_F(RunTest, LayersOfOneNameAreToldOf) {
    m_world.layer("plan2", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
    map().append_layer(std::make_shared<hosting::HeadlessFeatureLayer>(
        "sheds", data::FeatureSource{.path = m_world.folder / "plan2.shp"}));
    fill();
    run();
    EXPECT_THAT(m_world.said.notices,
                Contains("Several layers of the map are named 'sheds'; the run takes the first of them."));
}

TEST_F(RunTest, NoticesOfTheRunAreToldOnce) {
    m_world.layer("degrees", {text_field("NAME")}, {{{{0, 0, 2, 4}}, {"West"}}}, {}, "");
    choose("cboAnalysisTheme", "degrees");
    fill();
    run();
    ASSERT_TRUE(finished());
    EXPECT_THAT(m_host.results.back().notices, Not(IsEmpty()));
    EXPECT_EQ(m_world.said.notices, m_host.results.back().notices);
}

}  // namespace
}  // namespace kestrel::test
