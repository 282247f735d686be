// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/files.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "base/errors.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"
#include "tests/support/tiny_disk.h"
#include "tests/support/unprivileged.h"

namespace kestrel::base {

namespace {

namespace fs = std::filesystem;
using test::error_of;
using test::names_in;
using test::succeeds_unprivileged;
using test::superuser;
using test::TemporaryFolder;
using test::TinyDisk;

using Names = std::vector<std::string>;

/// Sets environment variables for its own lifetime, and hides those that bear the same name in another letter case.
class Environment {
  public:
    explicit Environment(const std::map<std::string, std::string>& variables) {
        for (const char* name : {"Temp", "TEMP", "temp", "Tmp", "TMP", "tmp", "TMPDIR"}) {
            const char* value = std::getenv(name);
            if (value != nullptr) {
                m_before[name] = value;
                ::unsetenv(name);
            }
        }
        for (const auto& [name, value] : variables) {
            m_set.push_back(name);
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    ~Environment() {
        for (const std::string& name : m_set) {
            ::unsetenv(name.c_str());
        }
        for (const auto& [name, value] : m_before) {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    std::map<std::string, std::string> m_before;
    Names m_set;
};

// --- paths

TEST(Paths, AreSplitAtBothSeparators) {
    EXPECT_EQ(file_name_of("/data/roads.shp"), "roads.shp");
    EXPECT_EQ(file_name_of("C:\\data\\roads.shp"), "roads.shp");
    EXPECT_EQ(file_name_of("a\\b/c"), "c");
    EXPECT_EQ(file_name_of("roads.shp"), "roads.shp");
    EXPECT_EQ(file_name_of("/data/"), "");
    EXPECT_EQ(file_name_of(""), "");
    EXPECT_EQ(folder_of("/data/roads.shp"), "/data");
    EXPECT_EQ(folder_of("C:\\data\\roads.shp"), "C:\\data");
    EXPECT_EQ(folder_of("/data/"), "/data");
    EXPECT_EQ(folder_of("roads.shp"), "");
}

TEST(Paths, TheFolderOfWhatLiesInTheRootIsTheRoot) {
    EXPECT_EQ(folder_of("/roads.shp"), "/");
    EXPECT_EQ(join_path(folder_of("/roads.shp"), "x"), "/x");
}

TEST(Paths, BaseNameLosesFolderAndLastExtensionOnly) {
    EXPECT_EQ(base_name_of("/data/roads.old.shp"), "roads.old");
    EXPECT_EQ(base_name_of("/data.dir/roads"), "roads");
    EXPECT_EQ(base_name_of("roads"), "roads");
    EXPECT_EQ(base_name_of(".hidden"), ".hidden");
    EXPECT_EQ(base_name_of("roads."), "roads");
}

TEST(Paths, AreJoinedWithOneSeparator) {
    EXPECT_EQ(join_path("/data", "x"), "/data/x");
    EXPECT_EQ(join_path("/data/", "x"), "/data/x");
    EXPECT_EQ(join_path("C:\\data\\", "x"), "C:\\data\\x");
    EXPECT_EQ(join_path("", "x"), "x");
    EXPECT_EQ(join_path("/", "x"), "/x");
}

// --- is it there

TEST(Exists, FilesAndFoldersAreToldApart) {
    const TemporaryFolder folder;
    write_file(folder / "file", "");
    EXPECT_TRUE(file_exists(folder / "file"));
    EXPECT_FALSE(folder_exists(folder / "file"));
    EXPECT_TRUE(folder_exists(folder.path()));
    EXPECT_FALSE(file_exists(folder.path()));
    EXPECT_FALSE(file_exists(folder / "missing"));
    EXPECT_FALSE(folder_exists(""));
    EXPECT_FALSE(file_exists(""));
}

TEST(Exists, ALinkIsWhatItPointsAt) {
    const TemporaryFolder folder;
    write_file(folder / "file", "");
    fs::create_symlink(folder / "file", folder / "to file");
    fs::create_symlink(folder.path(), folder / "to folder");
    fs::create_symlink(folder / "missing", folder / "to nothing");
    EXPECT_TRUE(file_exists(folder / "to file"));
    EXPECT_TRUE(folder_exists(folder / "to folder"));
    EXPECT_FALSE(file_exists(folder / "to nothing"));
}

// --- folders

TEST(CreateFolder, MakesOneLevelAndAcceptsOneThatIsThere) {
    const TemporaryFolder folder;
    create_folder(folder / "temp");
    create_folder(folder / "temp");
    EXPECT_TRUE(folder_exists(folder / "temp"));
}

TEST(CreateFolder, AMissingParentIsPathNotFound) {
    const TemporaryFolder folder;
    const RuntimeError error = error_of([&] { create_folder(folder / "a/b"); });
    EXPECT_EQ(error.number(), 76);
    EXPECT_NE(error.description().find(folder / "a/b"), std::string::npos);
    EXPECT_EQ(error.line(), __LINE__ - 3);
    EXPECT_FALSE(folder_exists(folder / "a"));
}

TEST(CreateFolder, AFileInItsPlaceIsAPathAccessError) {
    const TemporaryFolder folder;
    write_file(folder / "temp", "");
    EXPECT_EQ(error_of([&] { create_folder(folder / "temp"); }).number(), 75);
}

TEST(CreateFolders, MakesMissingParents) {
    const TemporaryFolder folder;
    create_folders(folder / "a/b/c");
    create_folders(folder / "a/b/c");
    EXPECT_TRUE(folder_exists(folder / "a/b/c"));
    write_file(folder / "file", "");
    EXPECT_EQ(error_of([&] { create_folders(folder / "file/d"); }).number(), 76);
}

TEST(UniqueFolder, EveryCallMakesANewPrivateOne) {
    const TemporaryFolder folder;
    const std::string first = make_unique_folder(folder.path(), "run-");
    const std::string second = make_unique_folder(folder.path(), "run-");
    EXPECT_NE(first, second);
    EXPECT_TRUE(file_name_of(first).starts_with("run-"));
    EXPECT_EQ(folder_of(first), folder.path());
    EXPECT_EQ(fs::status(first).permissions(), fs::perms::owner_all);
    EXPECT_EQ(error_of([&] { make_unique_folder(folder / "missing", "run-"); }).number(), 76);
}

TEST(FolderWritable, IsFoundOutByTryingAndLeavesNothingBehind) {
    const TemporaryFolder folder;
    EXPECT_TRUE(folder_writable(folder.path()));
    EXPECT_EQ(names_in(folder.path()), Names{});
    EXPECT_FALSE(folder_writable(folder / "missing"));
    EXPECT_FALSE(folder_writable("/proc"));
}

// --- emptying and removing

TEST(EmptyFolder, DeletesFilesAndSubfoldersAndKeepsTheFolder) {
    const TemporaryFolder folder;
    create_folders(folder / "temp/a/b");
    write_file(folder / "temp/a/b/deep", "1");
    write_file(folder / "temp/model_params.txt", "1");
    write_file(folder / "temp/.hidden", "1");
    empty_folder(folder / "temp");
    EXPECT_EQ(names_in(folder / "temp"), Names{});
}

TEST(EmptyFolder, KeepsTheOneNameButOnlyDirectlyBelow) {
    const TemporaryFolder folder;
    create_folders(folder / "temp/sub");
    write_file(folder / "temp/kept", "1");
    write_file(folder / "temp/sub/kept", "1");
    empty_folder(folder / "temp", "kept");
    EXPECT_EQ(names_in(folder / "temp"), Names{"kept"});
}

TEST(EmptyFolder, DeletesReadOnlyFiles) {
    const TemporaryFolder folder;
    create_folder(folder / "temp");
    write_file(folder / "temp/file", "1");
    ::chmod((folder / "temp/file").c_str(), 0444);
    empty_folder(folder / "temp");
    EXPECT_EQ(names_in(folder / "temp"), Names{});
}

TEST(EmptyFolder, DeletesFilesInFoldersThatAreReadOnlyOrUnreadable) {
    const TemporaryFolder folder;
    ::chmod(folder.path().c_str(), 0777);
    EXPECT_TRUE(succeeds_unprivileged([&folder] {
        create_folders(folder / "temp/read only");
        create_folders(folder / "temp/unreadable/below");
        write_file(folder / "temp/read only/file", "1");
        write_file(folder / "temp/unreadable/below/file", "1");
        ::chmod((folder / "temp/read only").c_str(), 0555);
        ::chmod((folder / "temp/unreadable/below").c_str(), 0);
        ::chmod((folder / "temp/unreadable").c_str(), 0);
        empty_folder(folder / "temp");
        return names_in(folder / "temp").empty();
    }));
}

TEST(EmptyFolder, GoesOnAfterAFailureAndReportsIt) {
    if (!superuser()) {
        GTEST_SKIP() << "needs a folder of another owner, which only root can make";
    }
    const TemporaryFolder folder;
    ::chmod(folder.path().c_str(), 0777);
    create_folders(folder / "temp/theirs");
    write_file(folder / "temp/a", "1");
    write_file(folder / "temp/theirs/file", "1");
    write_file(folder / "temp/z", "1");
    ::chmod((folder / "temp").c_str(), 0777);
    EXPECT_TRUE(succeeds_unprivileged([&folder] {
        const RuntimeError error = error_of([&] { empty_folder(folder / "temp"); });
        return error.number() == 70 && error.description().find("theirs/file") != std::string::npos;
    }));
    EXPECT_EQ(names_in(folder / "temp"), Names{"theirs"});
    EXPECT_EQ(names_in(folder / "temp/theirs"), Names{"file"});
}

TEST(EmptyFolder, DeletesLinksAndNeverWhatTheyPointAt) {
    const TemporaryFolder folder;
    create_folder(folder / "temp");
    create_folder(folder / "outside");
    write_file(folder / "outside/precious", "1");
    fs::create_directory_symlink(folder / "outside", folder / "temp/to folder");
    fs::create_symlink(folder / "outside/precious", folder / "temp/to file");
    fs::create_symlink(folder / "nowhere", folder / "temp/to nothing");
    empty_folder(folder / "temp");
    EXPECT_EQ(names_in(folder / "temp"), Names{});
    EXPECT_EQ(names_in(folder / "outside"), Names{"precious"});
}

TEST(EmptyFolder, RefusesAFolderThatIsItselfALink) {
    const TemporaryFolder folder;
    create_folder(folder / "outside");
    write_file(folder / "outside/precious", "1");
    fs::create_directory_symlink(folder / "outside", folder / "temp");
    for (const char* name : {"temp", "temp/", "temp//"}) {
        EXPECT_EQ(error_of([&] { empty_folder(folder / name); }).number(), 75) << name;
        EXPECT_EQ(error_of([&] { remove_folder(folder / name); }).number(), 75) << name;
    }
    EXPECT_EQ(names_in(folder / "outside"), Names{"precious"});
}

TEST(EmptyFolder, RefusesAFileAndAMissingFolder) {
    const TemporaryFolder folder;
    write_file(folder / "file", "1");
    EXPECT_EQ(error_of([&] { empty_folder(folder / "file"); }).number(), 75);
    EXPECT_TRUE(file_exists(folder / "file"));
    EXPECT_EQ(error_of([&] { empty_folder(folder / "missing/temp"); }).number(), 76);
}

TEST(RemoveFolder, RemovesItWithAllThatIsInIt) {
    const TemporaryFolder folder;
    create_folders(folder / "a/b");
    write_file(folder / "a/b/file", "1");
    remove_folder(folder / "a/");
    EXPECT_FALSE(folder_exists(folder / "a"));
}

TEST(RemoveFolder, AMissingOneIsNoError) {
    const TemporaryFolder folder;
    remove_folder(folder / "missing");
    EXPECT_EQ(names_in(folder.path()), Names{});
}

TEST(RemoveFile, RemovesReadOnlyFilesAndLinksAndAcceptsMissingOnes) {
    const TemporaryFolder folder;
    write_file(folder / "file", "1");
    ::chmod((folder / "file").c_str(), 0444);
    fs::create_symlink(folder / "file", folder / "link");
    remove_file(folder / "link");
    EXPECT_EQ(names_in(folder.path()), Names{"file"});
    remove_file(folder / "file");
    remove_file(folder / "file");
    EXPECT_EQ(names_in(folder.path()), Names{});
}

TEST(RemoveFile, AFolderIsAnError) {
    const TemporaryFolder folder;
    create_folder(folder / "a");
    EXPECT_EQ(error_of([&] { remove_file(folder / "a"); }).number(), 75);
    EXPECT_TRUE(folder_exists(folder / "a"));
}

// --- reading and writing

TEST(WriteFile, KeepsEveryByte) {
    const TemporaryFolder folder;
    std::string bytes;
    for (int i = 0; i < 300000; ++i) {
        bytes += static_cast<char>(i % 256);
    }
    write_file(folder / "file", bytes);
    EXPECT_EQ(read_file(folder / "file"), bytes);
    EXPECT_EQ(names_in(folder.path()), Names{"file"});
}

TEST(WriteFile, ReplacesAndKeepsThePermissions) {
    const TemporaryFolder folder;
    write_file(folder / "file", "old");
    ::chmod((folder / "file").c_str(), 0640);
    write_file(folder / "file", "new");
    EXPECT_EQ(read_file(folder / "file"), "new");
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "file").permissions()), 0640U);
}

TEST(WriteFile, WritesThroughALinkAndLeavesIt) {
    const TemporaryFolder folder;
    create_folder(folder / "real");
    write_file(folder / "real/file", "old");
    fs::create_symlink("real/file", folder / "link");
    write_file(folder / "link", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(read_file(folder / "real/file"), "new");
    EXPECT_EQ(names_in(folder / "real"), Names{"file"});
}

TEST(WriteFile, AMissingFolderIsPathNotFoundAndNamesThePath) {
    const TemporaryFolder folder;
    const RuntimeError error = error_of([&] { write_file(folder / "missing/file", "1"); });
    EXPECT_EQ(error.number(), 76);
    EXPECT_NE(error.description().find(folder / "missing/file"), std::string::npos);
    EXPECT_EQ(error.line(), __LINE__ - 3);
}

TEST(WriteFile, AFolderOrADeviceInItsPlaceIsRefused) {
    const TemporaryFolder folder;
    create_folder(folder / "a");
    EXPECT_EQ(error_of([&] { write_file(folder / "a", "1"); }).number(), 75);
    EXPECT_EQ(error_of([&] { write_file("/dev/null", "1"); }).number(), 75);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(names_in(folder.path()), Names{"a"});
}

TEST(WriteFile, AReadOnlyFileIsRefused) {
    const TemporaryFolder folder;
    ::chmod(folder.path().c_str(), 0777);
    EXPECT_TRUE(succeeds_unprivileged([&folder] {
        write_file(folder / "file", "old");
        ::chmod((folder / "file").c_str(), 0444);
        const RuntimeError error = error_of([&] { write_file(folder / "file", "new"); });
        return error.number() == 70 && read_file(folder / "file") == "old";
    }));
    EXPECT_EQ(names_in(folder.path()), Names{"file"});
}

TEST(WriteFile, OnAFullDeviceTheOldFileStaysAndNothingElse) {
    const TinyDisk disk;
    if (!disk.mounted()) {
        GTEST_SKIP() << "NOT TESTED: a small disk can be mounted by root only";
    }
    write_file(disk / "file", "old");
    const RuntimeError error = error_of([&] { write_file(disk / "file", std::string(1 << 20, 'x')); });
    EXPECT_EQ(error.number(), 61);
    EXPECT_NE(error.description().find(disk / "file"), std::string::npos);
    EXPECT_EQ(read_file(disk / "file"), "old");
    EXPECT_EQ(names_in(disk.path()), Names{"file"});
}

TEST(ReadFile, MissingFileAndMissingFolderAreToldApart) {
    const TemporaryFolder folder;
    const RuntimeError error = error_of([&] { read_file(folder / "missing"); });
    EXPECT_EQ(error.number(), 53);
    EXPECT_NE(error.description().find(folder / "missing"), std::string::npos);
    EXPECT_EQ(error_of([&] { read_file(folder / "no/file"); }).number(), 76);
    EXPECT_EQ(error_of([&] { read_file(folder.path()); }).number(), 75);
}

TEST(ReadFile, ReadsFilesThatDoNotTellTheirSize) {
    EXPECT_FALSE(read_file("/proc/self/status").empty());
}

TEST(ReadFileStart, TakesNoMoreThanTheLimit) {
    const TemporaryFolder folder;
    const std::string bytes(100000, 'x');
    write_file(folder / "file", bytes + "y");
    EXPECT_EQ(read_file_start(folder / "file", 0), "");
    EXPECT_EQ(read_file_start(folder / "file", 1), "x");
    EXPECT_EQ(read_file_start(folder / "file", 100000), bytes);
    EXPECT_EQ(read_file_start(folder / "file", 100001), bytes + "y");
    EXPECT_EQ(read_file_start(folder / "file", 200000), bytes + "y");
}

TEST(ReadFileStart, AnEndlessFileEndsAtTheLimit) {
    EXPECT_EQ(read_file_start("/dev/zero", 70000), std::string(70000, '\0'));
}

TEST(ReadFileStart, FailuresAreThoseOfReadingTheWhole) {
    const TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { read_file_start(folder / "missing", 1); }).number(), 53);
    EXPECT_EQ(error_of([&] { read_file_start(folder / "none/missing", 1); }).number(), 76);
}

TEST(CopyFile, CopiesBytesAndReplaces) {
    const TemporaryFolder folder;
    write_file(folder / "from", std::string("a\0b", 3));
    write_file(folder / "to", "old");
    copy_file(folder / "from", folder / "to");
    EXPECT_EQ(read_file(folder / "to"), std::string("a\0b", 3));
    copy_file(folder / "from", folder / "from");
    EXPECT_EQ(read_file(folder / "from"), std::string("a\0b", 3));
    EXPECT_EQ(error_of([&] { copy_file(folder / "missing", folder / "to"); }).number(), 53);
    EXPECT_EQ(read_file(folder / "to"), std::string("a\0b", 3));
}

TEST(CopyFile, ACopyOfAReadOnlyFileCanBeWritten) {
    const TemporaryFolder folder;
    write_file(folder / "from", "1");
    ::chmod((folder / "from").c_str(), 0444);
    copy_file(folder / "from", folder / "to");
    EXPECT_NE(fs::status(folder / "to").permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST(RenameFile, ReplacesAndNamesWhatIsMissing) {
    const TemporaryFolder folder;
    write_file(folder / "a", "1");
    write_file(folder / "b", "2");
    rename_file(folder / "a", folder / "b");
    EXPECT_EQ(read_file(folder / "b"), "1");
    const RuntimeError source_missing = error_of([&] { rename_file(folder / "a", folder / "b"); });
    EXPECT_EQ(source_missing.number(), 53);
    EXPECT_NE(source_missing.description().find(folder / "a"), std::string::npos);
    const RuntimeError folder_missing = error_of([&] { rename_file(folder / "b", folder / "no/b"); });
    EXPECT_EQ(folder_missing.number(), 76);
    EXPECT_NE(folder_missing.description().find(folder / "no/b"), std::string::npos);
}

// --- the lock

TEST(FolderLock, ASecondHolderIsRefusedWithAClearMessage) {
    const TemporaryFolder folder;
    const FolderLock lock(folder.path());
    const RuntimeError error = error_of([&] { FolderLock second(folder.path()); });
    EXPECT_EQ(error.number(), 70);
    EXPECT_EQ(error.description(), "Another run, or another save of coefficients, is using the folder \"" +
                                       folder.path() + "\"; try again when it has ended");
}

TEST(FolderLock, IsFreeAgainWhenReleased) {
    const TemporaryFolder folder;
    static_cast<void>(FolderLock(folder.path()));
    const FolderLock again(folder.path());
    EXPECT_EQ(names_in(folder.path()), Names{".kestrel.lock"});
}

TEST(FolderLock, BindsOtherProcesses) {
    const TemporaryFolder folder;
    ::chmod(folder.path().c_str(), 0777);
    const FolderLock lock(folder.path());
    // The child also shows that the file of another user is good enough to meet its lock.
    EXPECT_TRUE(
        succeeds_unprivileged([&] { return error_of([&] { FolderLock second(folder.path()); }).number() == 70; }));
}

TEST(FolderLock, OfAProcessThatDiedIsVoid) {
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        const FolderLock lock(folder.path());
        ::_exit(0);  // without running the destructor
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(error_of([&] { FolderLock lock(folder.path()); }).number(), 0);
}

TEST(FolderLock, IsNotHandedToProgramsThatAreStarted) {
    const TemporaryFolder folder;
    {
        const FolderLock lock(folder.path());
        ASSERT_EQ(std::system("sleep 5 > /dev/null 2>&1 &"), 0);
    }
    EXPECT_EQ(error_of([&] { FolderLock lock(folder.path()); }).number(), 0);
}

TEST(FolderLock, AMissingFolderIsPathNotFound) {
    const TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { FolderLock lock(folder / "missing"); }).number(), 76);
}

// --- the temporary folder

TEST(TemporaryFolderRule, TempComesBeforeTmpBeforeTmpdir) {
    const TemporaryFolder folder;
    create_folder(folder / "a");
    create_folder(folder / "b");
    create_folder(folder / "c");
    {
        const Environment all({{"Temp", folder / "a"}, {"Tmp", folder / "b"}, {"TMPDIR", folder / "c"}});
        EXPECT_EQ(temporary_folder(), folder / "a");
    }
    {
        const Environment two({{"Tmp", folder / "b"}, {"TMPDIR", folder / "c"}});
        EXPECT_EQ(temporary_folder(), folder / "b");
    }
    const Environment one({{"TMPDIR", folder / "c"}});
    EXPECT_EQ(temporary_folder(), folder / "c");
}

TEST(TemporaryFolderRule, NamesCountInAnyLetterCase) {
    const TemporaryFolder folder;
    for (const char* name : {"TEMP", "temp", "TMP", "tmp"}) {
        const Environment one({{name, folder.path()}});
        EXPECT_EQ(temporary_folder(), folder.path()) << name;
    }
}

TEST(TemporaryFolderRule, VariablesThatNameNoFolderArePassedOver) {
    const TemporaryFolder folder;
    write_file(folder / "file", "");
    const Environment some({{"Temp", folder / "missing"}, {"Tmp", folder / "file"}, {"TMPDIR", folder.path()}});
    EXPECT_EQ(temporary_folder(), folder.path());
    const Environment none({{"Temp", ""}, {"Tmp", folder / "missing"}});
    EXPECT_EQ(temporary_folder(), "/tmp");
}

TEST(TemporaryFolderRule, LongerNamesDoNotCount) {
    const TemporaryFolder folder;
    const Environment others({{"TEMPORARY", folder.path()}});
    EXPECT_EQ(temporary_folder(), "/tmp");
}

TEST(RealPath, ResolvesLinksAsFarAsThePathExists) {
    const test::TemporaryFolder folder;
    const std::string real = std::filesystem::canonical(folder.path()).string();
    create_folder(folder / "there");
    std::filesystem::create_directory_symlink(folder / "there", folder / "link");
    EXPECT_EQ(real_path(folder / "link"), real + "/there");
    EXPECT_EQ(real_path(folder / "link/../link/new.shp"), real + "/there/new.shp");
}

}  // namespace

}  // namespace kestrel::base
