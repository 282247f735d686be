// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsExtension.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/errors.h"
#include "base/files.h"
#include "contracts/application.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class clsExtensionTest : public testing::Test {
  protected:
    test::TemporaryFolder m_folder;
    clsExtension m_extension{m_folder.path()};
};

/// An application that nothing is asked of.
class IdleApplication final : public contracts::Application {
  public:
    contracts::Document& document() override { throw base::RuntimeError(5, "not asked"); }
    contracts::IExtensionConfig* find_extension(std::string_view) override { return nullptr; }
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string&, const std::string&) override {
        return nullptr;
    }
    reporting::Interaction& interaction() override { throw base::RuntimeError(5, "not asked"); }
    base::Progress& progress() override { throw base::RuntimeError(5, "not asked"); }
    void run_ended(contracts::RunResult) override {}
};

TEST_F(clsExtensionTest, TellsItsNames) {
    EXPECT_EQ(m_extension.IExtension_Name(), "Kestrel");
    EXPECT_EQ(m_extension.IExtensionConfig_ProductName(), "Kestrel Tools");
    EXPECT_EQ(m_extension.IExtensionConfig_Description(),
              "Extension for estimating area of imperviousness based on land cover.");
}

TEST_F(clsExtensionTest, KeepsTheApplicationFromStartUpToShutDown) {
    IdleApplication application;
    EXPECT_EQ(m_extension.application(), nullptr);
    m_extension.IExtension_Startup(&application);
    EXPECT_EQ(m_extension.application(), &application);
    m_extension.IExtension_Shutdown();
    EXPECT_EQ(m_extension.application(), nullptr);
}

/// Windows that note down when they are started and stopped.
class NotedWindows final : public ExtensionWindows {
  public:
    explicit NotedWindows(std::vector<std::string>& notes) : m_notes(notes) {}
    void start(contracts::Application&) override { m_notes.emplace_back("start"); }
    void stop() override { m_notes.emplace_back("stop"); }
    void open(CommandKind, contracts::Application&) override {}

  private:
    std::vector<std::string>& m_notes;
};

TEST_F(clsExtensionTest, WindowsStartAndStopWithIt) {
    IdleApplication first, second;
    std::vector<std::string> notes;
    {
        clsExtension extension(m_folder.path(), std::make_unique<NotedWindows>(notes));
        EXPECT_THAT(notes, IsEmpty());
        extension.IExtension_Startup(&first);
        extension.IExtension_Startup(&second);
        EXPECT_EQ(extension.application(), &second);
        EXPECT_THAT(notes, ElementsAre("start", "start"));
    }
    EXPECT_THAT(notes, ElementsAre("start", "start", "stop"));
}

TEST_F(clsExtensionTest, StateOutlivesAShutDown) {
    m_extension.IExtensionConfig_State(2);
    m_extension.IExtension_Shutdown();
    m_extension.IExtension_Shutdown();
    EXPECT_EQ(m_extension.IExtensionConfig_State(), 2);
}

TEST_F(clsExtensionTest, StateIsZeroUntilTheHostWritesIt) {
    EXPECT_EQ(m_extension.IExtensionConfig_State(), 0);
    EXPECT_THAT(test::names_in(m_folder.path()), IsEmpty());
}

TEST_F(clsExtensionTest, StateIsTheOneLastWritten) {
    for (const std::int32_t state : {1, 2, 3, -1, 0}) {
        m_extension.IExtensionConfig_State(state);
        EXPECT_EQ(m_extension.IExtensionConfig_State(), state);
    }
}

TEST_F(clsExtensionTest, WritingTheStateCreatesNothing) {
    m_extension.IExtensionConfig_State(1);
    EXPECT_THAT(test::names_in(m_folder.path()), IsEmpty());
}

TEST_F(clsExtensionTest, ReadingTheEnabledStateMakesTempAndOutputOnly) {
    m_extension.IExtensionConfig_State(1);
    EXPECT_EQ(m_extension.IExtensionConfig_State(), 1);
    EXPECT_THAT(test::names_in(m_folder.path()), ElementsAre("output", "temp"));
}

TEST_F(clsExtensionTest, ReadingAnyOtherStateCreatesNothing) {
    for (const std::int32_t state : {2, 0, 3, -1}) {
        m_extension.IExtensionConfig_State(state);
        m_extension.IExtensionConfig_State();
    }
    EXPECT_THAT(test::names_in(m_folder.path()), IsEmpty());
}

TEST_F(clsExtensionTest, ReadingWithBothFoldersPresentChangesNothing) {
    base::create_folder(m_folder / "temp");
    base::create_folder(m_folder / "output");
    base::write_file(m_folder / "temp/model_params.txt", "VIEW#\r\n");
    const auto time_before = std::filesystem::last_write_time(m_folder.path());
    m_extension.IExtensionConfig_State(1);
    m_extension.IExtensionConfig_State();
    EXPECT_EQ(std::filesystem::last_write_time(m_folder.path()), time_before);
    EXPECT_THAT(test::names_in(m_folder.path()), ElementsAre("output", "temp"));
    EXPECT_EQ(base::read_file(m_folder / "temp/model_params.txt"), "VIEW#\r\n");
}

TEST_F(clsExtensionTest, FolderDeletedWhileEnabledComesBackEmptyWithTheNextRead) {
    m_extension.IExtensionConfig_State(1);
    m_extension.IExtensionConfig_State();
    base::write_file(m_folder / "output/old.shp", "x");
    base::remove_folder(m_folder / "output");
    m_extension.IExtensionConfig_State();
    EXPECT_THAT(test::names_in(m_folder / "output"), IsEmpty());
}

TEST(clsExtension, MissingExtensionFolderIsNotMadeAndTheErrorPassesOutUnreported) {
    const test::TemporaryFolder folder;
    test::ScriptedInteraction user;
    clsExtension extension(folder / "missing");
    extension.IExtensionConfig_State(1);
    try {
        extension.IExtensionConfig_State();
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 76);
    }
    EXPECT_THAT(test::names_in(folder.path()), IsEmpty());
    EXPECT_TRUE(user.call_stacks.empty());
    EXPECT_TRUE(user.boxes.empty());
}

TEST_F(clsExtensionTest, FileInTheWayOfAFolderIsAnErrorThatPassesOut) {
    base::write_file(m_folder / "temp", "");
    m_extension.IExtensionConfig_State(1);
    EXPECT_THROW(m_extension.IExtensionConfig_State(), base::RuntimeError);
    EXPECT_THAT(test::names_in(m_folder.path()), ElementsAre("temp"));
}

}  // namespace
}  // namespace kestrel
