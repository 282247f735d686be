// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/basISModelPropsUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "base/errors.h"
#include "base/files.h"
#include "coefficients/basUtil.h"
#include "coefficients/store_texts.h"
#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using basISModelPropsUtil::find_set;
using basISModelPropsUtil::MergeCoeffsFromFile;
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

class MergeTest : public testing::Test {
  protected:
    void SetUp() override { base::create_folder(m_folder / "etc"); }

    /// A store file of sets with these names, each with one class of the next value from 101.
    std::string file_of(const std::vector<std::string>& names) {
        clsISModelProperties props;
        std::int32_t id = 100;
        for (const std::string& name : names)
            add_set(props, name, {land_class(++id, "c", 90, 33.3F, 0.5F)});
        const std::string path = m_folder / "other.xml";
        base::write_file(path, props.XML());
        return path;
    }

    bool merge(const std::string& path) {
        return MergeCoeffsFromFile(m_props, path, m_store,
                                   [this](const std::string& name) { m_added.push_back(name); });
    }

    /// Outline of what the store file holds.
    std::vector<std::string> stored() const {
        clsISModelProperties props;
        EXPECT_TRUE(basUtil::GetISModelProperties(props, m_store.path));
        return outline(props);
    }

    MessageBox cannot_save() const {
        return {
            "Failed To Save XML - verify the permissions to write to file '" + m_folder.path() + "\\etc\\isprops.xml'.",
            "", Icon::critical, Buttons::ok_cancel};
    }

    const MessageBox m_duplicates{
        "Coefficient sets were found with the duplicate names. A '2' was appended to the names of all duplicates.", "",
        Icon::information, Buttons::ok};
    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_user;
    CoefficientStore m_store = CoefficientStore::in_extension_folder(m_folder.path());
    clsISModelProperties m_props;
    std::vector<std::string> m_added;
};

TEST(store_texts, LoadFailureOfTheEditorNamesTheStore) {
    EXPECT_EQ(store_texts::load_failed(CoefficientStore::in_extension_folder("/ext")),
              (MessageBox{"Failed To Load XML - verify the file 'isprops.xml' is located in the "
                          "'/ext\\etc\\isprops.xml'.",
                          "", Icon::critical, Buttons::ok_cancel}));
}

TEST(find_set, TakesTheFirstOfTheVeryName) {
    clsISModelProperties props;
    for (const char* name : {"urban", "Urban", "Urban"})
        add_set(props, name);
    EXPECT_EQ(find_set(props, "Urban"), props.ISLCDefs.Item(2));
    EXPECT_EQ(find_set(props, "URBAN"), nullptr);
}

