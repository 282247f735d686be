// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The error with which `text` is refused; number 0 when it is accepted.
base::RuntimeError refusal(std::string_view text) {
    try {
        XmlDocument::parse(text);
    } catch (const base::RuntimeError& error) {
        return error;
    }
    return {0, "accepted", "", 0};
}

std::string root_text(std::string_view text) {
    return XmlDocument::parse(text).root().text();
}

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>";
    for (int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

TEST(XmlElement, ElementWithoutContentIsWrittenSelfClosed) {
    XmlElement root = XmlDocument::with_root("Root").root();
    EXPECT_EQ(root.xml(), "<Root/>");
    root.append("Empty");
    root.append("NoText", "");
    EXPECT_EQ(root.xml(), "<Root><Empty/><NoText/></Root>");
}

TEST(XmlElement, ChildrenAttributesAndTextsAreWrittenInTheOrderOfBuilding) {
    XmlElement root = XmlDocument::with_root("Root").root();
    XmlElement item = root.append("Item");
    item.set_attribute("ID", "21");
    item.append("Name", "Town");
    item.append("High", "12.5");
    EXPECT_EQ(root.xml(), R"(<Root><Item ID="21"><Name>Town</Name><High>12.5</High></Item></Root>)");
}

TEST(XmlElement, AttributeSetTwiceHoldsTheLaterValue) {
    XmlElement root = XmlDocument::with_root("Root").root();
    root.set_attribute("ID", "1");
    root.set_attribute("ID", "2");
    EXPECT_EQ(root.xml(), R"(<Root ID="2"/>)");
}

TEST(XmlElement, MarkupInTextAndAttributesIsEscapedAndReadsBack) {
    XmlElement root = XmlDocument::with_root("Root").root();
    root.set_attribute("ID", R"(<"&'>)");
    root.append("Name", R"(a < b > c & "d" 'e' </Name>)");
    const XmlElement reread = XmlDocument::parse(root.xml()).root();
    EXPECT_EQ(reread.node_text("Name"), R"(a < b > c & "d" 'e' </Name>)");
    EXPECT_EQ(reread.node_text("@ID"), R"(<"&'>)");
    EXPECT_EQ(root.xml().find("</Name>"), root.xml().rfind("</Name>"));
    EXPECT_THAT(root.xml(), HasSubstr("&gt;"));
}

TEST(XmlElement, ControlCharactersAndInvalidTextAreNotTaken) {
    XmlElement root = XmlDocument::with_root("Root").root();
    for (const char* text : {"bell \a", "\x01", "latin \xE9"}) {
        try {
            root.append("Name", text);
            ADD_FAILURE() << text;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), 5);
        }
        EXPECT_THROW(root.set_attribute("ID", text), base::RuntimeError);
    }
    EXPECT_EQ(root.xml(), "<Root/>");
}

TEST(XmlElement, LeadingByteOrderMarkIsACharacterOfTheText) {
    XmlElement root = XmlDocument::with_root("Root").root();
    root.append("Name", "\uFEFFTown");
    root.set_attribute("ID", "\uFEFF21");
    const XmlElement reread = XmlDocument::parse(root.xml()).root();
    EXPECT_EQ(reread.node_text("Name"), "\uFEFFTown");
    EXPECT_EQ(reread.node_text("@ID"), "\uFEFF21");
    EXPECT_THROW(root.append("Name", "\uFEFF latin \xE9"), base::RuntimeError);
}

TEST(XmlElement, NoElementReadsAsEmptyAndCannotBeBuiltUpon) {
    XmlElement none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.name(), "");
    EXPECT_EQ(none.text(), "");
    EXPECT_EQ(none.xml(), "");
    EXPECT_FALSE(none.child("a"));
    EXPECT_TRUE(none.children("a").empty());
    EXPECT_EQ(none.node_text("@a"), "");
    try {
        none.append("a");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 91);
    }
    EXPECT_THROW(none.set_attribute("a", "1"), base::RuntimeError);
}

TEST(XmlElement, KeepsItsDocumentAlive) {
    XmlElement child;
    {
        const XmlDocument document = XmlDocument::parse("<a><b>text</b></a>");
        child = document.root().child("b");
    }
    EXPECT_EQ(child.text(), "text");
}

TEST(XmlElement, TextIsReadWithoutSurroundingWhiteSpace) {
    EXPECT_EQ(root_text("<a>\r\n\t  two  words \r\n</a>"), "two  words");
    EXPECT_EQ(root_text("<a> \r\n </a>"), "");
    EXPECT_EQ(XmlDocument::parse("<a ID=' 21 '/>").root().node_text("@ID"), "21");
}

TEST(XmlElement, TextIsReadAcrossCommentsAndCharacterData) {
    EXPECT_EQ(root_text("<a>one<!-- no -->, two<![CDATA[ & <three>]]></a>"), "one, two & <three>");
}

