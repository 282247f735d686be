// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/frmISPDensity.h"

#include <QApplication>
#include <QLabel>

#include "base/files.h"
#include "tests/forms/analysis/params_fixture.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kNumericNeeded = "Numeric value must be entered in field.";

class DensityTest : public ParamsTest {
  protected:
    void SetUp() override { open(); }

    static QLineEdit& box(QDialog& dialog, const char* name) { return *dialog.findChild<QLineEdit*>(name); }
    static QComboBox& list_of(QDialog& dialog, const char* name) { return *dialog.findChild<QComboBox*>(name); }
    static void press(QDialog& dialog, const char* name) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(name), Qt::LeftButton);
    }
    static void type(QDialog& dialog, const char* name, const char* text) {
        box(dialog, name).selectAll();
        QTest::keyClicks(&box(dialog, name), text);
    }
    static std::vector<std::string> texts(QComboBox& list) {
        std::vector<std::string> texts;
        for (int i = 0; i < list.count(); ++i)
            texts.push_back(list.itemText(i).toStdString());
        return texts;
    }
    /// Opens the dialog by a click on "Calculate".
    void in_density(std::function<void(QDialog&)> act) {
        bool opened = false;
        in_dialog([&](QDialog& dialog) {
            opened = true;
            act(dialog);
        });
        choose_option(3);
        EXPECT_TRUE(opened);
        m_form->activateWindow();
    }
};

TEST_F(DensityTest, OpensModallyWithTheFirstLayerAndFieldChosen) {
    in_density([this](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Population Density Calculation");
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.parentWidget(), m_form.get());
        EXPECT_THAT(texts(list_of(dialog, "cboPDenTheme")), ElementsAre("sheds", "blocks", "plan"));
        EXPECT_EQ(list_of(dialog, "cboPDenTheme").currentText(), "sheds");
        EXPECT_THAT(texts(list_of(dialog, "cboPDenFld")), ElementsAre("ID", "RATE"));
        EXPECT_EQ(list_of(dialog, "cboPDenFld").currentIndex(), 0);
    });
    EXPECT_TRUE(option(3).isChecked());
}

TEST_F(DensityTest, CaptionsAreTheGivenOnes) {
    in_density([](QDialog& dialog) {
        std::vector<std::string> captions;
        for (int i = 0; i < 5; ++i)
            captions.push_back(
                dialog.findChild<QLabel*>(QString("Label1(%1)").arg(i))->text().remove('&').toStdString());
        EXPECT_THAT(captions, ElementsAre("Pop. Density Layer", "Definition Field", "High", "Medium", "Low"));
        std::vector<std::string> relations;
        for (int i = 0; i < 4; ++i)
            relations.push_back(dialog.findChild<QLabel*>(QString("Label2(%1)").arg(i))->text().toStdString());
        EXPECT_THAT(relations, ElementsAre(">=", "<=", "between", "AND"));
        EXPECT_EQ(dialog.findChild<QPushButton*>("cmdOK")->text(), "OK");
        EXPECT_EQ(dialog.findChild<QPushButton*>("cmdCancel")->text(), "Cancel");
    });
}

TEST_F(DensityTest, ChoosingALayerListsItsNumericFieldsAndChoosesTheFirst) {
    in_density([](QDialog& dialog) {
        QTest::keyClick(&list_of(dialog, "cboPDenTheme"), Qt::Key_Down);
        EXPECT_EQ(list_of(dialog, "cboPDenTheme").currentText(), "blocks");
        EXPECT_THAT(texts(list_of(dialog, "cboPDenFld")), ElementsAre("ID", "DENSITY"));
        EXPECT_EQ(list_of(dialog, "cboPDenFld").currentText(), "ID");
    });
}

TEST_F(DensityTest, TheMediumRowMirrorsTheBoundsAtOnce) {
    in_density([](QDialog& dialog) {
        type(dialog, "txtLow", "2");
        EXPECT_EQ(box(dialog, "txtMed(0)").text(), "2");
        EXPECT_EQ(box(dialog, "txtMed(1)").text(), "");
        type(dialog, "txtHigh", "10");
        EXPECT_EQ(box(dialog, "txtMed(1)").text(), "10");
        QTest::keyClicks(&box(dialog, "txtMed(0)"), "7");
        EXPECT_EQ(box(dialog, "txtMed(0)").text(), "2") << "nothing is typed into the mirrors";
    });
}

TEST_F(DensityTest, OkRefusesUntilBothBoundsAreNumbersInOrder) {
    in_density([this](QDialog& dialog) {
        const auto refuses = [&](const char* text, const char* focus) {
            boxes().clear();
            press(dialog, "cmdOK");
            EXPECT_THAT(boxes(), ElementsAre(warning(text)));
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(dialog.focusWidget()->objectName().toStdString(), focus);
        };
        refuses(kNumericNeeded, "txtHigh");
        type(dialog, "txtHigh", "1e3");
        refuses(kNumericNeeded, "txtLow");
        type(dialog, "txtLow", "1001");
        refuses("Population density \"Low\" value must be less than the \"High\" value.", "txtLow");
        type(dialog, "txtLow", "1000");
        boxes().clear();
        press(dialog, "cmdOK");
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_THAT(boxes(), IsEmpty());
    });
}

