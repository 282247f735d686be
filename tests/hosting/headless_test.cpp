// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "hosting/headless_application.h"
#include "tests/support/error_of.h"

namespace kestrel::hosting {

namespace {

using ::testing::ElementsAre;

std::shared_ptr<contracts::Layer> layer(const std::string& name) {
    return std::make_shared<HeadlessRasterLayer>(name, "/data/" + name);
}

std::vector<std::string> names_of(const contracts::Map& map) {
    std::vector<std::string> names;
    for (const auto& each : map.layers()) {
        names.push_back(each->name());
    }
    return names;
}

/// Notes what it is told, and does something more when asked to.
class Listener final : public contracts::MapEvents {
  public:
    void layer_added() override { note("added"); }
    void layer_deleted() override { note("deleted"); }
    void layers_reordered() override { note("reordered"); }
    void document_opened() override { note("opened"); }

    std::vector<std::string> told;
    std::function<void()> then = [] {};

  private:
    void note(const char* event) {
        told.emplace_back(event);
        then();
    }
};

TEST(HeadlessMap, AddPutsALayerOnTopAndAppendBelow) {
    HeadlessMap map;
    map.append_layer(layer("land cover"));
    map.append_layer(layer("analysis"));
    map.add_layer(layer("output"));
    EXPECT_THAT(names_of(map), ElementsAre("output", "land cover", "analysis"));
}

TEST(HeadlessMap, LayersAreRemovedByIdentityAndNotByName) {
    HeadlessMap map;
    const auto first = layer("a");
    const auto second = layer("a");
    map.append_layer(first);
    map.append_layer(second);
    map.remove_layer(second);
    ASSERT_EQ(map.layers().size(), 1U);
    EXPECT_EQ(map.layers()[0], first);
}

TEST(HeadlessMap, LayersMoveBothWays) {
    HeadlessMap map;
    for (const char* name : {"a", "b", "c"}) {
        map.append_layer(layer(name));
    }
    map.move_layer(0, 2);
    EXPECT_THAT(names_of(map), ElementsAre("b", "c", "a"));
    map.move_layer(2, 1);
    EXPECT_THAT(names_of(map), ElementsAre("b", "a", "c"));
}

TEST(HeadlessMap, ListenersHearOfEveryChangeInOrder) {
    HeadlessMap map;
    Listener listener;
    map.add_listener(listener);
    const auto one = layer("a");
    map.add_layer(one);
    map.append_layer(layer("b"));
    map.move_layer(0, 1);
    map.remove_layer(one);
    map.open_document({layer("c")});
    EXPECT_THAT(listener.told, ElementsAre("added", "added", "reordered", "deleted", "opened"));
    EXPECT_THAT(names_of(map), ElementsAre("c"));
}

TEST(HeadlessMap, RemovingALayerThatIsNotThereTellsNobody) {
    HeadlessMap map;
    Listener listener;
    map.add_listener(listener);
    map.remove_layer(layer("a"));
    EXPECT_THAT(listener.told, ElementsAre());
}

TEST(HeadlessMap, AListenerThatLeftHearsNothing) {
    HeadlessMap map;
    Listener listener;
    map.add_listener(listener);
    map.remove_listener(listener);
    map.add_layer(layer("a"));
    EXPECT_THAT(listener.told, ElementsAre());
}

TEST(HeadlessMap, AListenerMayLeaveOrMakeAnotherLeaveWhileItIsTold) {
    HeadlessMap map;
    Listener first;
    Listener second;
    Listener third;
    for (Listener* listener : {&first, &second, &third}) {
        map.add_listener(*listener);
    }
    first.then = [&] {
        map.remove_listener(first);
        map.remove_listener(second);
    };
    map.add_layer(layer("a"));
    EXPECT_THAT(first.told, ElementsAre("added"));
    EXPECT_THAT(second.told, ElementsAre());
    EXPECT_THAT(third.told, ElementsAre("added"));
}

TEST(HeadlessMap, CountsRefreshesAndKeepsItsUnits) {
    HeadlessMap map;
    EXPECT_EQ(map.distance_units(), contracts::kUnknownUnits);
    map.set_distance_units(contracts::kFeet);
    map.refresh();
    map.refresh();
    EXPECT_EQ(map.distance_units(), 3);
    EXPECT_EQ(map.refresh_count(), 2);
}

TEST(HeadlessLayers, GroupsHoldTheirMembersInOrder) {
    const HeadlessGroupLayer group("group", {layer("a"), layer("b")});
    EXPECT_EQ(group.name(), "group");
    ASSERT_EQ(group.members().size(), 2U);
    EXPECT_EQ(group.members()[1]->name(), "b");
}

TEST(HeadlessLayers, FeatureLayersKeepSelectionAndRenderer) {
    HeadlessFeatureLayer features("zones", {.path = "zones.shp"}, {2, 5});
    EXPECT_EQ(features.name(), "zones");
    EXPECT_EQ(features.selection().count(), 2U);
    EXPECT_THAT(features.selection().ids(), ElementsAre(2, 5));
    EXPECT_FALSE(features.renderer().has_value());
    features.set_renderer({.field = "pctIS", .classes = {}});
    EXPECT_EQ(features.renderer()->field, "pctIS");
}

TEST(HeadlessLayers, ASourceThatIsMissingFailsWhenItIsRead) {
    const HeadlessFeatureLayer features("zones", {.path = "/nowhere/zones.shp"});
    EXPECT_EQ(test::error_of([&] { features.feature_class(); }).number(), 53);
}

TEST(HeadlessLayers, RasterLayersKnowTheirSource) {
    const HeadlessRasterLayer raster("land cover", "/data/lc.tif");
    EXPECT_EQ(raster.name(), "land cover");
    EXPECT_EQ(raster.source(), "/data/lc.tif");
}

class Config final : public contracts::IExtensionConfig {
  public:
    std::string IExtensionConfig_ProductName() const override { return "p"; }
    std::string IExtensionConfig_Description() const override { return "d"; }
    std::int32_t IExtensionConfig_State() override { return contracts::kExtensionEnabled; }
    void IExtensionConfig_State(std::int32_t) override {}
};

TEST(HeadlessApplication, FindsTheExtensionsThatWereRegistered) {
    base::NoProgress progress;
    HeadlessApplication application(progress);
    Config first;
    Config second;
    EXPECT_EQ(application.find_extension("esriCore.SAExtension.1"), nullptr);
    application.register_extension("esriCore.SAExtension.1", first);
    EXPECT_EQ(application.find_extension("esriCore.SAExtension.1"), &first);
    EXPECT_EQ(application.find_extension("esricore.saextension.1"), nullptr);
    application.register_extension("esriCore.SAExtension.1", second);
    EXPECT_EQ(application.find_extension("esriCore.SAExtension.1"), &second);
}

TEST(HeadlessApplication, ANewLayerHasItsNameAndIsNotInTheMapYet) {
    base::NoProgress progress;
    HeadlessApplication application(progress);
    EXPECT_EQ(application.make_feature_layer("/data/out.shp", "My output")->name(), "My output");
    EXPECT_TRUE(application.document().focus_map().layers().empty());
}

TEST(HeadlessApplication, KeepsTheResultOfTheLastRun) {
    base::NoProgress progress;
    HeadlessApplication application(progress);
    EXPECT_FALSE(application.result().has_value());
    contracts::RunResult result;
    result.layer_name = "first";
    application.run_ended(result);
    result.layer_name = "second";
    application.run_ended(result);
    EXPECT_EQ(application.result()->layer_name, "second");
    EXPECT_EQ(application.take_result()->layer_name, "second");
    EXPECT_FALSE(application.result().has_value());
    EXPECT_EQ(&application.progress(), &progress);
}

TEST(DistanceUnitsOf, TellsMetresFeetAndDegreesApart) {
    EXPECT_EQ(distance_units_of(data::SpatialReference()), 0);
    EXPECT_EQ(distance_units_of(data::SpatialReference::from("EPSG:26912")), 9);
    EXPECT_EQ(distance_units_of(data::SpatialReference::from("EPSG:4269")), 11);
    // US survey feet, then international feet.
    EXPECT_EQ(distance_units_of(data::SpatialReference::from("EPSG:2277")), 3);
    EXPECT_EQ(distance_units_of(data::SpatialReference::from("EPSG:2222")), 3);
}

}  // namespace

}  // namespace kestrel::hosting
