// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/basUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "base/errors.h"
#include "base/files.h"
#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using base::read_file;
using base::write_file;
using basUtil::GetISModelProperties;
using basUtil::PutISModelProperties;
using test::add_default_set;
using test::add_set;
using test::fixture_path;
using test::land_class;
using test::outline;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class basUtilTest : public testing::Test {
  protected:
    void SetUp() override { base::create_folder(m_folder / "etc"); }

    std::string fixture(const std::string& name) const { return read_file(fixture_path("coefficients/" + name)); }
    bool load_fixture(clsISModelProperties& props, const std::string& name) {
        return GetISModelProperties(props, fixture_path("coefficients/" + name));
    }
    bool no_box_no_report() const { return m_user.boxes.empty() && m_user.call_stacks.empty(); }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_user;
    CoefficientStore m_store = CoefficientStore::in_extension_folder(m_folder.path());
    std::string m_path = m_folder / "etc/isprops.xml";
    std::string m_copy = m_folder / "etc/isprops.xml.bak";
};

/// Makes the flat text of `props` exactly `characters` long, by the name of its last set.
void fill_to(clsISModelProperties& props, std::size_t characters, char letter = 'x') {
    add_set(props, std::string(1, letter));
    const auto last = props.ISLCDefs.Item(props.ISLCDefs.Count());
    last->LCType.append(characters - props.XML().size(), letter);
}

TEST(CoefficientStore, OfAnExtensionFolderLiesInEtcAndIsShownWithBackslashes) {
    const CoefficientStore store = CoefficientStore::in_extension_folder("/home/me/kestrel");
    EXPECT_EQ(store.path, "/home/me/kestrel/etc/isprops.xml");
    EXPECT_EQ(store.shown_name, "/home/me/kestrel\\etc\\isprops.xml");
    EXPECT_EQ(store.lock_folder, "/home/me/kestrel");
}

TEST(CoefficientStore, OfAnyOtherFileIsShownAsGiven) {
    const CoefficientStore store = CoefficientStore::at("/data/town.xml");
    EXPECT_EQ(store.path, "/data/town.xml");
    EXPECT_EQ(store.shown_name, "/data/town.xml");
    EXPECT_EQ(store.lock_folder, "/data");
    EXPECT_EQ(CoefficientStore::at("town.xml").lock_folder, ".");
}

// Loading

TEST_F(basUtilTest, LoadReadsNamesValuesAndCoefficientsInOrder) {
    clsISModelProperties props;
    EXPECT_TRUE(load_fixture(props, "isprops_default.xml"));
    clsISModelProperties expected;
    add_default_set(expected);
    EXPECT_EQ(props.XML(), expected.XML());
    EXPECT_TRUE(no_box_no_report());
    EXPECT_THAT(m_user.notices, IsEmpty());
}

TEST_F(basUtilTest, StoreWithoutSetsLoadsAsAnEmptyList) {
    clsISModelProperties props;
    add_default_set(props);
    EXPECT_TRUE(load_fixture(props, "isprops_no_sets.xml"));
    EXPECT_EQ(props.ISLCDefs.Count(), 0);
    EXPECT_THAT(basUtil::set_names(props), IsEmpty());
}

TEST_F(basUtilTest, DeeperLinesAfterSelfClosingTagsStillLoad) {
    clsISModelProperties props;
    EXPECT_TRUE(load_fixture(props, "isprops_empty_set_first.xml"));
    EXPECT_THAT(outline(props), ElementsAre("Empty:", "Named <Low & High> \u00e9: -1"));
    EXPECT_EQ(props.ISLCDefs.Item(2)->LCClasses.Item(1)->LCMed, 33.3F);
}

TEST_F(basUtilTest, MissingClassNameLoadsAsAnEmptyName) {
    clsISModelProperties props;
    EXPECT_TRUE(load_fixture(props, "isprops_missing_class_name.xml"));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "");
}

TEST_F(basUtilTest, MissingStoreGivesFalseWithoutAReportAndANoticeThatNamesIt) {
    clsISModelProperties props;
    add_default_set(props);
    EXPECT_FALSE(GetISModelProperties(props, m_path));
    EXPECT_THAT(outline(props), ElementsAre("Default: 21 41"));
    EXPECT_TRUE(no_box_no_report());
    EXPECT_THAT(m_user.notices, ElementsAre(HasSubstr(m_path)));
}