TEST_F(DensityTest, AMissingFieldIsRefusedBeforeTheBounds) {
    m_world.layer("names", {text_field("NAME")}, {});
    in_density([this](QDialog& dialog) {
        EXPECT_THAT(texts(list_of(dialog, "cboPDenTheme")), testing::Not(testing::Contains("names")));
        list_of(dialog, "cboPDenFld").setCurrentIndex(-1);
        press(dialog, "cmdOK");
        list_of(dialog, "cboPDenTheme").setCurrentIndex(-1);
        press(dialog, "cmdOK");
        EXPECT_THAT(boxes(),
                    ElementsAre(warning("No Populaiton Density field selected, please select from dropdown list."),
                                warning("No Population Density theme selected, please select from dropdown list.")));
    });
}

TEST_F(DensityTest, AnOverflowIsReportedAndTheDialogStays) {
    in_density([](QDialog& dialog) {
        type(dialog, "txtHigh", "1e999");
        type(dialog, "txtLow", "1");
        press(dialog, "cmdOK");
        EXPECT_TRUE(dialog.isVisible());
    });
    ASSERT_THAT(m_world.said.call_stacks, SizeIs(1));
    EXPECT_THAT(m_world.said.call_stacks[0], testing::HasSubstr("\tValidatePDenForm basISModelUtil Line :"));
}

TEST_F(DensityTest, WhatWasAcceptedStaysUntilItIsCancelled) {
    const auto fill_in = [](QDialog& dialog) {
        type(dialog, "txtHigh", "10");
        type(dialog, "txtLow", "2");
        QTest::keyClick(&list_of(dialog, "cboPDenTheme"), Qt::Key_Down);
        QTest::keyClick(&list_of(dialog, "cboPDenFld"), Qt::Key_Down);
        press(dialog, "cmdOK");
    };
    in_density(fill_in);
    m_world.layer("wells", {integer_field("ID")}, {});
    in_density([](QDialog& dialog) {
        EXPECT_EQ(box(dialog, "txtHigh").text(), "10");
        EXPECT_EQ(list_of(dialog, "cboPDenTheme").currentText(), "blocks");
        EXPECT_EQ(list_of(dialog, "cboPDenFld").currentText(), "DENSITY");
        EXPECT_THAT(texts(list_of(dialog, "cboPDenTheme")), ElementsAre("sheds", "blocks", "plan", "wells"));
        press(dialog, "cmdCancel");
        EXPECT_FALSE(dialog.isVisible());
    });
    in_density([](QDialog& dialog) {
        EXPECT_EQ(box(dialog, "txtHigh").text(), "") << "Cancel unloads the dialog";
        EXPECT_EQ(list_of(dialog, "cboPDenTheme").currentText(), "sheds");
    });
}

TEST_F(DensityTest, EscCancels) {
    in_density([](QDialog& dialog) {
        type(dialog, "txtHigh", "10");
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    in_density([](QDialog& dialog) { EXPECT_EQ(box(dialog, "txtHigh").text(), ""); });
}

TEST_F(DensityTest, TheKeyboardOpensTheDialogOnceAndAgain) {
    int opened = 0;
    const auto expect_dialog = [&] { in_dialog([&](QDialog&) { ++opened; }); };
    choose_option(2);
    expect_dialog();
    QTest::keyClick(&option(2), Qt::Key_Right);
    EXPECT_TRUE(option(3).isChecked());
    EXPECT_EQ(opened, 1);
    m_form->activateWindow();
    expect_dialog();
    QTest::keyClick(&option(3), Qt::Key_Space);
    EXPECT_EQ(opened, 2);
    m_form->activateWindow();
    expect_dialog();
    choose_option(3);
    EXPECT_EQ(opened, 3) << "chosen already, it opens again";
}

TEST_F(DensityTest, TheOtherOptionsOpenNothing) {
    for (int i = 0; i < 3; ++i) {
        choose_option(i);
        EXPECT_TRUE(option(i).isChecked());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
}

TEST_F(DensityTest, ARunWithoutTheDialogLoadsItAndMissesTheBounds) {
    choose("cboAnalysisUnit", "NAME");
    in_density([](QDialog& dialog) { press(dialog, "cmdCancel"); });
    type_output(out("is"));
    click("cmdISRun");
    EXPECT_THAT(boxes(), ElementsAre(warning(kNumericNeeded)));
    EXPECT_EQ(focused(), "optPopDensity(3)");
    EXPECT_THAT(m_host.results, IsEmpty());
}

TEST_F(DensityTest, TheParameterFileTakesTheDialogsValues) {
    in_density([](QDialog& dialog) {
        QTest::keyClick(&list_of(dialog, "cboPDenTheme"), Qt::Key_Down);
        QTest::keyClick(&list_of(dialog, "cboPDenFld"), Qt::Key_Down);
        type(dialog, "txtHigh", "1e1");
        type(dialog, "txtLow", " 2");
        press(dialog, "cmdOK");
    });
    choose("cboAnalysisUnit", "NAME");
    std::string file;
    m_host.run_progress.act = [&] { file = parameter_file(); };
    type_output(out("is"));
    click("cmdISRun");
    EXPECT_THAT(file,
                testing::HasSubstr("POPDENSITY#3\r\nPOPDENSITYTHEME#blocks\r\nPOPDENSITYFLD#DENSITY\r\n"
                                   "POPDENSITYHIGH#1e1\r\nPOPDENSITYMED# 2#1e1\r\nPOPDENSITYLOW# 2\r\nOUTTHEME#"));
    ASSERT_THAT(m_host.results, SizeIs(1));
    EXPECT_TRUE(m_host.results[0].finished);
}

}  // namespace
}  // namespace kestrel::test
