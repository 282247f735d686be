// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/output_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"
#include "tests/support/unprivileged.h"

namespace kestrel::data {

namespace {

using test::error_of;
using test::names_in;
using test::succeeds_unprivileged;
using test::superuser;
using test::TemporaryFolder;
using Names = std::vector<std::string>;

/// An output with its records, each file holding `content`.
void write_output(const TemporaryFolder& folder, const std::string& content) {
    for (const char* name : {"out.shp", "out.shx", "out.dbf", "out.prj", "out.prm", "out.met"}) {
        base::write_file(folder / name, content);
    }
}

const Names kOutput{"out.dbf", "out.met", "out.prj", "out.prm", "out.shp", "out.shx"};

// --- setting an older output aside

TEST(SetAsideOutput, MovesMembersAndRecordsAwayAndPutsThemBack) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    base::write_file(folder / "other.shp", "other");
    {
        const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met", folder / "out.lyr"});
        for (const std::string& name : kOutput) {
            EXPECT_FALSE(base::file_exists(folder / name)) << name;
        }
        EXPECT_EQ(base::read_file(folder / "other.shp"), "other");
    }
    EXPECT_EQ(names_in(folder.path()),
              (Names{"other.shp", "out.dbf", "out.met", "out.prj", "out.prm", "out.shp", "out.shx"}));
    for (const std::string& name : kOutput) {
        EXPECT_EQ(base::read_file(folder / name), "old") << name;
    }
}

TEST(SetAsideOutput, TheFolderWithTheOldOutputIsHidden) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
    const Names names = names_in(folder.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(names[0].starts_with(".kestrel-old-"));
}

TEST(SetAsideOutput, DiscardDeletesTheOldOutput) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    {
        SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
        base::write_file(folder / "out.shp", "new");
        aside.discard();
        aside.discard();
        EXPECT_EQ(names_in(folder.path()), Names{"out.shp"});
    }
    EXPECT_EQ(base::read_file(folder / "out.shp"), "new");
}

TEST(SetAsideOutput, TheOldOutputReplacesANewOneThatIsNotWanted) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    {
        const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
        base::write_file(folder / "out.shp", "new");
    }
    EXPECT_EQ(base::read_file(folder / "out.shp"), "old");
    EXPECT_EQ(names_in(folder.path()), kOutput);
}

TEST(SetAsideOutput, NothingHappensWithoutAnOlderOutput) {
    const TemporaryFolder folder;
    {
        SetAsideOutput aside(folder / "out.shp", {folder / "out.prm"});
        EXPECT_EQ(names_in(folder.path()), Names{});
        aside.discard();
    }
    EXPECT_EQ(names_in(folder.path()), Names{});
}

TEST(SetAsideOutput, RecordsAloneAreSetAsideToo) {
    const TemporaryFolder folder;
    base::write_file(folder / "out.prm", "old");
    {
        const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm"});
        EXPECT_FALSE(base::file_exists(folder / "out.prm"));
    }
    EXPECT_EQ(names_in(folder.path()), Names{"out.prm"});
}

TEST(SetAsideOutput, AFileNamedTwiceIsMovedOnce) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    static_cast<void>(SetAsideOutput(folder / "out.shp", {folder / "out.dbf", folder / "out.prm", folder / "out.prm"}));
    EXPECT_EQ(names_in(folder.path()), kOutput);
}

TEST(SetAsideOutput, InAFolderThatCannotBeWrittenEverythingStays) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    ::chmod(folder.path().c_str(), 0555);
    EXPECT_TRUE(succeeds_unprivileged(
        [&] { return error_of([&] { SetAsideOutput aside(folder / "out.shp", {}); }).number() == 70; }));
    ::chmod(folder.path().c_str(), 0755);
    EXPECT_EQ(names_in(folder.path()), kOutput);
}

TEST(SetAsideOutput, AFileThatCannotBeMovedBringsTheOthersBack) {
    if (!superuser()) {
        GTEST_SKIP() << "NOT TESTED: needs a file of another owner, which only root can make";
    }
    const TemporaryFolder folder;
    write_output(folder, "old");
    // In a sticky folder everybody moves his own files only: all but the last one that is moved.
    ::chmod(folder.path().c_str(), 01777);
    for (const std::string& name : kOutput) {
        ASSERT_EQ(::chown((folder / name).c_str(), name == "out.shx" ? 0 : test::kNobody, 0), 0);
    }
    EXPECT_TRUE(succeeds_unprivileged([&] {
        return error_of([&] { SetAsideOutput aside(folder / "out.shp", {folder / "out.prm"}); }).number() == 70;
    }));
    EXPECT_EQ(names_in(folder.path()), kOutput);
}

TEST(SetAsideOutput, WhatCannotBePutBackIsNeverDeleted) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    {
        const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
        base::create_folder(folder / "out.dbf");  // in the way
        base::write_file(folder / "out.dbf/x", "");
    }
    Names hidden;
    for (const std::string& name : names_in(folder.path())) {
        if (name.starts_with(".kestrel-old-")) {
            hidden = names_in(folder / name);
        }
    }
    EXPECT_EQ(hidden, Names{"out.dbf"});
    EXPECT_EQ(base::read_file(folder / "out.shp"), "old");
}