TEST_F(basUtilTest, NoticeOfAStoreThatDoesNotLoadNamesItsCopy) {
    write_file(m_path, "<ISModelProperties>");
    write_file(m_copy, "<ISModelProperties/>");
    clsISModelProperties props;
    EXPECT_FALSE(GetISModelProperties(props, m_path));
    EXPECT_THAT(m_user.notices, ElementsAre(HasSubstr("The last good copy of the store is \"" + m_copy + "\".")));
}

TEST_F(basUtilTest, MalformedAndHostileStoresGiveFalseWithoutAReportAndChangeNothing) {
    for (const char* name : {"isprops_truncated.xml", "isprops_entity_expansion.xml", "isprops_external_entity.xml",
                             "isprops_deep.xml", "isprops_two_roots.xml", "isprops_contradicting_encoding.xml"}) {
        clsISModelProperties props;
        add_default_set(props);
        EXPECT_FALSE(load_fixture(props, name)) << name;
        EXPECT_THAT(outline(props), ElementsAre("Default: 21 41")) << name;
        EXPECT_TRUE(no_box_no_report()) << name;
        EXPECT_THAT(m_user.notices, ElementsAre(HasSubstr(name))) << name;
        m_user.notices.clear();
    }
}

TEST_F(basUtilTest, EveryTruncationOfAStoreGivesFalseAndChangesNothing) {
    const std::string whole = fixture("isprops_default.xml");
    clsISModelProperties props;
    add_default_set(props);
    for (std::size_t length = 0; length < whole.size() - 2; length += 7) {  // the last line end is not missed
        write_file(m_path, whole.substr(0, length));
        EXPECT_FALSE(GetISModelProperties(props, m_path)) << length;
    }
    EXPECT_THAT(outline(props), ElementsAre("Default: 21 41"));
}

TEST_F(basUtilTest, StoreOf20MegabytesGivesFalseAndChangesNothing) {
    std::string blanks;
    blanks.resize(20'000'000, ' ');
    write_file(m_path, "<ISModelProperties>" + blanks + "</ISModelProperties>");
    clsISModelProperties props;
    add_default_set(props);
    EXPECT_FALSE(GetISModelProperties(props, m_path));
    EXPECT_THAT(outline(props), ElementsAre("Default: 21 41"));
}

TEST_F(basUtilTest, LoadingHasNoLimitOfItsOwn) {
    clsISModelProperties written;
    add_set(written, std::string(100'000, 'x'));
    write_file(m_path, written.XML());
    clsISModelProperties props;
    EXPECT_TRUE(GetISModelProperties(props, m_path));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCType.size(), 100'000U);
}

TEST_F(basUtilTest, ValueThatIsNoNumberIsReportedAndChangesNothing) {
    for (const char* name : {"isprops_missing_class_id.xml", "isprops_coefficient_not_numeric.xml"}) {
        clsISModelProperties props;
        add_set(props, "Before");
        EXPECT_FALSE(load_fixture(props, name));
        EXPECT_THAT(outline(props), ElementsAre("Before:"));
        ASSERT_THAT(m_user.call_stacks, SizeIs(1));
        EXPECT_THAT(m_user.call_stacks.front(),
                    StartsWith("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tGetISModelProperties "
                               "basUtil Line : "));
        EXPECT_THAT(m_user.call_stacks.front(),
                    HasSubstr("\r\nError Number \r\n\t13\r\nDescription\r\n\tType mismatch"));
        EXPECT_THAT(m_user.boxes, IsEmpty());
        m_user.call_stacks.clear();
    }
}

TEST_F(basUtilTest, OtherEncodingsLoad) {
    clsISModelProperties props;
    EXPECT_TRUE(load_fixture(props, "isprops_windows_1252.xml"));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "For\u00eat \u20ac");
    EXPECT_TRUE(load_fixture(props, "isprops_utf_16.xml"));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "For\u00eat \u20ac");
    EXPECT_TRUE(load_fixture(props, "isprops_with_declaration.xml"));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "For\u00eat");
}

// Saving

TEST_F(basUtilTest, SaveWritesTheIndentedTextByteForByte) {
    clsISModelProperties props;
    add_default_set(props);
    EXPECT_TRUE(PutISModelProperties(props, m_store));
    EXPECT_EQ(read_file(m_path), fixture("isprops_default.xml"));
    EXPECT_TRUE(no_box_no_report());
}

TEST_F(basUtilTest, SaveOfATreeWithoutSetsWritesASelfClosedElement) {
    EXPECT_TRUE(PutISModelProperties({}, m_store));
    EXPECT_EQ(read_file(m_path), fixture("isprops_no_sets.xml"));
}

