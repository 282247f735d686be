// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/files.h"
#include "tests/apps/cli/command_runner.h"
#include "tests/apps/cli/run_data.h"
#include "tests/support/test_files.h"

namespace kestrel::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// Sets that go between stores and text files by the command.
class CoefficientsExchange : public testing::Test {
  protected:
    void SetUp() override {
        write_store(m_store, {"Small", "Other"});
        m_stored = base::read_file(m_store);
        base::write_file(m_text, "Value,ClassName,High,Medium,Low\r\n11,Water,3,2,1\r\n");
    }

    CommandResult import(const std::string& name) const {
        return run_command({"coefficients", "import", m_text, "--name", name, "--store", m_store});
    }
    CommandResult export_to(const std::string& file, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words{"coefficients", "export", "--set", "Small", file, "--store", m_store};
        words.insert(words.end(), more.begin(), more.end());
        return run_command(words);
    }
    CommandResult merge(const std::string& file) const {
        return run_command({"coefficients", "merge", file, "--store", m_store});
    }

    std::string listed() const { return run_command({"coefficients", "list", "--store", m_store}).out; }

    void expect_refused(const CommandResult& result, const std::string& message) const {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, message);
        EXPECT_EQ(base::read_file(m_store), m_stored);
    }

    TemporaryFolder m_folder;
    std::string m_store = m_folder / "store.xml";
    std::string m_text = m_folder / "lines.csv";
    std::string m_stored;
};