// --- building a new output

TEST(StagedOutput, NothingStandsInPlaceBeforePublish) {
    const TemporaryFolder folder;
    {
        const StagedOutput staged(folder.path());
        base::write_file(staged.path("out.shp"), "new");
        const Names names = names_in(folder.path());
        ASSERT_EQ(names.size(), 1U);
        EXPECT_TRUE(names[0].starts_with(".kestrel-new-"));
        EXPECT_EQ(base::file_name_of(staged.path("out.shp")), "out.shp");
    }
    EXPECT_EQ(names_in(folder.path()), Names{});
}

TEST(StagedOutput, PublishMovesEverythingAndNamesTheShapefileFirst) {
    const TemporaryFolder folder;
    {
        StagedOutput staged(folder.path());
        for (const std::string& name : kOutput) {
            base::write_file(staged.path(name), "new");
        }
        EXPECT_EQ(staged.publish(), (Names{folder / "out.shp", folder / "out.dbf", folder / "out.met",
                                           folder / "out.prj", folder / "out.prm", folder / "out.shx"}));
    }
    EXPECT_EQ(names_in(folder.path()), kOutput);
}

TEST(StagedOutput, PublishedFilesCanBeReadByOthers) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(022);
    StagedOutput staged(folder.path());
    base::write_file(staged.path("out.shp"), "new");
    staged.publish();
    ::umask(mask);
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(folder / "out.shp").permissions()), 0644U);
}

TEST(StagedOutput, PublishReplacesRecordsThatStandThere) {
    const TemporaryFolder folder;
    base::write_file(folder / "out.prm", "old");
    {
        StagedOutput staged(folder.path());
        base::write_file(staged.path("out.prm"), "new");
        base::write_file(staged.path("out.shp"), "new");
        staged.publish();
    }
    EXPECT_EQ(base::read_file(folder / "out.prm"), "new");
    EXPECT_EQ(names_in(folder.path()), (Names{"out.prm", "out.shp"}));
}

TEST(StagedOutput, AFailedPublishLeavesEverythingAsItWas) {
    const TemporaryFolder folder;
    // The .shp, moved last, finds a folder in its place.
    base::create_folder(folder / "out.shp");
    base::write_file(folder / "out.prm", "old");
    {
        StagedOutput staged(folder.path());
        for (const std::string& name : kOutput) {
            base::write_file(staged.path(name), "new");
        }
        EXPECT_EQ(error_of([&] { staged.publish(); }).number(), 75);
        EXPECT_EQ(base::read_file(staged.path("out.shx")), "new");
    }
    EXPECT_EQ(names_in(folder.path()), (Names{"out.prm", "out.shp"}));
    EXPECT_EQ(base::read_file(folder / "out.prm"), "old");
}

TEST(StagedOutput, AMissingOrReadOnlyFolderIsRefusedAtOnce) {
    const TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { StagedOutput staged(folder / "missing"); }).number(), 76);
    ::chmod(folder.path().c_str(), 0555);
    EXPECT_TRUE(
        succeeds_unprivileged([&] { return error_of([&] { StagedOutput staged(folder.path()); }).number() == 70; }));
    ::chmod(folder.path().c_str(), 0755);
}

TEST(StagedOutput, AProcessThatDiesLeavesNoShapefileInPlace) {
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        const StagedOutput staged(folder.path());
        base::write_file(staged.path("out.shp"), "half");
        ::_exit(0);  // without running the destructor
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_FALSE(base::file_exists(folder / "out.shp"));
}

TEST(StagedOutput, RunsSideBySideHaveFoldersOfTheirOwn) {
    const TemporaryFolder folder;
    const StagedOutput first(folder.path());
    const StagedOutput second(folder.path());
    EXPECT_NE(first.path("out.shp"), second.path("out.shp"));
}

// --- both together, as a run uses them

TEST(Replacement, ARunThatFailsBringsTheOldOutputBack) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    {
        const SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
        const StagedOutput staged(folder.path());
        base::write_file(staged.path("out.shp"), "half");
    }
    EXPECT_EQ(names_in(folder.path()), kOutput);
    EXPECT_EQ(base::read_file(folder / "out.shp"), "old");
}

TEST(Replacement, ARunThatSucceedsLeavesTheNewOutputOnly) {
    const TemporaryFolder folder;
    write_output(folder, "old");
    {
        SetAsideOutput aside(folder / "out.shp", {folder / "out.prm", folder / "out.met"});
        StagedOutput staged(folder.path());
        base::write_file(staged.path("out.shp"), "new");
        base::write_file(staged.path("out.dbf"), "new");
        staged.publish();
        aside.discard();
    }
    EXPECT_EQ(names_in(folder.path()), (Names{"out.dbf", "out.shp"}));
    EXPECT_EQ(base::read_file(folder / "out.shp"), "new");
}

}  // namespace

}  // namespace kestrel::data
