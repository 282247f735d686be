// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsCommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "extension/clsExtension.h"
#include "hosting/headless_application.h"
#include "tests/support/raster_analysis.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using contracts::kExtensionDisabled;
using contracts::kExtensionEnabled;
using contracts::kKestrelExtension;
using contracts::kRasterAnalysisExtension;
using hosting::HeadlessApplication;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// Windows that are only counted.
class ListedWindows final : public ExtensionWindows {
  public:
    ListedWindows(std::vector<int>& opened, const contracts::Application*& told) : m_opened(opened), m_told(told) {}
    void start(contracts::Application&) override {}
    void stop() override {}
    void open(CommandKind command, contracts::Application& application) override {
        m_opened.push_back(static_cast<int>(command));
        m_told = &application;
    }

  private:
    std::vector<int>& m_opened;
    const contracts::Application*& m_told;
};

class clsCommandsTest : public testing::Test {
  protected:
    clsCommandsTest() {
        m_application.register_extension(kKestrelExtension, m_extension);
        m_application.register_extension(kRasterAnalysisExtension, m_raster_analysis);
        m_extension.IExtensionConfig_State(kExtensionEnabled);
        m_raster_analysis.IExtensionConfig_State(kExtensionEnabled);
    }

    static clsCommands command(std::int32_t sub_type, contracts::Application* hook) {
        clsCommands made;
        made.ICommandSubType_SetSubType(sub_type);
        made.ICommand_OnCreate(hook);
        return made;
    }
    void click(std::int32_t sub_type) { command(sub_type, &m_application).ICommand_OnClick(); }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_said;
    base::NoProgress m_progress;
    std::vector<int> m_opened;
    const contracts::Application* m_told = nullptr;
    clsExtension m_extension{m_folder.path(), std::make_unique<ListedWindows>(m_opened, m_told)};
    test::RasterAnalysis m_raster_analysis;
    HeadlessApplication m_application{m_progress};
};

TEST_F(clsCommandsTest, CaptionIsAlsoNameTooltipAndMessage) {
    const std::vector<std::string> captions{"Run Impervious Surface Analysis...",
                                            "View Kestrel Parameters for a Layer...",
                                            "View Kestrel Metadata for a Layer...",
                                            "Change Coefficients...",
                                            "Help...",
                                            "About Kestrel..."};
    for (int sub_type = 1; sub_type <= 6; ++sub_type) {
        const clsCommands one = command(sub_type, &m_application);
        const std::string& caption = captions[static_cast<std::size_t>(sub_type) - 1];
        EXPECT_EQ(one.ICommand_Caption(), caption);
        EXPECT_EQ(one.ICommand_Name(), caption);
        EXPECT_EQ(one.ICommand_Tooltip(), caption);
        EXPECT_EQ(one.ICommand_Message(), caption);
    }
}

TEST_F(clsCommandsTest, SubTypeOutsideOneToSixHasEmptyTexts) {
    for (const std::int32_t sub_type : {0, 7, -1, 2147483647, -2147483647 - 1}) {
        const clsCommands one = command(sub_type, &m_application);
        EXPECT_EQ(one.ICommand_Caption(), "");
        EXPECT_EQ(one.ICommand_Name(), "");
        EXPECT_EQ(one.ICommand_Tooltip(), "");
        EXPECT_EQ(one.ICommand_Message(), "");
    }
}

TEST_F(clsCommandsTest, BeforeItsSubTypeIsSetItHasEmptyTexts) {
    EXPECT_EQ(clsCommands().ICommand_Caption(), "");
}

TEST_F(clsCommandsTest, OtherAnswersAreTheSameForAll) {
    for (int sub_type = 0; sub_type <= 7; ++sub_type) {
        const clsCommands one = command(sub_type, &m_application);
        EXPECT_FALSE(one.ICommand_Checked());
        EXPECT_EQ(one.ICommand_HelpFile(), "");
        EXPECT_EQ(one.ICommand_HelpContextID(), 0);
        EXPECT_EQ(one.ICommand_Bitmap(), 0);
        EXPECT_EQ(one.ICommand_Category(), "");
        EXPECT_EQ(one.ICommandSubType_GetCount(), 6);
    }
}

TEST_F(clsCommandsTest, EnabledExactlyWhileTheExtensionsStateIsOne) {
    const clsCommands one = command(1, &m_application);
    for (const std::int32_t state : {1, 2, 0, 3, -1, 1}) {
        m_extension.IExtensionConfig_State(state);
        EXPECT_EQ(one.ICommand_Enabled(), state == 1) << state;
    }
}

TEST_F(clsCommandsTest, NotEnabledWithoutTheExtension) {
    HeadlessApplication empty(m_progress);
    EXPECT_FALSE(command(1, &empty).ICommand_Enabled());
    EXPECT_FALSE(command(1, nullptr).ICommand_Enabled());
    EXPECT_FALSE(clsCommands().ICommand_Enabled());
}

