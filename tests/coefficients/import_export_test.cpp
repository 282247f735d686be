// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "base/files.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/basUtil.h"
#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using basISModelPropsUtil::ExportCoeffsToFile;
using basISModelPropsUtil::ImportCoeffsFromFile;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using test::add_set;
using test::land_class;
using test::outline;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kGoodLines = "Value,ClassName,High,Medium,Low\r\n11,Water,3,2,1\r\n12,Ice,6,5,4\r\n";

class ImportTest : public testing::Test {
  protected:
    void SetUp() override {
        base::create_folder(m_folder / "etc");
        add_set(m_props, "Mine", {land_class(1, "a", 0, 0, 0)});
        ASSERT_TRUE(basUtil::PutISModelProperties(m_props, m_store));
        m_stored = base::read_file(m_store.path);
        base::write_file(m_path, kGoodLines);
    }

    bool import(const std::string& name) {
        m_user.inputs.push_back(name);
        return ImportCoeffsFromFile(m_props, m_path, m_store, note_added());
    }

    basISModelPropsUtil::SetAdded note_added() {
        return [this](const std::string& name) { m_added.push_back(name + " of " + outline(m_props).back()); };
    }

    std::vector<std::string> stored() const {
        clsISModelProperties props;
        EXPECT_TRUE(basUtil::GetISModelProperties(props, m_store.path));
        return outline(props);
    }

    /// The list of sets, that of the editor, and the bytes of the store.
    void expect_nothing_changed() {
        EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1"));
        EXPECT_THAT(m_added, IsEmpty());
        EXPECT_EQ(base::read_file(m_store.path), m_stored);
        EXPECT_FALSE(base::file_exists(m_store.path + ".bak"));
    }

    /// Imports a file of these lines, which must be refused with this message.
    void expect_refused(const std::string& lines, const std::string& text) {
        base::write_file(m_path, lines);
        EXPECT_FALSE(import("New"));
        EXPECT_THAT(m_user.boxes,
                    ElementsAre(MessageBox{text, "Coefficient Import Unsuccessful", Icon::critical, Buttons::ok}));
        EXPECT_THAT(m_user.call_stacks, IsEmpty());
        expect_nothing_changed();
    }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_user;
    CoefficientStore m_store = CoefficientStore::in_extension_folder(m_folder.path());
    std::string m_stored;
    std::string m_path = m_folder / "lines.csv";
    clsISModelProperties m_props;
    std::vector<std::string> m_added;
};

const MessageBox kNameTaken{"Coefficient Set name must be unique. Please reenter.", "", Icon::exclamation, Buttons::ok};

TEST_F(ImportTest, NewSetIsAppendedListedAndSaved) {
    EXPECT_TRUE(import("New"));
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "New: 11 12"));
    EXPECT_THAT(stored(), ElementsAre("Mine: 1", "New: 11 12"));
    EXPECT_THAT(test::classes_of(m_props.ISLCDefs.Item(2)->LCClasses),
                ElementsAre(test::ClassValues{11, "Water", 3, 2, 1}, test::ClassValues{12, "Ice", 6, 5, 4}));
    EXPECT_THAT(m_added, ElementsAre("New of New: 11 12"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
    EXPECT_THAT(m_user.notices, IsEmpty());
}

TEST_F(ImportTest, HeaderAloneAndEmptyFileGiveSetsWithoutClasses) {
    base::write_file(m_path, "Value,ClassName,High,Medium,Low\r\n");
    EXPECT_TRUE(import("A"));
    base::write_file(m_path, "");
    EXPECT_TRUE(import("B"));
    EXPECT_THAT(stored(), ElementsAre("Mine: 1", "A:", "B:"));
}

TEST_F(ImportTest, ListOfTheEditorMayBeMissing) {
    m_user.inputs.emplace_back("New");
    EXPECT_TRUE(ImportCoeffsFromFile(m_props, m_path, m_store, {}));
    EXPECT_THAT(stored(), ElementsAre("Mine: 1", "New: 11 12"));
}

// The name

TEST_F(ImportTest, NameIsAskedInAnInputBox) {
    import("New");
    ASSERT_THAT(m_user.input_boxes, SizeIs(1));
    EXPECT_EQ(m_user.input_boxes.front().prompt, "Enter new Coefficient Set name");
    EXPECT_EQ(m_user.input_boxes.front().title, "Import");
}

TEST_F(ImportTest, EmptyNameOrCancelStopsBeforeTheFileIsOpened) {
    base::remove_file(m_path);
    EXPECT_FALSE(import(""));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
    expect_nothing_changed();
}

TEST_F(ImportTest, NameIsAskedAgainWhileASetHasIt) {
    m_user.inputs = {"Mine", "Mine"};
    EXPECT_TRUE(import("New"));
    EXPECT_THAT(m_user.boxes, ElementsAre(kNameTaken, kNameTaken));
    EXPECT_THAT(m_user.input_boxes, SizeIs(3));
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "New: 11 12"));
}