TEST_F(MergeTest, NewSetsAreAddedAtTheEndInFileOrderWithoutAMessage) {
    add_set(m_props, "Mine", {land_class(1, "", 0, 0, 0)});
    EXPECT_TRUE(merge(file_of({"B", "A"})));
    EXPECT_THAT(outline(m_props), ElementsAre("Mine: 1", "B: 101", "A: 102"));
    EXPECT_THAT(m_added, ElementsAre("B", "A"));
    EXPECT_THAT(stored(), ElementsAre("Mine: 1", "B: 101", "A: 102"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(MergeTest, ClassesComeWithAllTheirValues) {
    EXPECT_TRUE(merge(file_of({"A"})));
    const auto land = m_props.ISLCDefs.Item(1)->LCClasses.Item(1);
    EXPECT_EQ(land->ID, 101);
    EXPECT_EQ(land->LCName, "c");
    EXPECT_EQ(land->LCHigh, 90);
    EXPECT_EQ(land->LCMed, 33.3F);
    EXPECT_EQ(land->LCLow, 0.5F);
}

TEST_F(MergeTest, MergingAFileIntoItselfAppends2ToEveryNameAndSaysSoOnce) {
    add_set(m_props, "A", {land_class(1, "", 0, 0, 0)});
    add_set(m_props, "B", {land_class(2, "", 0, 0, 0)});
    ASSERT_TRUE(basUtil::PutISModelProperties(m_props, m_store));
    EXPECT_TRUE(merge(m_store.path));
    EXPECT_THAT(stored(), ElementsAre("A: 1", "B: 2", "A2: 1", "B2: 2"));
    EXPECT_THAT(m_added, ElementsAre("A2", "B2"));
    EXPECT_THAT(m_user.boxes, ElementsAre(m_duplicates));
}

TEST_F(MergeTest, DuplicatesAreSaidAlsoWhenTheLastSetIsNew) {
    add_set(m_props, "A");
    EXPECT_TRUE(merge(file_of({"A", "B"})));
    EXPECT_THAT(outline(m_props), ElementsAre("A:", "A2: 101", "B: 102"));
    EXPECT_THAT(m_user.boxes, ElementsAre(m_duplicates));
}

TEST_F(MergeTest, SetIsListedWhenItHasItsClassesAndBeforeTheNext) {
    std::vector<std::string> seen;
    EXPECT_TRUE(MergeCoeffsFromFile(m_props, file_of({"A", "B"}), m_store, [&](const std::string& name) {
        seen.push_back(name + " of " + testing::PrintToString(outline(m_props)));
    }));
    EXPECT_THAT(seen, ElementsAre("A of { \"A: 101\" }", "B of { \"A: 101\", \"B: 102\" }"));
}

TEST_F(MergeTest, NamesAreComparedWithLetterCase) {
    add_set(m_props, "urban");
    EXPECT_TRUE(merge(file_of({"Urban"})));
    EXPECT_THAT(outline(m_props), ElementsAre("urban:", "Urban: 101"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(MergeTest, SetsMergedEarlierInTheSameMergeCountAsTaken) {
    EXPECT_TRUE(merge(file_of({"A", "A"})));
    EXPECT_THAT(outline(m_props), ElementsAre("A: 101", "A2: 102"));
    EXPECT_THAT(m_user.boxes, ElementsAre(m_duplicates));
}

TEST_F(MergeTest, The2IsAppendedOnlyOnceAndTheClassesGoToTheEarlierSetOfThatName) {
    add_set(m_props, "Urban", {land_class(1, "", 0, 0, 0)});
    add_set(m_props, "Urban2", {land_class(2, "", 0, 0, 0)});
    EXPECT_TRUE(merge(file_of({"Urban"})));
    EXPECT_THAT(outline(m_props), ElementsAre("Urban: 1", "Urban2: 2 101", "Urban2:"));
    EXPECT_THAT(m_added, ElementsAre("Urban2"));
    EXPECT_THAT(stored(), ElementsAre("Urban: 1", "Urban2: 2 101", "Urban2:"));
}

TEST_F(MergeTest, ThirdSetOfANameInOneFileGoesToTheSecond) {
    EXPECT_TRUE(merge(file_of({"A", "A", "A"})));
    EXPECT_THAT(outline(m_props), ElementsAre("A: 101", "A2: 102 103", "A2:"));
    EXPECT_THAT(m_user.boxes, ElementsAre(m_duplicates));
}

TEST_F(MergeTest, FileWithoutSetsMergesNothingAndSaves) {
    add_set(m_props, "Mine");
    EXPECT_TRUE(merge(file_of({})));
    EXPECT_THAT(outline(m_props), ElementsAre("Mine:"));
    EXPECT_THAT(stored(), ElementsAre("Mine:"));
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(MergeTest, MissingOrMalformedFileSaysSoAndChangesNothing) {
    add_set(m_props, "Mine");
    base::write_file(m_folder / "bad.xml", "<ISModelProperties><ISLCDefs>");
    for (const char* name : {"none.xml", "bad.xml"}) {
        EXPECT_FALSE(merge(m_folder / name));
        EXPECT_THAT(m_user.boxes, ElementsAre(MessageBox{"Failed To Load XML - Invalid file format.", "",
                                                         Icon::exclamation, Buttons::ok_cancel}));
        m_user.boxes.clear();
    }
    EXPECT_THAT(outline(m_props), ElementsAre("Mine:"));
    EXPECT_THAT(m_added, IsEmpty());
    EXPECT_FALSE(base::file_exists(m_store.path));
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(MergeTest, FileWithAValueThatIsNoNumberIsReportedByTheLoadAndThenRefused) {
    EXPECT_FALSE(merge(test::fixture_path("coefficients/isprops_missing_class_id.xml")));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tGetISModelProperties basUtil Line : "));
    EXPECT_THAT(m_user.boxes, ElementsAre(MessageBox{"Failed To Load XML - Invalid file format.", "", Icon::exclamation,
                                                     Buttons::ok_cancel}));
    EXPECT_EQ(m_props.ISLCDefs.Count(), 0);
}

TEST_F(MergeTest, AnswerToTheMessageChangesNothing) {
    for (const reporting::Answer answer : {reporting::Answer::ok, reporting::Answer::cancel}) {
        m_user.answers.push_back(answer);
        EXPECT_FALSE(merge(m_folder / "none.xml"));
    }
    EXPECT_EQ(m_props.ISLCDefs.Count(), 0);
}

TEST_F(MergeTest, SetsStayInMemoryWhenTheStoreCannotBeWritten) {
    base::remove_folder(m_folder / "etc");
    EXPECT_FALSE(merge(file_of({"A"})));
    EXPECT_THAT(outline(m_props), ElementsAre("A: 101"));
    EXPECT_THAT(m_added, ElementsAre("A"));
    EXPECT_THAT(m_user.boxes, ElementsAre(cannot_save()));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tPutISModelProperties basUtil Line : "));
}

TEST_F(MergeTest, SaveFailureIsSaidBeforeTheDuplicates) {
    base::remove_folder(m_folder / "etc");
    add_set(m_props, "A");
    EXPECT_FALSE(merge(file_of({"A"})));
    EXPECT_THAT(m_user.boxes, ElementsAre(cannot_save(), m_duplicates));
}

TEST_F(MergeTest, MergeBeyondTheLimitOfTheStoreFailsToSave) {
    ASSERT_TRUE(basUtil::PutISModelProperties(m_props, m_store));
    add_set(m_props, std::string(20000, 'x'));
    EXPECT_FALSE(merge(file_of({std::string(20000, 'y')})));
    EXPECT_EQ(m_props.ISLCDefs.Count(), 2);
    EXPECT_THAT(m_user.boxes, ElementsAre(cannot_save()));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr(m_store.path + ".bak"));
}

TEST_F(MergeTest, ErrorInTheListOfTheEditorIsReportedByTheMerge) {
    EXPECT_FALSE(MergeCoeffsFromFile(m_props, file_of({"A"}), m_store,
                                     [](const std::string&) { throw std::runtime_error("list is gone"); }));
    EXPECT_THAT(m_user.call_stacks,
                ElementsAre("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tMergeCoeffsFromFile "
                            "basISModelPropsUtil \r\n\r\nError Number \r\n\t-2147467259\r\nDescription\r\n\tlist is "
                            "gone\r\n\r\n"));
}

TEST_F(MergeTest, ListOfTheEditorMayBeMissing) {
    EXPECT_TRUE(MergeCoeffsFromFile(m_props, file_of({"A"}), m_store, {}));
    EXPECT_THAT(outline(m_props), ElementsAre("A: 101"));
}

}  // namespace
}  // namespace kestrel