TEST_F(CoefficientsExchange, HelpHasAnExample) {
    for (const char* command : {"import", "export", "merge"}) {
        const CommandResult result = run_command({"coefficients", command, "--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.out, HasSubstr(std::string("Example:\n  kestrel coefficients ") + command));
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(CoefficientsExchange, MissingArgumentsAreWrongCommandLines) {
    EXPECT_EQ(run_command({"coefficients", "import", m_text, "--store", m_store}).status, 2);
    EXPECT_EQ(run_command({"coefficients", "import", "--name", "New", "--store", m_store}).status, 2);
    EXPECT_EQ(run_command({"coefficients", "export", "--set", "Small", "--store", m_store}).status, 2);
    EXPECT_EQ(run_command({"coefficients", "merge", "--store", m_store}).status, 2);
    EXPECT_EQ(base::read_file(m_store), m_stored);
}

TEST_F(CoefficientsExchange, NamesThatAStoreDoesNotKeepAreWrongCommandLines) {
    EXPECT_EQ(import("").status, 2);
    EXPECT_THAT(import("").err, HasSubstr("--name: is empty"));
    for (const char* name : {" ", " New", "New ", "New\t"}) {
        const CommandResult result = import(name);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("--name: begins or ends with a blank, which a store does not keep"));
    }
    EXPECT_EQ(base::read_file(m_store), m_stored);
}

// Import

TEST_F(CoefficientsExchange, ImportAddsASetAndNamesTheStore) {
    const CommandResult result = import("New");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Imported the set 'New' with 1 classes into the coefficient store " + m_store + "\n");
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(listed(), EndsWith("Small        3\nOther        3\nNew          1\n"));
    EXPECT_EQ(run_command({"coefficients", "show", "--set", "New", "--store", m_store}).out,
              "Coefficients of the set 'New', in percent\n\n"
              " Value  ClassName    High  Medium     Low\n"
              "    11  Water           3       2       1\n");
}

TEST_F(CoefficientsExchange, ImportUnderANameThatExistsEndsWithItsMessage) {
    expect_refused(import("Small"), "Kestrel: Coefficient Set name must be unique. Please reenter.\n");
}

TEST_F(CoefficientsExchange, ImportOfABadFileEndsWithItsMessage) {
    base::write_file(m_text, "11,Water,abc,2,1\r\n");
    expect_refused(
        import("New"),
        "Coefficient Import Unsuccessful: Invalid or incorrectly formated data in import file " + m_text +
            ". Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.\n");
}

TEST_F(CoefficientsExchange, ImportOfAFileThatIsNotThereIsRefused) {
    base::remove_file(m_text);
    expect_refused(import("New"), "Kestrel: There is no file '" + m_text + "' to import.\n");
}

TEST_F(CoefficientsExchange, ImportIntoAStoreThatIsNotThereIsRefused) {
    const CommandResult result =
        run_command({"coefficients", "import", m_text, "--name", "New", "--store", m_folder / "none.xml"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "Kestrel: There is no coefficient store '" + (m_folder / "none.xml") + "'. Give one with --store.\n");
    EXPECT_FALSE(base::file_exists(m_folder / "none.xml"));
}

TEST_F(CoefficientsExchange, ImportThatTheStoreCannotHoldSaysWhichStore) {
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += "11,Water,1,2,3\r\n";
    base::write_file(m_text, lines);
    const CommandResult result = import("New");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, EndsWith("Coefficient Import Unsuccessful: Failed To Save XML - verify the permissions to "
                                     "write to file '" +
                                     m_store + "'.\n"));
    EXPECT_THAT(result.err, StartsWith("Record Call Stack Sequence"));
    EXPECT_EQ(base::read_file(m_store + ".bak"), m_stored);
}

TEST_F(CoefficientsExchange, WithoutAStoreYourOwnIsWrittenUnderTheLockOfItsExtensionFolder) {
    const CommandResult result =
        run_command({"coefficients", "import", m_text, "--name", "New"}, {"XDG_DATA_HOME=" + m_folder.path()});
    const std::string own = m_folder / "kestrel/etc/isprops.xml";
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "Imported the set 'New' with 1 classes into the coefficient store " + own + "\n");
    EXPECT_THAT(base::read_file(own), HasSubstr("New"));
    EXPECT_TRUE(base::file_exists(m_folder / "kestrel/.kestrel.lock"));
    EXPECT_FALSE(base::file_exists(m_folder / "kestrel/etc/.kestrel.lock"));
}

TEST_F(CoefficientsExchange, AStoreThatIsLockedIsNotWritten) {
    const base::FolderLock lock(m_folder.path());
    const CommandResult result = import("New");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("Failed To Save XML"));
    EXPECT_EQ(base::read_file(m_store), m_stored);
}

// Export

TEST_F(CoefficientsExchange, ExportWritesASetAndNamesTheFile) {
    const CommandResult result = export_to(m_folder / "out.csv");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Exported the set 'Small' with 3 classes to " + (m_folder / "out.csv") + "\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(
        base::read_file(m_folder / "out.csv"),
        "Value,ClassName,High,Medium,Low\r\n21,Developed,35,25,12.5\r\n24,City,90,80,70\r\n41,Forest,2,1,0.5\r\n");
    EXPECT_EQ(base::read_file(m_store), m_stored);
}

TEST_F(CoefficientsExchange, ExportedSetComesBackByImport) {
    ASSERT_EQ(export_to(m_folder / "out.csv").status, 0);
    ASSERT_EQ(
        run_command({"coefficients", "import", m_folder / "out.csv", "--name", "Back", "--store", m_store}).status, 0);
    ASSERT_EQ(
        run_command({"coefficients", "export", m_folder / "back.csv", "--set", "Back", "--store", m_store}).status, 0);
    EXPECT_EQ(base::read_file(m_folder / "back.csv"), base::read_file(m_folder / "out.csv"));
}

TEST_F(CoefficientsExchange, ExportReplacesAFileOnlyWithOverwrite) {
    const std::string before = base::read_file(m_text);
    expect_refused(export_to(m_text), "Kestrel: The file exists already: '" + m_text +
                                          "'. Give --overwrite to replace it, or another file.\n");
    EXPECT_EQ(base::read_file(m_text), before);
    EXPECT_EQ(export_to(m_text, {"--overwrite"}).status, 0);
    EXPECT_THAT(base::read_file(m_text), HasSubstr("24,City,90,80,70"));
}

TEST_F(CoefficientsExchange, ExportNeverReplacesTheStoreItself) {
    std::filesystem::create_symlink(m_store, m_folder / "link.csv");
    for (const std::string& file : {m_store, m_folder / "./store.xml", m_folder / "link.csv"}) {
        expect_refused(export_to(file, {"--overwrite"}), "Kestrel: '" + file +
                                                             "' is the coefficient store itself. Give another file to "
                                                             "export to.\n");
    }
}

TEST_F(CoefficientsExchange, ExportOfASetThatIsNotThereIsRefused) {
    expect_refused(run_command({"coefficients", "export", "--set", "small", m_folder / "out.csv", "--store", m_store}),
                   "Kestrel: The coefficient store '" + m_store +
                       "' holds no set 'small' (--set). It holds: 'Small', 'Other'. Names are compared exactly.\n");
    EXPECT_FALSE(base::file_exists(m_folder / "out.csv"));
}

TEST_F(CoefficientsExchange, ExportToAFolderThatIsNotThereIsRefused) {
    expect_refused(export_to(m_folder / "none/out.csv"), "Kestrel: The folder of the file does not exist: '" +
                                                             (m_folder / "none") +
                                                             "'. Make it, or give another file.\n");
}

TEST_F(CoefficientsExchange, ExportToAFolderIsRefused) {
    expect_refused(export_to(m_folder.path(), {"--overwrite"}),
                   "Kestrel: '" + m_folder.path() + "' is a folder. Give a file to export to.\n");
}

TEST_F(CoefficientsExchange, ExportNotesNamesThatCannotBeImported) {
    base::write_file(m_store,
                     "<ISModelProperties><ISLCDefs><ISLCDef><LCType>Small</LCType><LCClasses><LCClass ID='21'>"
                     "<LCName>Developed, Low</LCName><LCHigh>3</LCHigh><LCMed>2</LCMed><LCLow>1</LCLow></LCClass>"
                     "</LCClasses></ISLCDef></ISLCDefs></ISModelProperties>");
    const CommandResult result = export_to(m_folder / "out.csv");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              "Kestrel: The name of class 21 holds a comma or a line end, so the file cannot be imported: "
              "'Developed, Low'\n");
    EXPECT_EQ(base::read_file(m_folder / "out.csv"), "Value,ClassName,High,Medium,Low\r\n21,Developed, Low,3,2,1\r\n");
}