TEST(XmlElement, NodeTextTakesTheFirstOfManyAndIsEmptyWithoutOne) {
    const XmlElement root = XmlDocument::parse("<a ID='7'><b>first</b><b>second</b></a>").root();
    EXPECT_EQ(root.node_text("b"), "first");
    EXPECT_EQ(root.node_text("@ID"), "7");
    EXPECT_EQ(root.node_text("c"), "");
    EXPECT_EQ(root.node_text("@c"), "");
}

TEST(XmlElement, ChildrenAreThoseOfTheNameInDocumentOrder) {
    const XmlElement root = XmlDocument::parse("<a><b>1</b><c/><b>2</b><d><b>3</b></d></a>").root();
    const std::vector<XmlElement> found = root.children("b");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].text(), "1");
    EXPECT_EQ(found[1].text(), "2");
}

TEST(XmlDocument, FlatTextHasNoDeclarationAndNoWhiteSpaceBetweenTags) {
    const XmlDocument document =
        XmlDocument::parse("<?xml version='1.0'?>\r\n<!-- x --><a>\r\n  <b> t </b>\r\n  <c/>\r\n</a>\r\n");
    EXPECT_EQ(document.xml(), "<a><b> t </b><c/></a>");
}

TEST(XmlDocument, MalformedTextIsRefusedWithItsPlace) {
    const base::RuntimeError error = refusal("<a>\n  <b>\n</a>");
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), StartsWith("line 3, column "));
}

TEST(XmlDocument, TextsThatAreNotWellFormedAreRefused) {
    for (const std::string_view text : {"",
                                        "   ",
                                        "words",
                                        "<a>",
                                        "<a></b>",
                                        "<a",
                                        "<a><b></a></b>",
                                        "<a/><b/>",
                                        "<a/>words",
                                        "words<a/>",
                                        "<a b></a>",
                                        "<a b=1/>",
                                        "<a b='1' c='2' b='3'/>",
                                        "<a b='<'/>",
                                        "<1a/>",
                                        "<a>&</a>",
                                        "<a>&amp</a>",
                                        "<a>& b;</a>",
                                        "<a>&#0;</a>",
                                        "<a>&#xD800;</a>",
                                        "<a>&#x110000;</a>",
                                        "<a>&#x;</a>",
                                        "<a>&#-5;</a>",
                                        "<a b='&nbsp;'/>",
                                        "<a>\x01</a>",
                                        "<?xml version='1.0'?>",
                                        "<!-- only -->",
                                        "<!DOCTYPE a>",
                                        "<a><![CDATA[x</a>"}) {
        EXPECT_EQ(refusal(text).number(), -2147467259) << text;
    }
    EXPECT_EQ(refusal(std::string_view("<a>\0</a>", 8)).number(), -2147467259);
    EXPECT_EQ(refusal(std::string_view("<a/>\0<b", 7)).number(), -2147467259);
}

TEST(XmlDocument, EveryTruncationOfADocumentIsRefused) {
    const std::string whole = "<?xml version=\"1.0\"?><a x=\"1\"><b>t&amp;u</b><!-- c --><c/></a>";
    ASSERT_EQ(refusal(whole).number(), 0);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(refusal(whole.substr(0, length)).number(), -2147467259) << whole.substr(0, length);
    }
}

TEST(XmlDocument, KnownReferencesAreResolved) {
    EXPECT_EQ(root_text("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#xE9;&#x1F33F;</a>"), "<>&\"'AB\u00e9\U0001F33F");
    EXPECT_EQ(root_text("<a>&amp;lt;</a>"), "&lt;");
    EXPECT_EQ(root_text("<a><![CDATA[&nbsp;]]></a>"), "&nbsp;");
}

TEST(XmlDocument, EntityExpansionIsRefused) {
    std::string text = "<!DOCTYPE a [<!ENTITY e0 \"ha\">";
    for (int i = 1; i < 30; ++i) {
        const std::string below = "&e" + std::to_string(i - 1) + ";";
        text += "<!ENTITY e" + std::to_string(i) + " \"" + below + below + "\">";
    }
    text += "]><a>&e29;</a>";
    EXPECT_EQ(refusal(text).number(), -2147467259);
    EXPECT_THAT(refusal(text).description(), HasSubstr("Reference to an entity or a character that is not known"));
}

TEST(XmlDocument, ExternalEntityIsNeverReadAndReferringToItIsRefused) {
    const test::TemporaryFolder folder;
    base::write_file(folder / "secret.txt", "secret");
    const std::string entity = "<!DOCTYPE a [<!ENTITY x SYSTEM \"file://" + (folder / "secret.txt") + "\">]>";
    EXPECT_EQ(refusal(entity + "<a>&x;</a>").number(), -2147467259);
    EXPECT_EQ(root_text(entity + "<a>plain</a>"), "plain");
    EXPECT_EQ(root_text("<!DOCTYPE a SYSTEM \"file:///dev/zero\"><a>plain</a>"), "plain");
}

