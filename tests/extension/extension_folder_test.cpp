// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/extension_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using base::read_file;
using base::write_file;
using testing::ElementsAre;
using testing::IsEmpty;

// A folder in which nobody, not even the superuser, can make a file.
constexpr const char* kReadOnlyFolder = "/proc/self";

class UserExtensionFolder : public testing::Test {
  protected:
    void SetUp() override {
        base::create_folders(m_installed / "etc");
        base::create_folders(m_installed / "help/images");
        write_file(m_installed / "etc/isprops.xml", "<store/>");
        write_file(m_installed / "help/is_index.html", "<html/>");
        write_file(m_installed / "help/images/a.png", "png");
        write_file(m_installed / "libkestrel_ext.so", "library");
    }

    test::TemporaryFolder m_installed;
    test::TemporaryFolder m_data;
};

TEST(loaded_library_folder, IsTheOneOfTheProgramThatHoldsTheCode) {
    EXPECT_EQ(loaded_library_folder(), fs::canonical("/proc/self/exe").parent_path().string());
}

TEST(user_data_folder, FollowsTheDesktopRules) {
    EXPECT_EQ(user_data_folder("/data", "/home/me"), "/data");
    EXPECT_EQ(user_data_folder("", "/home/me"), "/home/me/.local/share");
    EXPECT_EQ(user_data_folder("relative", "/home/me"), "/home/me/.local/share");
    EXPECT_EQ(user_data_folder("", ""), "");
    EXPECT_EQ(user_data_folder("", "relative"), "");
}

TEST_F(UserExtensionFolder, WritableLibraryFolderIsTheExtensionFolderItself) {
    EXPECT_EQ(extension_folder(m_installed.path(), m_data.path()), m_installed.path());
    EXPECT_THAT(test::names_in(m_data.path()), IsEmpty());
    EXPECT_THAT(test::names_in(m_installed.path()), ElementsAre("etc", "help", "libkestrel_ext.so"));
}

TEST_F(UserExtensionFolder, LibraryFolderThatCannotBeWrittenGivesTheFolderOfTheUser) {
    EXPECT_EQ(extension_folder(kReadOnlyFolder, m_data.path()), m_data / "kestrel");
    EXPECT_TRUE(base::folder_exists(m_data / "kestrel"));
}

TEST_F(UserExtensionFolder, IsMadeOnFirstUseWithCopiesOfEtcAndHelpOnly) {
    EXPECT_EQ(user_extension_folder(m_installed.path(), m_data / "share"), m_data / "share/kestrel");
    EXPECT_THAT(test::names_in(m_data / "share/kestrel"), ElementsAre("etc", "help"));
    EXPECT_EQ(read_file(m_data / "share/kestrel/etc/isprops.xml"), "<store/>");
    EXPECT_EQ(read_file(m_data / "share/kestrel/help/is_index.html"), "<html/>");
    EXPECT_EQ(read_file(m_data / "share/kestrel/help/images/a.png"), "png");
}

TEST_F(UserExtensionFolder, SecondUseLeavesTheUsersFilesAlone) {
    user_extension_folder(m_installed.path(), m_data.path());
    write_file(m_data / "kestrel/etc/isprops.xml", "<mine/>");
    base::remove_file(m_data / "kestrel/help/is_index.html");
    user_extension_folder(m_installed.path(), m_data.path());
    EXPECT_EQ(read_file(m_data / "kestrel/etc/isprops.xml"), "<mine/>");
    EXPECT_FALSE(base::file_exists(m_data / "kestrel/help/is_index.html"));
}

TEST_F(UserExtensionFolder, PartThatIsMissingAltogetherIsCopied) {
    base::create_folders(m_data / "kestrel/etc");
    user_extension_folder(m_installed.path(), m_data.path());
    EXPECT_THAT(test::names_in(m_data / "kestrel/etc"), IsEmpty());
    EXPECT_EQ(read_file(m_data / "kestrel/help/is_index.html"), "<html/>");
}

TEST_F(UserExtensionFolder, CopiesOfReadOnlyFilesCanBeWritten) {
    ASSERT_EQ(::chmod((m_installed / "etc/isprops.xml").c_str(), 0444), 0);
    ASSERT_EQ(::chmod((m_installed / "etc").c_str(), 0555), 0);
    user_extension_folder(m_installed.path(), m_data.path());
    ASSERT_EQ(::chmod((m_installed / "etc").c_str(), 0755), 0);
    constexpr fs::perms kWrite = fs::perms::owner_write;
    EXPECT_EQ(fs::status(m_data / "kestrel/etc/isprops.xml").permissions() & kWrite, kWrite);
    EXPECT_EQ(fs::status(m_data / "kestrel/etc").permissions() & kWrite, kWrite);
}

TEST_F(UserExtensionFolder, InstallationWithoutHelpGivesAFolderWithoutHelp) {
    base::remove_folder(m_installed / "help");
    user_extension_folder(m_installed.path(), m_data.path());
    EXPECT_THAT(test::names_in(m_data / "kestrel"), ElementsAre("etc"));
}

TEST_F(UserExtensionFolder, NoDataFolderIsAnError) {
    try {
        extension_folder(kReadOnlyFolder, "");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 76);
    }
}

TEST_F(UserExtensionFolder, DataFolderThatIsAFileIsAnError) {
    write_file(m_data / "file", "");
    EXPECT_THROW(user_extension_folder(m_installed.path(), m_data / "file"), base::RuntimeError);
}

}  // namespace
}  // namespace kestrel
