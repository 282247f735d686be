// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/help/frmISAbout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

#include "base/files.h"
#include "forms/help/about_texts.h"
#include "tests/support/failing_event.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class frmISAboutTest : public testing::Test {
  protected:
    std::string text(const char* name) { return m_form.findChild<QLabel*>(name)->text().toStdString(); }
    void contact(const std::string& lines) {
        base::create_folder(m_folder / "etc");
        base::write_file(m_folder / "etc/contact.ini", lines);
    }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_said;
    frmISAbout m_form{m_folder.path()};
};

TEST_F(frmISAboutTest, VersionIsThreePlainIntegers) {
    m_form.show();
    EXPECT_TRUE(QRegularExpression("^Version (0|[1-9][0-9]*)\\.(0|[1-9][0-9]*)\\.(0|[1-9][0-9]*)$")
                    .match(m_form.findChild<QLabel*>("lblVersion")->text())
                    .hasMatch())
        << text("lblVersion");
    EXPECT_EQ(text("lblVersion"), "Version " KESTREL_VERSION);
    EXPECT_EQ(about_texts::version(8, 0, 12), "Version 8.0.12");
    EXPECT_EQ(about_texts::version(1234, 0, 1000000), "Version 1234.0.1000000");
}

TEST_F(frmISAboutTest, DescriptionBeginsWithItsFixedParagraphAndNamesTheDeveloper) {
    m_form.show();
    EXPECT_THAT(
        text("lblDescription"),
        StartsWith(
            "The Kestrel uses a land cover grid to estimate the impervious surface area for polygon features within a shapefile based on coefficients of imperviousness for each land cover type.\n\n"));
    EXPECT_THAT(
        text("lblDescription"),
        EndsWith(
            "It was developed by the Marlin Institute in partnership with a programme that educates municipal officials about land use."));
}

TEST_F(frmISAboutTest, DisclaimerEndsWithTheConfiguredAddress) {
    contact("e_mail = kestrel@marlin.example\n");
    m_form.show();
    EXPECT_THAT(text("lblDisclaimer"),
                EndsWith("\n\nQuestions or comments? Write to the Marlin Institute: kestrel@marlin.example"));
    EXPECT_THAT(text("lblDisclaimer"), HasSubstr("without warranty of any kind"));
}

TEST_F(frmISAboutTest, AddressThatIsNotConfiguredIsToBeEntered) {
    m_form.show();
    EXPECT_THAT(text("lblDisclaimer"),
                EndsWith("\n\nQuestions or comments? Write to the Marlin Institute: <enter value>"));
    // As text, not as markup.
    EXPECT_EQ(m_form.findChild<QLabel*>("lblDisclaimer")->textFormat(), Qt::PlainText);
}

TEST_F(frmISAboutTest, OpenedAgainShowsTheAddressOfNow) {
    m_form.show();
    m_form.close();
    contact("e_mail = new@marlin.example\n");
    m_form.show();
    EXPECT_THAT(text("lblDisclaimer"), EndsWith("new@marlin.example"));
}

TEST_F(frmISAboutTest, ContactThatCannotBeReadIsReported) {
    contact("e_mail = kestrel@marlin.example\n");
    base::remove_file(m_folder / "etc/contact.ini");
    ASSERT_EQ(::symlink("/proc/self/mem", (m_folder / "etc/contact.ini").c_str()), 0);  // there, but not to be read
    m_form.show();
    ASSERT_EQ(m_said.call_stacks.size(), 1U);
    EXPECT_THAT(m_said.call_stacks[0], HasSubstr("\tForm_Load frmISAbout Line : "));
    EXPECT_EQ(text("lblVersion"), "Version " KESTREL_VERSION);
}

TEST_F(frmISAboutTest, OkEscAndEnterCloseIt) {
    const auto expect_closed_by = [this](const auto& act) {
        m_form.show();
        m_form.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_form));
        act();
        EXPECT_FALSE(m_form.isVisible());
    };
    expect_closed_by([this] { QTest::mouseClick(m_form.findChild<QPushButton*>("cmdOK"), Qt::LeftButton); });
    expect_closed_by([this] { QTest::keyClick(&m_form, Qt::Key_Escape); });
    expect_closed_by([this] { QTest::keyClick(&m_form, Qt::Key_Return); });
    EXPECT_THAT(m_said.call_stacks, IsEmpty());
}

TEST_F(frmISAboutTest, FailingOkIsReported) {
    m_form.show();
    const test::FailingEvent failing(m_form, QEvent::Hide);
    m_form.findChild<QPushButton*>("cmdOK")->click();
    EXPECT_THAT(m_said.call_stacks,
                ElementsAre("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
                            "\tcmdOK_Click frmISAbout Line : 45\r\n"
                            "\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n"));
}

TEST_F(frmISAboutTest, NothingIsCutOff) {
    contact("e_mail = " + std::string(40, 'm') + "@" + std::string(40, 'm') + ".example\n");
    m_form.show();
    for (const QLabel* const label : m_form.findChildren<QLabel*>()) {
        EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->objectName().toStdString();
        EXPECT_TRUE(m_form.rect().contains(label->geometry())) << label->objectName().toStdString();
    }
}

}  // namespace
}  // namespace kestrel