TEST_F(ImportTest, CancelAfterATakenNameChangesNothing) {
    EXPECT_FALSE(import("Mine"));
    EXPECT_THAT(m_user.boxes, ElementsAre(kNameTaken));
    EXPECT_THAT(m_user.input_boxes, SizeIs(2));
    expect_nothing_changed();
}

TEST_F(ImportTest, NameIsComparedWithEverySet) {
    add_set(m_props, "Last");
    EXPECT_FALSE(import("Last"));
    EXPECT_THAT(m_user.boxes, ElementsAre(kNameTaken));
}

TEST_F(ImportTest, NameIsComparedExactly) {
    EXPECT_TRUE(import("mine"));
    EXPECT_TRUE(import("Mine "));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "mine: 11 12", "Mine : 11 12"));
}

TEST_F(ImportTest, TakenNameIsSaidBeforeTheFileIsOpened) {
    base::remove_file(m_path);
    EXPECT_FALSE(import("Mine"));
    EXPECT_THAT(m_user.boxes, ElementsAre(kNameTaken));
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

// Lines that are wrong

TEST_F(ImportTest, WrongNumberOfFieldsIsSaid) {
    expect_refused(
        "11,Water,1,2\n",
        "Incorrect number of fields detected in your import file " + m_path +
            ". Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.");
}

TEST_F(ImportTest, FieldThatIsNoNumberIsSaid) {
    expect_refused(
        "11,Water,abc,0,0\n",
        "Invalid or incorrectly formated data in import file " + m_path +
            ". Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.");
}

TEST_F(ImportTest, NegativeOrFractionalValueIsSaid) {
    expect_refused(
        "-1,Water,0,0,0\n",
        "Invalid class ID in the Value column within import file " + m_path +
            ". Class ID must be a positive integer. Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.");
}

TEST_F(ImportTest, CoefficientBeyond0To100IsSaid) {
    expect_refused(
        "11,Water,100.5,0,0\n",
        "Invalid coefficient in import file " + m_path +
            ". Coefficients must be between 0-100 (inclusive). Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.");
}

TEST_F(ImportTest, OneMessageIsShownForAFileOfManyFaultsAndGoodLinesBeforeItAreForgotten) {
    base::write_file(m_path, "11,Water,1,2,3\r\n12,Ice,101,0,0\r\n\r\nabc,Ice,1,2,3\r\n");
    EXPECT_FALSE(import("New"));
    ASSERT_THAT(m_user.boxes, SizeIs(1));
    EXPECT_THAT(m_user.boxes.front().text, StartsWith("Invalid coefficient in import file "));
    expect_nothing_changed();
}

TEST_F(ImportTest, NameMayBeUsedAgainAfterAFailure) {
    base::write_file(m_path, "\n");
    EXPECT_FALSE(import("New"));
    base::write_file(m_path, kGoodLines);
    EXPECT_TRUE(import("New"));
    EXPECT_THAT(stored(), ElementsAre("Mine: 1", "New: 11 12"));
}

TEST_F(ImportTest, BadFilesOfEveryKindLeaveListAndStoreAsTheyWere) {
    using namespace std::string_literals;
    const std::vector<std::string> files{"11,Water,1,2,3\r\n\r\n",
                                         "11,Water,1,2,3,4",
                                         "11,Water,1,2",
                                         "11,\"a, b\",1,2,3",
                                         "\"11\",\"a\",1,2,3",
                                         "1,100,Water,1,2,3",
                                         "1'100,Water,1,2,3",
                                         "11,Water,12,5,1,0",
                                         "11;Water;1;2;3",
                                         "inf,Water,1,2,3",
                                         "11,Water,nan,2,3",
                                         "0x0B,Water,1,2,3",
                                         "1e400,Water,1,2,3",
                                         "11,Water,1e400,2,3",
                                         "2147483648,Water,1,2,3",
                                         "-1,Water,1,2,3",
                                         "1.5,Water,1,2,3",
                                         "11,Water,1,2,100.5",
                                         "11,Water,,2,3",
                                         "11,Wa\0ter,1,2,3"s,
                                         "1\0,\0a\0,\0"
                                         "1\0,\0"
                                         "2\0,\0"
                                         "3\0"s,
                                         "\xFF\xFE"
                                         "1\0,\0a\0,\0"
                                         "1\0,\0"
                                         "2\0,\0"
                                         "3\0"s,
                                         "\xFE\xFF\0"
                                         "1\0,\0a\0,\0"
                                         "1\0,\0"
                                         "2\0,\0"
                                         "3"s,
                                         "11,a,1,2,3\r12,b,1,2,3\r",
                                         "Values,ClassName,High,Medium,Low"};
    for (const std::string& bytes : files) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        m_user.boxes.clear();
        base::write_file(m_path, bytes);
        EXPECT_FALSE(import("New"));
        ASSERT_THAT(m_user.boxes, SizeIs(1));
        EXPECT_EQ(m_user.boxes.front().title, "Coefficient Import Unsuccessful");
        EXPECT_THAT(m_user.call_stacks, IsEmpty());
        expect_nothing_changed();
    }
}