TEST_F(basUtilTest, SaveIndentsEverythingAfterASetWithoutClassesDeeper) {
    clsISModelProperties props;
    add_set(props, "Empty");
    add_set(props, "Named <Low & High> \u00e9", {land_class(-1, "", 100, 33.3F, 0.05F)});
    EXPECT_TRUE(PutISModelProperties(props, m_store));
    EXPECT_EQ(read_file(m_path), fixture("isprops_empty_set_first.xml"));
}

TEST_F(basUtilTest, SavingAndLoadingGivesTheSameTree) {
    clsISModelProperties written;
    add_default_set(written);
    add_set(written, "Empty");
    add_set(written, "Default", {land_class(-7, "a > b & \"c\" ]]>", 33.3F, 1e-5F, 1e20F)});
    EXPECT_TRUE(PutISModelProperties(written, m_store));
    clsISModelProperties read;
    EXPECT_TRUE(GetISModelProperties(read, m_path));
    EXPECT_EQ(read.XML(), written.XML());
}

TEST_F(basUtilTest, NamesThatBeginWithAByteOrderMarkSaveAndLoad) {
    clsISModelProperties written;
    add_set(written, "\uFEFFSet", {land_class(1, "\uFEFFTown", 3, 2, 1)});
    EXPECT_TRUE(PutISModelProperties(written, m_store));
    clsISModelProperties read;
    EXPECT_TRUE(GetISModelProperties(read, m_path));
    EXPECT_EQ(read.XML(), written.XML());
    EXPECT_TRUE(no_box_no_report());
}

TEST_F(basUtilTest, StoreOfRealDataSavesAsTheSameBytes) {
    const std::string folder = test::real_data_folder();
    if (folder.empty()) {
        std::cerr << "NOT TESTED: the real data are missing; set KESTREL_REAL_DATA to their folder\n";
        GTEST_SKIP() << "the real data are missing";
    }
    clsISModelProperties props;
    ASSERT_TRUE(GetISModelProperties(props, folder + "/isprops.xml"));
    EXPECT_THAT(basUtil::set_names(props), ElementsAre("NLCD legend", "NLCD spread", "NLCD without crops"));
    ASSERT_TRUE(PutISModelProperties(props, m_store));
    EXPECT_EQ(read_file(m_path), read_file(folder + "/isprops.xml"));
}

TEST_F(basUtilTest, SaveCopiesTheStoreThatWasThere) {
    write_file(m_path, fixture("isprops_default.xml"));
    EXPECT_TRUE(PutISModelProperties({}, m_store));
    EXPECT_EQ(read_file(m_copy), fixture("isprops_default.xml"));
    EXPECT_EQ(read_file(m_path), fixture("isprops_no_sets.xml"));
}

TEST_F(basUtilTest, StoreThatCannotBeCopiedIsNotReplaced) {
    write_file(m_path, fixture("isprops_default.xml"));
    base::create_folder(m_copy);
    EXPECT_FALSE(PutISModelProperties({}, m_store));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tPutISModelProperties basUtil Line : "));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t75\r\n"));
    EXPECT_EQ(read_file(m_path), fixture("isprops_default.xml"));
}

TEST_F(basUtilTest, FirstSaveMakesNoCopy) {
    EXPECT_TRUE(PutISModelProperties({}, m_store));
    EXPECT_THAT(test::names_in(m_folder / "etc"), ElementsAre("isprops.xml"));
}

TEST_F(basUtilTest, StoreThatDoesNotLoadNeverReplacesAGoodCopy) {
    for (const char* name : {"isprops_truncated.xml", "isprops_missing_class_id.xml"}) {
        write_file(m_copy, "good");
        write_file(m_path, fixture(name));
        EXPECT_TRUE(PutISModelProperties({}, m_store));
        EXPECT_EQ(read_file(m_copy), "good") << name;
        EXPECT_EQ(read_file(m_path), fixture("isprops_no_sets.xml"));
    }
    EXPECT_TRUE(no_box_no_report());
    EXPECT_THAT(m_user.notices, IsEmpty());
}

TEST_F(basUtilTest, TextOf32767CharactersSaves) {
    clsISModelProperties props;
    add_default_set(props);
    fill_to(props, 32767);
    ASSERT_EQ(props.XML().size(), 32767U);
    EXPECT_TRUE(PutISModelProperties(props, m_store));
    clsISModelProperties read;
    EXPECT_TRUE(GetISModelProperties(read, m_path));
    EXPECT_EQ(read.XML(), props.XML());
}

