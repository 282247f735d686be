// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWidget>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/error_of.h"
#include "tests/support/test_host.h"

/// \file
/// The built extension library, loaded and driven as a host does it.
namespace kestrel {
namespace {

using contracts::kExtensionDisabled;
using contracts::kExtensionEnabled;
using hosting::HostedItem;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(ExtensionLibrary, ToolbarCarriesTheMenuAsItsOnlyControl) {
    test::TestHost host;
    EXPECT_EQ(host.kestrel().toolbar().IToolBarDef_Name(), "Kestrel Tools");
    EXPECT_EQ(host.kestrel().toolbar().IToolBarDef_Caption(), "Kestrel Tools");
    ASSERT_EQ(host.kestrel().items().size(), 1U);
    ASSERT_NE(host.menu().menu, nullptr);
    EXPECT_EQ(host.menu().menu->IMenuDef_Name(), "Kestrel");
    EXPECT_EQ(host.menu().menu->IMenuDef_Caption(), "Impervious Surface Tools");
}

TEST(ExtensionLibrary, MenuHasSixCommandsAndASeparatorAboveHelp) {
    test::TestHost host;
    EXPECT_THAT(host.shown_menu(),
                ElementsAre("Run Impervious Surface Analysis...", "View Kestrel Parameters for a Layer...",
                            "View Kestrel Metadata for a Layer...", "Change Coefficients...", "-", "Help...",
                            "About Kestrel..."));
}

TEST(ExtensionLibrary, SwitchedOffAllSixEntriesAreGreyedHelpAndAboutIncluded) {
    test::TestHost host;
    host.set_state(kExtensionDisabled);
    EXPECT_THAT(host.shown_menu(),
                ElementsAre("(Run Impervious Surface Analysis...)", "(View Kestrel Parameters for a Layer...)",
                            "(View Kestrel Metadata for a Layer...)", "(Change Coefficients...)", "-", "(Help...)",
                            "(About Kestrel...)"));
}

TEST(ExtensionLibrary, AskingForTheMenuMakesTheWorkingFoldersBesideTheLibrary) {
    test::TestHost host;
    EXPECT_THAT(test::names_in(host.extension_folder()), ElementsAre("etc", "help", "libkestrel_ext.so"));
    host.shown_menu();
    EXPECT_THAT(test::names_in(host.extension_folder()),
                ElementsAre("etc", "help", "libkestrel_ext.so", "output", "temp"));
    base::remove_folder(host.extension_folder() + "/output");
    host.shown_menu();
    EXPECT_THAT(test::names_in(host.extension_folder() + "/output"), IsEmpty());
}

TEST(ExtensionLibrary, WithSpatialAnalystOffAboutShowsTheMessageInsteadOfItsWindow) {
    test::TestHost host;
    host.raster_analysis.IExtensionConfig_State(kExtensionDisabled);
    host.click("About Kestrel...");
    EXPECT_THAT(host.windows(), IsEmpty());
    EXPECT_THAT(host.said.boxes,
                ElementsAre(MessageBox{"Spatial Analyst Extension required to run Impervious Surface Analysis.", "",
                                       reporting::Icon::exclamation, reporting::Buttons::ok}));
}

TEST(ExtensionLibrary, WithoutSpatialAnalystEveryClickIsReportedAndOpensNothing) {
    test::TestHost host(test::TestHost::Raster::missing);
    for (const HostedItem& item : host.menu().items) {
        host.said.call_stacks.clear();
        host.click(item.command->ICommand_Caption());
        EXPECT_THAT(host.windows(), IsEmpty());
        ASSERT_EQ(host.said.call_stacks.size(), 1U);
        EXPECT_THAT(
            host.said.call_stacks[0],
            HasSubstr("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tApplication clsCommands "
                      "Line : "));
        EXPECT_THAT(host.said.call_stacks[0], HasSubstr("\r\nError Number \r\n\t91\r\nDescription\r\n\t"));
    }
}

TEST(ExtensionLibrary, ClickingTwiceBringsUpTheSameWindow) {
    test::TestHost host;
    for (const auto& [caption, name] : {std::pair{"Run Impervious Surface Analysis...", "frmISParams"},
                                        {"Change Coefficients...", "frmISModelProps"},
                                        {"Help...", "frmHelpBrowser2"},
                                        {"About Kestrel...", "frmISAbout"}}) {
        host.click(caption);
        QWidget* const first = host.window(name);
        ASSERT_NE(first, nullptr) << name;
        EXPECT_EQ(first->parentWidget(), nullptr);
        EXPECT_FALSE(first->isModal());
        EXPECT_EQ(QApplication::activeWindow(), first);
        host.click(caption);
        EXPECT_EQ(host.window(name), first);
        first->close();
        EXPECT_EQ(host.window(name), nullptr);
        host.click(caption);
        EXPECT_EQ(host.window(name), first);
    }
    EXPECT_THAT(host.windows(), ElementsAre("frmHelpBrowser2", "frmISAbout", "frmISModelProps", "frmISParams"));
    EXPECT_THAT(host.said.call_stacks, IsEmpty());
    EXPECT_THAT(host.said.boxes, IsEmpty());
}

TEST(ExtensionLibrary, ClickOnAnOpenWindowBringsItToTheFrontAndUnminimisesIt) {
    test::TestHost host;
    host.click("About Kestrel...");
    host.click("Help...");
    QWidget* const about = host.window("frmISAbout");
    ASSERT_NE(about, nullptr);
    ASSERT_NE(QApplication::activeWindow(), about);
    about->showMinimized();
    host.click("About Kestrel...");
    EXPECT_EQ(QApplication::activeWindow(), about);
    EXPECT_FALSE(about->isMinimized());
}

TEST(ExtensionLibrary, ShutDownClosesAllWindows) {
    test::TestHost host;
    host.click("Change Coefficients...");
    host.click("Help...");
    host.shut_down();
    EXPECT_THAT(host.windows(), IsEmpty());
    EXPECT_THAT(QApplication::topLevelWidgets(), IsEmpty());
}

/// Types into the first cell of the editor's first set.
void change_coefficients(test::TestHost& host) {
    host.click("Change Coefficients...");
    QWidget* const editor = host.window("frmISModelProps");
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor->findChild<QWidget*>("grdLCDef"), '7');
    ASSERT_TRUE(editor->isWindowModified());
}

const MessageBox kUnsaved{
    "Changes to the coefficient set have not been saved. \r\n Click 'Yes' to save changes, or 'No' to give them up.",
    "", reporting::Icon::none, reporting::Buttons::yes_no};

std::string store_of(test::TestHost& host) {
    return base::read_file(host.extension_folder() + "/etc/isprops.xml");
}

TEST(ExtensionLibrary, ShutDownAsksForChangesOfCoefficientsThatAreNotSaved) {
    test::TestHost host;
    const std::string before = store_of(host);
    change_coefficients(host);
    host.said.answers = {reporting::Answer::yes};
    host.shut_down();
    EXPECT_THAT(host.said.boxes, ElementsAre(kUnsaved));
    EXPECT_NE(store_of(host), before);
    EXPECT_THAT(QApplication::topLevelWidgets(), IsEmpty());
}

TEST(ExtensionLibrary, ShutDownGivesChangesUpWhenToldTo) {
    test::TestHost host;
    const std::string before = store_of(host);
    change_coefficients(host);
    host.shut_down();
    EXPECT_THAT(host.said.boxes, ElementsAre(kUnsaved));
    EXPECT_EQ(store_of(host), before);
}

TEST(ExtensionLibrary, StartedTwiceItBeginsAnew) {
    test::TestHost host;
    change_coefficients(host);
    host.kestrel().extension().IExtension_Startup(&host.application);
    EXPECT_THAT(host.said.boxes, ElementsAre(kUnsaved));
    EXPECT_THAT(host.windows(), IsEmpty());
    host.click("About Kestrel...");
    EXPECT_THAT(host.windows(), ElementsAre("frmISAbout"));
}

TEST(ExtensionLibrary, TwoExtensionObjectsHaveTheirOwnWindowsAndEndInAnyOrder) {
    test::TestHost host;
    host.click("Help...");
    {
        const hosting::ExtensionLibrary library(host.library_path());
        const auto second = library.create(contracts::kKestrelExtension);
        hosting::contract<contracts::IExtension>(*second).IExtension_Startup(&host.application);
        host.shut_down();
        EXPECT_THAT(host.windows(), IsEmpty());
    }
    host.kestrel().start(host.application);
    base::remove_file(host.extension_folder() + "/help/is_index.html");
    host.click("Help...");
    EXPECT_EQ(host.said.boxes.size(), 1U);
    EXPECT_THAT(host.said.call_stacks, IsEmpty());
}

TEST(ExtensionLibrary, StartsAgainAfterAShutDown) {
    test::TestHost host;
    host.shut_down();
    host.kestrel().start(host.application);
    host.click("About Kestrel...");
    EXPECT_THAT(host.windows(), ElementsAre("frmISAbout"));
}

/// A layer with the files beside its data that a run writes.
void add_output(test::TestHost& host, const test::TemporaryFolder& folder, const std::vector<std::string>& records) {
    for (const std::string& ending : records) {
        base::write_file(folder / ("sheds." + ending), "the " + ending + " of sheds");
    }
    host.application.map().append_layer(
        std::make_shared<hosting::HeadlessFeatureLayer>("sheds", data::FeatureSource{folder / "sheds.shp"}));
}

TEST(ExtensionLibrary, OneViewerShowsRunReportsAndMetadata) {
    const test::TemporaryFolder folder;
    test::TestHost host;
    add_output(host, folder, {"prm", "met"});
    host.click("View Kestrel Parameters for a Layer...");
    QWidget* const viewer = host.window("frmISTParams");
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->windowTitle(), "Kestrel Parameters for sheds.shp");
    host.click("View Kestrel Metadata for a Layer...");
    EXPECT_EQ(host.window("frmISTParams"), viewer);
    EXPECT_EQ(viewer->windowTitle(), "Kestrel Metadata for sheds.shp");
    EXPECT_THAT(host.windows(), ElementsAre("frmISTParams"));
    EXPECT_THAT(host.said.boxes, IsEmpty());
}