TEST_F(clsCommandsTest, AskingWhetherItIsEnabledMakesTheWorkingFolders) {
    const clsCommands one = command(1, &m_application);
    EXPECT_THAT(test::names_in(m_folder.path()), IsEmpty());
    EXPECT_TRUE(one.ICommand_Enabled());
    EXPECT_THAT(test::names_in(m_folder.path()), ElementsAre("output", "temp"));
}

TEST_F(clsCommandsTest, ClickOpensTheWindowOfTheSubTypeWithTheApplication) {
    for (int sub_type = 1; sub_type <= 6; ++sub_type) {
        click(sub_type);
    }
    EXPECT_THAT(m_opened, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(m_told, &m_application);
    EXPECT_THAT(m_said.boxes, IsEmpty());
    EXPECT_THAT(m_said.call_stacks, IsEmpty());
}

TEST_F(clsCommandsTest, ClickOfAnotherSubTypeOpensNothingAndSaysNothing) {
    for (const std::int32_t sub_type : {0, 7, -1}) {
        click(sub_type);
    }
    EXPECT_THAT(m_opened, IsEmpty());
    EXPECT_THAT(m_said.boxes, IsEmpty());
    EXPECT_THAT(m_said.call_stacks, IsEmpty());
}

TEST_F(clsCommandsTest, DisabledSpatialAnalystKeepsAllSixFromTheirWindows) {
    m_raster_analysis.IExtensionConfig_State(kExtensionDisabled);
    for (int sub_type = 1; sub_type <= 6; ++sub_type) {
        m_said.boxes.clear();
        click(sub_type);
        EXPECT_THAT(m_said.boxes,
                    ElementsAre(MessageBox{"Spatial Analyst Extension required to run Impervious Surface Analysis.", "",
                                           reporting::Icon::exclamation, reporting::Buttons::ok}));
    }
    EXPECT_THAT(m_opened, IsEmpty());
}

// Only the disabled state counts. Intended; do not "fix".
TEST_F(clsCommandsTest, SpatialAnalystThatIsNeitherEnabledNorDisabledLetsTheCommandRun) {
    for (const std::int32_t state : {0, 3, -1}) {
        m_raster_analysis.IExtensionConfig_State(state);
        click(6);
    }
    EXPECT_THAT(m_opened, ElementsAre(6, 6, 6));
}

TEST_F(clsCommandsTest, MissingSpatialAnalystIsReportedUnderTheNameApplication) {
    HeadlessApplication without(m_progress);
    without.register_extension(kKestrelExtension, m_extension);
    command(6, &without).ICommand_OnClick();
    EXPECT_THAT(m_opened, IsEmpty());
    EXPECT_THAT(m_said.boxes, IsEmpty());
    ASSERT_EQ(m_said.call_stacks.size(), 1U);
    EXPECT_THAT(m_said.call_stacks[0], StartsWith("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
                                                  "\tApplication clsCommands Line : "));
    EXPECT_THAT(m_said.call_stacks[0], HasSubstr("\r\nError Number \r\n\t91\r\nDescription\r\n\tThe application has no "
                                                 "raster analysis extension (esriCore.SAExtension.1)\r\n\r\n"));
}

TEST_F(clsCommandsTest, ClickWithoutAnApplicationIsReported) {
    clsCommands().ICommand_OnClick();
    ASSERT_EQ(m_said.call_stacks.size(), 1U);
    EXPECT_THAT(m_said.call_stacks[0], HasSubstr("\tApplication clsCommands Line : "));
}

TEST_F(clsCommandsTest, ExtensionWithoutWindowsIsReported) {
    clsExtension windowless(m_folder.path());
    HeadlessApplication application(m_progress);
    application.register_extension(kKestrelExtension, windowless);
    application.register_extension(kRasterAnalysisExtension, m_raster_analysis);
    command(6, &application).ICommand_OnClick();
    ASSERT_EQ(m_said.call_stacks.size(), 1U);
    EXPECT_THAT(m_said.call_stacks[0], HasSubstr("\tApplication clsCommands Line : "));
}

TEST_F(clsCommandsTest, ErrorOfAWindowIsReportedUnderTheNameApplication) {
    class Broken final : public ExtensionWindows {
        void start(contracts::Application&) override {}
        void stop() override {}
        void open(CommandKind, contracts::Application&) override {
            throw base::RuntimeError(70, "Permission denied", "Kestrel", 45);
        }
    };
    clsExtension extension(m_folder.path(), std::make_unique<Broken>());
    HeadlessApplication application(m_progress);
    application.register_extension(kKestrelExtension, extension);
    application.register_extension(kRasterAnalysisExtension, m_raster_analysis);
    command(4, &application).ICommand_OnClick();
    EXPECT_THAT(m_said.call_stacks,
                ElementsAre("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
                            "\tApplication clsCommands Line : 45\r\n"
                            "\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n"));
}

}  // namespace
}  // namespace kestrel