/// Most memory that this process ever held, in bytes.
std::int64_t peak_memory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{usage.ru_maxrss} * 1024;
}

TEST_F(ImportTest, LineOfAGigabyteIsRefusedInLittleMemory) {
    std::filesystem::resize_file(m_path, std::uintmax_t{1} << 30);
    // A child of its own, because the peak of a process never falls.
    const pid_t child = ::fork();
    if (child == 0) {
        const std::int64_t before = peak_memory();
        const bool imported = import("New");
        const bool said = m_user.boxes.size() == 1 &&
                          m_user.boxes.front().text.starts_with("Incorrect number of fields detected in your import ");
        ::_exit(imported ? 1 : !said ? 2 : peak_memory() - before > std::int64_t{64} * 1024 * 1024 ? 3 : 0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1 imported, 2 another message, 3 too much memory";
    expect_nothing_changed();
}

// Run-time errors

TEST_F(ImportTest, FileThatCannotBeOpenedIsReported) {
    m_path = m_folder / "none.csv";
    EXPECT_FALSE(import("New"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(),
                testing::MatchesRegex("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
                                      "\tImportCoeffsFromFile basISModelPropsUtil Line : [0-9]+\r\n\r\n"
                                      "Error Number \r\n\t53\r\nDescription\r\n\t.*none.csv.*\r\n\r\n"));
    expect_nothing_changed();
}

TEST_F(ImportTest, FolderInPlaceOfAFileIsReported) {
    m_path = m_folder / "etc";
    EXPECT_FALSE(import("New"));
    EXPECT_THAT(m_user.call_stacks, ElementsAre(HasSubstr("\tImportCoeffsFromFile basISModelPropsUtil Line : ")));
    expect_nothing_changed();
}

TEST_F(ImportTest, FileOfTooManyGoodLinesIsReported) {
    std::string lines;
    while (lines.size() <= std::size_t{1024} * 1024)
        lines += "11,Water,1,2,3\r\n";
    base::write_file(m_path, lines);
    EXPECT_FALSE(import("New"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, ElementsAre(HasSubstr("Error Number \r\n\t6\r\nDescription\r\n\tOverflow: ")));
    expect_nothing_changed();
}

TEST_F(ImportTest, ErrorInTheListOfTheEditorIsReportedAndTheSetRemoved) {
    m_user.inputs.emplace_back("New");
    EXPECT_FALSE(ImportCoeffsFromFile(m_props, m_path, m_store,
                                      [](const std::string&) { throw std::runtime_error("list is gone"); }));
    EXPECT_THAT(m_user.call_stacks,
                ElementsAre("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tImportCoeffsFromFile "
                            "basISModelPropsUtil \r\n\r\nError Number \r\n\t-2147467259\r\nDescription\r\n\tlist is "
                            "gone\r\n\r\n"));
    expect_nothing_changed();
}

// Saving

TEST_F(ImportTest, SetStaysInMemoryAndInTheListWhenTheStoreCannotBeWritten) {
    base::remove_folder(m_folder / "etc");
    EXPECT_FALSE(import("New"));
    EXPECT_THAT(m_user.boxes,
                ElementsAre(MessageBox{"Failed To Save XML - verify the permissions to write to file '" +
                                           m_folder.path() + "\\etc\\isprops.xml'.",
                                       "Coefficient Import Unsuccessful", Icon::critical, Buttons::ok_cancel}));
    EXPECT_THAT(m_user.call_stacks, ElementsAre(HasSubstr("\tPutISModelProperties basUtil Line : ")));
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "New: 11 12"));
    EXPECT_THAT(m_added, ElementsAre("New of New: 11 12"));
}

TEST_F(ImportTest, AnswerToTheSaveFailureChangesNothing) {
    base::remove_folder(m_folder / "etc");
    for (const reporting::Answer answer : {reporting::Answer::ok, reporting::Answer::cancel}) {
        m_user.answers.push_back(answer);
        EXPECT_FALSE(import("New " + std::to_string(m_props.ISLCDefs.Count())));
    }
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "New 1: 11 12", "New 2: 11 12"));
}