TEST(ExtensionLibrary, LayerWithoutMetadataIsListedByTheOneViewCommandOnly) {
    const test::TemporaryFolder folder;
    test::TestHost host;
    add_output(host, folder, {"prm"});
    host.click("View Kestrel Parameters for a Layer...");
    EXPECT_THAT(host.windows(), ElementsAre("frmISTParams"));
    host.window("frmISTParams")->close();
    host.click("View Kestrel Metadata for a Layer...");
    EXPECT_THAT(host.windows(), IsEmpty());
    EXPECT_THAT(host.said.boxes, ElementsAre(MessageBox{"There are no layers with an associated \"Metadata\" file.",
                                                        "No Metadata Files"}));
}

/// Clicks a button of a window.
void press(QWidget& window, const char* name) {
    QMetaObject::invokeMethod(window.findChild<QObject*>(name), "click");
    QApplication::processEvents();
}

TEST(ExtensionLibrary, HelpButtonsOpenTheOneHelpWindow) {
    test::TestHost host;
    host.click("Change Coefficients...");
    press(*host.window("frmISModelProps"), "cmdHelp");
    QWidget* const help = host.window("frmHelpBrowser2");
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(host.said.help_requests, 0);
    host.click("Help...");
    EXPECT_EQ(host.window("frmHelpBrowser2"), help);
    EXPECT_THAT(host.windows(), ElementsAre("frmHelpBrowser2", "frmISModelProps"));
}

TEST(ExtensionLibrary, WindowsSpeakThroughTheHost) {
    test::TestHost host;
    base::remove_file(host.extension_folder() + "/help/is_index.html");
    host.click("Help...");
    EXPECT_THAT(host.said.boxes, ElementsAre(MessageBox{"The Kestrel help file (" + host.extension_folder() +
                                                        "/help/is_index.html) does not exist."}));
}

TEST(ExtensionLibrary, AnErrorOfTheStateReadReachesTheHostAsARuntimeError) {
    test::TestHost host;
    base::write_file(host.extension_folder() + "/temp", "a file where the folder belongs");
    // Thrown by the library's code, caught by the host's.
    EXPECT_THROW(host.shown_menu(), base::RuntimeError);
}

}  // namespace
}  // namespace kestrel
