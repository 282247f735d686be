// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>

#include "forms/analysis/frmISParams.h"
#include "forms/analysis/name_list.h"
#include "tests/forms/analysis/params_fixture.h"

/// \file
/// How the form looks, whatever font the desktop has and however much stands in it.
namespace kestrel::test {
namespace {

/// The window is closed before the style goes that it was made for.
class LayoutTest : public ParamsTest {
  protected:
    ~LayoutTest() override {
        m_form.reset();
        qApp->setStyleSheet({});
        QApplication::setFont(m_font);
    }
    /// As desktops do it that let their user choose a font.
    static void use_big_sheet(int points = 18) { qApp->setStyleSheet(QString("* { font-size: %1pt }").arg(points)); }
    void use_big_font(int points = 18) {
        QFont big = m_font;
        big.setPointSize(points);
        QApplication::setFont(big);
    }
    void add(int rows) {
        for (int i = 0; i < rows; ++i)
            click("cmdDSAdd");
    }
    void expect_nothing_cut() {
        m_form->resize(m_form->minimumSizeHint());
        QApplication::processEvents();
        for (const QWidget* shown : m_form->findChildren<QWidget*>()) {
            if (!shown->isVisible()) continue;
            if (qobject_cast<const QLabel*>(shown) != nullptr ||
                qobject_cast<const QAbstractButton*>(shown) != nullptr) {
                EXPECT_GE(shown->width(), shown->sizeHint().width()) << shown->objectName().toStdString();
                EXPECT_GE(shown->height(), shown->minimumSizeHint().height()) << shown->objectName().toStdString();
            }
        }
        if (list("cboDSToClass(0)").isVisible()) {
            EXPECT_LE(list("cboDSToClass(0)").geometry().right(), control<QFrame>("fraDSItems").width());
        }
    }
    /// The smallest laptop's, less a title bar and a panel.
    void expect_room_on_a_small_screen() {
        EXPECT_LE(m_form->width(), 1366);
        EXPECT_LE(m_form->height(), 768 - 60);
    }
    void expect_one_column_of_captions() {
        const int left = list("cboLCTheme").mapTo(m_form.get(), QPoint()).x();
        for (const char* name :
             {"cboLCUnits", "cboAnalysisTheme", "cboAnalysisUnit", "cboLCType", "txtOutputTheme", "txtThemeName"}) {
            EXPECT_EQ(control<QWidget>(name).mapTo(m_form.get(), QPoint()).x(), left) << name;
        }
    }
    void expect_equal_pitch() {
        const auto top = [this](int row) { return list(qPrintable(QString("cboDSTheme(%1)").arg(row))).y(); };
        EXPECT_GE(top(1) - top(0), list("cboDSTheme(0)").height());
        EXPECT_EQ(top(2) - top(1), top(1) - top(0));
    }
    void expect_good_looks() {
        expect_nothing_cut();
        expect_one_column_of_captions();
        expect_equal_pitch();
    }

  private:
    QFont m_font = QApplication::font();
};

TEST_F(LayoutTest, NothingIsCutOffWithoutRows) {
    open();
    expect_nothing_cut();
    expect_one_column_of_captions();
}

TEST_F(LayoutTest, NothingIsCutOffWithThreeRows) {
    open();
    add(3);
    expect_good_looks();
}

TEST_F(LayoutTest, NothingIsCutOffWithTwelveRowsAndTheWindowKeepsItsSize) {
    open();
    const QSize before = m_form->size();
    add(12);
    EXPECT_EQ(m_form->size(), before);
    expect_good_looks();
}

TEST_F(LayoutTest, NothingIsCutOffInABigFont) {
    use_big_font();
    open();
    add(3);
    expect_good_looks();
}

TEST_F(LayoutTest, NothingIsCutOffInTheBigFontOfAStyleSheet) {
    use_big_sheet();
    open();
    add(3);
    expect_good_looks();
}

TEST_F(LayoutTest, NothingIsCutOffWhenTheFontGrowsWhileTheFormIsOpen) {
    open();
    add(3);
    use_big_font();
    QApplication::processEvents();
    expect_good_looks();
}

TEST_F(LayoutTest, NothingIsCutOffWhenTheStyleChangesWhileTheFormIsOpen) {
    open();
    add(3);
    use_big_sheet();
    QApplication::processEvents();
    expect_good_looks();
}

TEST_F(LayoutTest, ASmallScreenHasRoomForItInABigFont) {
    use_big_font(14);
    open();
    add(3);
    expect_room_on_a_small_screen();
}

TEST_F(LayoutTest, ASmallScreenHasRoomForItInTheBigFontOfAStyleSheet) {
    use_big_sheet(14);
    open();
    add(3);
    expect_room_on_a_small_screen();
}

TEST_F(LayoutTest, TheDensityDialogHasRoomForItsNumbersInABigFont) {
    use_big_sheet();
    open();
    in_dialog([](QDialog& dialog) {
        for (const char* name : {"txtHigh", "txtLow", "txtMed(0)", "txtMed(1)"}) {
            const auto& box = *dialog.findChild<QLineEdit*>(name);
            EXPECT_GE(box.width(), box.fontMetrics().horizontalAdvance("1234567.89")) << name;
        }
    });
    choose_option(3);
}

TEST_F(LayoutTest, ALongNameIsCutWithDotsAndShownWholeInTheTip) {
    const std::string name = "sheds of the upper valley, as surveyed in 2019 and revised twice since then";
    m_world.layer("west", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
    map().append_layer(std::make_shared<hosting::HeadlessFeatureLayer>(
        name, data::FeatureSource{.path = m_world.folder / "west.shp"}));
    open();
    const QSize before = m_form->size();
    add(1);
    choose("cboDSTheme(0)", name);
    EXPECT_EQ(m_form->size(), before);
    auto& shown = dynamic_cast<NameList&>(list("cboDSTheme(0)"));
    EXPECT_TRUE(shown.shown_text().endsWith(QChar(0x2026))) << shown.shown_text().toStdString();
    QHelpEvent asked(QEvent::ToolTip, QPoint(5, 5), shown.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&shown, &asked);
    EXPECT_EQ(QToolTip::text().toStdString(), name + "\nThe layer whose polygons change");
    choose("cboDSTheme(0)", "plan");
    EXPECT_EQ(shown.shown_text(), "plan");
    QToolTip::hideText();
}

}  // namespace
}  // namespace kestrel::test
