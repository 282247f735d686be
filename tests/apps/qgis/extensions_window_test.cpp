// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/extensions_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qgssettings.h>

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QTest>

#include "extension/clsExtension.h"
#include "hosting/raster_analysis.h"
#include "tests/support/test_files.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

/// The two extensions of the desktop, in settings that are empty at first.
class ExtensionsWindowTest : public testing::Test {
  protected:
    ExtensionsWindowTest() {
        QgsSettings().remove("Kestrel");
        list.add(contracts::kKestrelExtension, kestrel);
        list.add(contracts::kRasterAnalysisExtension, raster);
    }
    ~ExtensionsWindowTest() override { QgsSettings().remove("Kestrel"); }

    std::vector<std::int32_t> states() { return {kestrel.IExtensionConfig_State(), raster.IExtensionConfig_State()}; }

    TemporaryFolder folder;
    clsExtension kestrel{folder.path()};
    hosting::RasterAnalysis raster;
    qgis::ExtensionList list;
};

TEST_F(ExtensionsWindowTest, BothAreOnAtFirst) {
    EXPECT_THAT(states(), ElementsAre(contracts::kExtensionEnabled, contracts::kExtensionEnabled));
}

TEST_F(ExtensionsWindowTest, StatesAreKeptForTheNextStart) {
    qgis::ExtensionList::switch_on(list.entries()[1], false);
    EXPECT_THAT(states(), ElementsAre(contracts::kExtensionEnabled, contracts::kExtensionDisabled));
    hosting::RasterAnalysis of_next_start;
    clsExtension other(folder.path());
    qgis::ExtensionList next;
    next.add(contracts::kKestrelExtension, other);
    next.add(contracts::kRasterAnalysisExtension, of_next_start);
    EXPECT_EQ(other.IExtensionConfig_State(), contracts::kExtensionEnabled);
    EXPECT_EQ(of_next_start.IExtensionConfig_State(), contracts::kExtensionDisabled);
}

TEST_F(ExtensionsWindowTest, ListsProductsWithTheirStatesAndDescribesTheChosenOne) {
    raster.IExtensionConfig_State(contracts::kExtensionDisabled);
    qgis::ExtensionsWindow window(list);
    window.show();
    auto& rows = *window.findChild<QListWidget*>("kestrelExtensionList");
    ASSERT_EQ(rows.count(), 2);
    EXPECT_EQ(rows.item(0)->text(), "Kestrel Tools");
    EXPECT_EQ(rows.item(0)->checkState(), Qt::Checked);
    EXPECT_EQ(rows.item(1)->text(), "Raster analysis");
    EXPECT_EQ(rows.item(1)->checkState(), Qt::Unchecked);
    const auto& description = *window.findChild<QLabel*>("kestrelExtensionDescription");
    EXPECT_EQ(description.text(), "Extension for estimating area of imperviousness based on land cover.");
    rows.setCurrentRow(1);
    EXPECT_EQ(description.text(), "Counts the cells of rasters in polygons.");
}

TEST_F(ExtensionsWindowTest, SpaceSwitchesAtOnceAndIsTold) {
    qgis::ExtensionsWindow window(list);
    int told = 0;
    QObject::connect(&window, &qgis::ExtensionsWindow::states_changed, [&told] { ++told; });
    window.show();
    EXPECT_EQ(told, 0) << "showing changes nothing";
    auto& rows = *window.findChild<QListWidget*>("kestrelExtensionList");
    QTest::keyClick(&rows, Qt::Key_Space);
    EXPECT_EQ(told, 1);
    EXPECT_THAT(states(), ElementsAre(contracts::kExtensionDisabled, contracts::kExtensionEnabled));
    QTest::keyClick(&rows, Qt::Key_Space);
    EXPECT_THAT(states(), ElementsAre(contracts::kExtensionEnabled, contracts::kExtensionEnabled));
}

TEST_F(ExtensionsWindowTest, OpenedAgainShowsTheStatesAsTheyAreNow) {
    qgis::ExtensionsWindow window(list);
    window.show();
    window.close();
    qgis::ExtensionList::switch_on(list.entries()[0], false);
    window.show();
    EXPECT_EQ(window.findChild<QListWidget*>("kestrelExtensionList")->item(0)->checkState(), Qt::Unchecked);
}

TEST_F(ExtensionsWindowTest, EscapeCloses) {
    qgis::ExtensionsWindow window(list);
    window.show();
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace kestrel::test