TEST_F(basUtilTest, TextOf32768CharactersFailsWithError6AndLeavesTheFileCut) {
    write_file(m_path, fixture("isprops_default.xml"));
    clsISModelProperties props;
    add_default_set(props);
    fill_to(props, 32768);
    EXPECT_FALSE(PutISModelProperties(props, m_store));
    EXPECT_TRUE(read_file(m_path).ends_with("      </ISLCDefs>\r\n")) << "all but the last tag";
    EXPECT_EQ(read_file(m_copy), fixture("isprops_default.xml"));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tPutISModelProperties basUtil Line : "));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t6\r\nDescription\r\n\tOverflow"));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\"" + m_copy + "\""));
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(basUtilTest, StoreThatWasCutDoesNotLoadAndTheNextSaveKeepsTheGoodCopy) {
    write_file(m_path, fixture("isprops_default.xml"));
    clsISModelProperties props;
    fill_to(props, 40000);
    EXPECT_FALSE(PutISModelProperties(props, m_store));
    clsISModelProperties read;
    EXPECT_FALSE(GetISModelProperties(read, m_path));
    EXPECT_FALSE(PutISModelProperties(props, m_store));
    EXPECT_TRUE(PutISModelProperties({}, m_store));
    EXPECT_EQ(read_file(m_copy), fixture("isprops_default.xml"));
}

TEST_F(basUtilTest, OverflowOfAFirstSaveNamesNoCopy) {
    clsISModelProperties props;
    fill_to(props, 32768);
    EXPECT_FALSE(PutISModelProperties(props, m_store));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), testing::Not(HasSubstr(".bak")));
}

TEST_F(basUtilTest, PositionsCountCharactersOfTheTextAndNotBytes) {
    clsISModelProperties props;
    std::string name;
    for (int i = 0; i < 20000; ++i)
        name += "\u00e9";
    add_set(props, name);
    ASSERT_GT(props.XML().size(), 40000U);
    EXPECT_TRUE(PutISModelProperties(props, m_store));
}

TEST_F(basUtilTest, SaveWithoutAnEtcFolderIsReported) {
    base::remove_folder(m_folder / "etc");
    EXPECT_FALSE(PutISModelProperties({}, m_store));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tPutISModelProperties basUtil Line : "));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t76\r\n"));
    EXPECT_FALSE(base::folder_exists(m_folder / "etc"));
}

TEST_F(basUtilTest, SaveWhileTheFolderIsLockedIsReportedAndTouchesNothing) {
    write_file(m_path, fixture("isprops_default.xml"));
    const base::FolderLock run(m_folder.path());
    EXPECT_FALSE(PutISModelProperties({}, m_store));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t70\r\n"));
    EXPECT_EQ(read_file(m_path), fixture("isprops_default.xml"));
    EXPECT_THAT(test::names_in(m_folder / "etc"), ElementsAre("isprops.xml"));
}

TEST_F(basUtilTest, SaveReleasesItsLock) {
    EXPECT_TRUE(PutISModelProperties({}, m_store));
    EXPECT_NO_THROW(base::FolderLock(m_folder.path()));
}

TEST_F(basUtilTest, NameThatXmlCannotHoldIsReportedBeforeTheStoreIsTouched) {
    write_file(m_path, fixture("isprops_default.xml"));
    clsISModelProperties props;
    add_set(props, "bell \a");
    EXPECT_FALSE(PutISModelProperties(props, m_store));
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t5\r\n"));
    EXPECT_EQ(read_file(m_path), fixture("isprops_default.xml"));
}

TEST_F(basUtilTest, StoreOfAnyNameSavesBesideItsCopy) {
    const CoefficientStore store = CoefficientStore::at(m_folder / "town.xml");
    EXPECT_TRUE(PutISModelProperties({}, store));
    EXPECT_TRUE(PutISModelProperties({}, store));
    EXPECT_EQ(read_file(m_folder / "town.xml"), fixture("isprops_no_sets.xml"));
    EXPECT_EQ(read_file(m_folder / "town.xml.bak"), fixture("isprops_no_sets.xml"));
}

TEST(set_names, AreThoseOfAllSetsInOrder) {
    clsISModelProperties props;
    for (const char* name : {"Zoo", "Alpha", "Zoo", ""})
        add_set(props, name);
    EXPECT_THAT(basUtil::set_names(props), ElementsAre("Zoo", "Alpha", "Zoo", ""));
}

}  // namespace
}  // namespace kestrel