// Merge

TEST_F(CoefficientsExchange, MergeAddsTheSetsAndNamesTheStore) {
    write_store(m_folder / "more.xml", {"North", "South"});
    const CommandResult result = merge(m_folder / "more.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Merged 2 sets into the coefficient store " + m_store + "\n  North\n  South\n");
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(listed(), EndsWith("Small        3\nOther        3\nNorth        3\nSouth        3\n"));
}

TEST_F(CoefficientsExchange, MergeSaysWhenNamesWereTaken) {
    write_store(m_folder / "more.xml", {"Small", "North"});
    const CommandResult result = merge(m_folder / "more.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Merged 2 sets into the coefficient store " + m_store + "\n  Small2\n  North\n");
    EXPECT_EQ(result.err,
              "Kestrel: Coefficient sets were found with the duplicate names. A '2' was appended to the names of all "
              "duplicates.\n");
}

TEST_F(CoefficientsExchange, MergeOfWhatIsNoStoreEndsWithItsMessage) {
    const CommandResult result = merge(m_text);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, EndsWith("Kestrel: Failed To Load XML - Invalid file format.\n"));
    EXPECT_EQ(base::read_file(m_store), m_stored);
}

TEST_F(CoefficientsExchange, MergeOfAFileThatIsNotThereIsRefused) {
    expect_refused(merge(m_folder / "none.xml"),
                   "Kestrel: There is no file '" + (m_folder / "none.xml") + "' to merge.\n");
}

}  // namespace
}  // namespace kestrel::test