TEST(XmlDocument, DepthIsBounded) {
    EXPECT_EQ(refusal(nested(256)).number(), 0);
    EXPECT_EQ(refusal(nested(257)).number(), -2147467259);
    EXPECT_THAT(refusal(nested(1000000)).description(), HasSubstr("Elements are nested too deeply"));
}

TEST(XmlDocument, SizeIsBounded) {
    constexpr std::size_t kLimit = 16 * 1024 * 1024;
    std::string text = "<a>" + std::string(kLimit - 7, 'x') + "</a>";
    EXPECT_EQ(refusal(text).number(), 0);
    text += " ";
    EXPECT_EQ(refusal(text).description(), "The document is larger than 16777216 bytes");
}

TEST(XmlDocument, Utf8IsReadWithAndWithoutMarkAndDeclaration) {
    EXPECT_EQ(root_text("<a>\u00e9\u20ac</a>"), "\u00e9\u20ac");
    EXPECT_EQ(root_text("\xEF\xBB\xBF<a>\u00e9</a>"), "\u00e9");
    EXPECT_EQ(root_text("<?xml version=\"1.0\" encoding=\"utf-8\"?><a>\u00e9</a>"), "\u00e9");
}

TEST(XmlDocument, Utf16IsReadWithAByteOrderMark) {
    const std::string little("\xFF\xFE<\0a\0>\0\xE9\0<\0/\0a\0>\0", 18);
    const std::string big("\xFE\xFF\0<\0a\0>\0\xE9\0<\0/\0a\0>", 18);
    EXPECT_EQ(root_text(little), "\u00e9");
    EXPECT_EQ(root_text(big), "\u00e9");
    EXPECT_EQ(refusal(little.substr(0, 17)).number(), -2147467259) << "half a character at the end";
}

TEST(XmlDocument, DeclaredEncodingIsFollowed) {
    EXPECT_EQ(root_text("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>"), "\u00c3\u00a9");
    EXPECT_EQ(root_text("<?xml version='1.0' encoding='windows-1252'?><a>\x80</a>"), "\u20ac");
}

TEST(XmlDocument, UndeclaredTextThatIsNotUtf8IsWindows1252) {
    EXPECT_EQ(root_text("<a>\xE9 \x80</a>"), "\u00e9 \u20ac");
}

TEST(XmlDocument, TextThatContradictsItsEncodingIsRefused) {
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>").description(),
              "The text is not valid in its encoding \"UTF-8\"");
    EXPECT_EQ(refusal("\xEF\xBB\xBF<a>\xE9</a>").number(), -2147467259);
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='UTF-16'?><a/>").number(), -2147467259);
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='no-such'?><a/>").description(),
              "The encoding \"no-such\" is not known");
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='UTF-8//IGNORE'?><a/>").description(),
              "The encoding \"UTF-8//IGNORE\" is not known");
}

TEST(XmlDocument, LoadReadsAFile) {
    const test::TemporaryFolder folder;
    base::write_file(folder / "a.xml", "<a>text</a>");
    EXPECT_EQ(XmlDocument::load(folder / "a.xml").root().text(), "text");
}

TEST(XmlDocument, LoadOfAMissingFileIsError53) {
    const test::TemporaryFolder folder;
    try {
        XmlDocument::load(folder / "none.xml");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 53);
        EXPECT_THAT(error.description(), HasSubstr(folder / "none.xml"));
    }
}

TEST(XmlDocument, LoadOfAMalformedFileNamesFileAndPlace) {
    const test::TemporaryFolder folder;
    base::write_file(folder / "a.xml", "<a>\r\n<b></a>");
    try {
        XmlDocument::load(folder / "a.xml");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), -2147467259);
        EXPECT_THAT(error.description(), StartsWith((folder / "a.xml") + ": line 2, column "));
    }
}

TEST(XmlDocument, LoadRefusesHugeFilesFoldersAndDevicesWithoutReadingThem) {
    const test::TemporaryFolder folder;
    base::write_file(folder / "huge.xml", "<a/>");
    ASSERT_EQ(::truncate((folder / "huge.xml").c_str(), off_t{1} << 40), 0);
    EXPECT_THROW(XmlDocument::load(folder / "huge.xml"), base::RuntimeError);
    EXPECT_THROW(XmlDocument::load(folder.path()), base::RuntimeError);
    EXPECT_THROW(XmlDocument::load("/dev/zero"), base::RuntimeError);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(XmlDocument::load(folder / "pipe"), base::RuntimeError);
}

}  // namespace
}  // namespace kestrel::data
