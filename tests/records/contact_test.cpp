// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/contact.h"

#include <gtest/gtest.h>

#include <array>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

class ReadContact : public testing::Test {
  protected:
    ReadContact() { base::create_folder(m_extension / "etc"); }

    Contact contact_of(const std::string& text) const {
        base::write_file(m_extension / "etc/contact.ini", text);
        return read_contact(m_extension.path());
    }

    static std::array<std::string, 10> values_of(const Contact& contact) {
        return {contact.street_address, contact.city, contact.state,  contact.postal_code, contact.country,
                contact.telephone,      contact.fax,  contact.e_mail, contact.hours,       contact.web_page};
    }

    static std::array<std::string, 10> placeholders() {
        std::array<std::string, 10> values;
        values.fill("<enter value>");
        return values;
    }

    test::TemporaryFolder m_extension;
};

TEST_F(ReadContact, EveryKeyIsRead) {
    const Contact contact = contact_of(
        "street_address = 12 Harbour Road\r\ncity = Marlin\r\nstate = Oregon\r\npostal_code = 97000\r\n"
        "country = USA\r\ntelephone = +1 555 0100\r\nfax = +1 555 0101\r\ne_mail = gis@example.org\r\n"
        "hours = Monday to Friday, 8 to 16\r\nweb_page = https://www.example.org/kestrel\r\n");
    const std::array<std::string, 10> expected{"12 Harbour Road",
                                               "Marlin",
                                               "Oregon",
                                               "97000",
                                               "USA",
                                               "+1 555 0100",
                                               "+1 555 0101",
                                               "gis@example.org",
                                               "Monday to Friday, 8 to 16",
                                               "https://www.example.org/kestrel"};
    EXPECT_EQ(values_of(contact), expected);
}

TEST_F(ReadContact, MissingFileLeavesEveryValueToBeEntered) {
    EXPECT_EQ(values_of(read_contact(m_extension.path())), placeholders());
}

TEST_F(ReadContact, MissingExtensionFolderLeavesEveryValueToBeEntered) {
    EXPECT_EQ(values_of(read_contact(m_extension / "missing")), placeholders());
}

TEST_F(ReadContact, ShippedFileLeavesEveryValueToBeEntered) {
    EXPECT_EQ(values_of(read_contact(KESTREL_SOURCE_DIR)), placeholders());
}

TEST_F(ReadContact, ShippedFileNamesEveryKey) {
    std::vector<std::string> keys;
    for (const std::string& line : base::split_lines(base::read_file(KESTREL_SOURCE_DIR "/etc/contact.ini"))) {
        if (line.ends_with(" =")) {
            keys.push_back(line.substr(0, line.size() - 2));
        }
    }
    const std::vector<std::string> expected{"street_address", "city", "state",  "postal_code", "country",
                                            "telephone",      "fax",  "e_mail", "hours",       "web_page"};
    EXPECT_EQ(keys, expected);
}

TEST_F(ReadContact, MissingAndEmptyValuesAreLeftToBeEntered) {
    const Contact contact = contact_of("city = Marlin\nstate =\ncountry =   \n");
    EXPECT_EQ(contact.city, "Marlin");
    EXPECT_EQ(contact.state, "<enter value>");
    EXPECT_EQ(contact.country, "<enter value>");
    EXPECT_EQ(contact.fax, "<enter value>");
}

TEST_F(ReadContact, CommentsAndLinesWithoutAnEqualsSignArePassedOver) {
    const Contact contact = contact_of("# city = a\n; city = b\n  # city = c\ncity\n[contact]\n\nstate = Oregon");
    EXPECT_EQ(contact.city, "<enter value>");
    EXPECT_EQ(contact.state, "Oregon");
}

TEST_F(ReadContact, BlanksAroundKeyAndValueDoNotCount) {
    EXPECT_EQ(contact_of(" \tcity\t=  New   Marlin \t\n").city, "New   Marlin");
}

TEST_F(ReadContact, OnlyTheFirstEqualsSignSeparates) {
    EXPECT_EQ(contact_of("web_page=https://example.org/?a=b#c").web_page, "https://example.org/?a=b#c");
}

TEST_F(ReadContact, UnknownKeysArePassedOverAndKeysAreCaseSensitive) {
    EXPECT_EQ(values_of(contact_of("mayor = Smith\nCity = Marlin\n = x\n")), placeholders());
}

TEST_F(ReadContact, LastLineOfARepeatedKeyCounts) {
    EXPECT_EQ(contact_of("city = a\ncity = b\n").city, "b");
    EXPECT_EQ(contact_of("city = a\ncity =\n").city, "<enter value>");
}

TEST_F(ReadContact, BytesThatAreNoUtf8AreReadAsWindows1252) {
    EXPECT_EQ(contact_of("city = M\xE4rlin\n").city, "Märlin");
    EXPECT_EQ(contact_of("\xEF\xBB\xBF"
                         "city = Märlin\n")
                  .city,
              "Märlin");
}

}  // namespace
}  // namespace kestrel