TEST_F(ImportTest, SetBeyondTheLimitOfTheStoreFailsToSaveAndTheCopyIsNamed) {
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += "11,Water,1,2,3\r\n";
    base::write_file(m_path, lines);
    EXPECT_FALSE(import("New"));
    ASSERT_THAT(m_user.boxes, SizeIs(1));
    EXPECT_THAT(m_user.boxes.front().text, StartsWith("Failed To Save XML - verify the permissions to write to file"));
    EXPECT_THAT(m_user.call_stacks, ElementsAre(HasSubstr(m_store.path + ".bak")));
    EXPECT_EQ(base::read_file(m_store.path + ".bak"), m_stored);
    EXPECT_EQ(m_props.ISLCDefs.Item(2)->LCClasses.Count(), 1000);
}

// Export

TEST_F(ImportTest, ExportWritesTheFirstSetOfTheNameInPlaceOfAnyFile) {
    add_set(m_props, "Two",
            {land_class(21, "Developed Low Intensity", 35, 25, 12.5F), land_class(0, "", 100, 0, 33.3F)});
    add_set(m_props, "Two", {land_class(9, "other", 0, 0, 0)});
    EXPECT_TRUE(ExportCoeffsToFile(m_props, "Two", m_path));
    EXPECT_EQ(base::read_file(m_path),
              "Value,ClassName,High,Medium,Low\r\n21,Developed Low Intensity,35,25,12.5\r\n0,,100,0,33.3\r\n");
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(ImportTest, ExportOfASetThatIsNotThereHoldsOnlyTheHeader) {
    for (const char* name : {"None", "mine", ""}) {
        EXPECT_TRUE(ExportCoeffsToFile(m_props, name, m_path));
        EXPECT_EQ(base::read_file(m_path), "Value,ClassName,High,Medium,Low\r\n") << name;
    }
}

TEST_F(ImportTest, ExportOfASetWithoutClassesHoldsOnlyTheHeader) {
    add_set(m_props, "Empty");
    EXPECT_TRUE(ExportCoeffsToFile(m_props, "Empty", m_path));
    EXPECT_EQ(base::read_file(m_path), "Value,ClassName,High,Medium,Low\r\n");
}

TEST_F(ImportTest, ExportToAPlaceThatCannotBeWrittenIsReported) {
    EXPECT_FALSE(ExportCoeffsToFile(m_props, "Mine", m_folder / "none/out.csv"));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(),
                testing::MatchesRegex("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
                                      "\tExportCoeffsToFile basISModelPropsUtil Line : [0-9]+\r\n\r\n"
                                      "Error Number \r\n\t76\r\nDescription\r\n\t.*out.csv.*\r\n\r\n"));
    EXPECT_FALSE(ExportCoeffsToFile(m_props, "Mine", m_folder / "etc"));
    EXPECT_THAT(m_user.call_stacks, SizeIs(2));
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

}  // namespace
}  // namespace kestrel
