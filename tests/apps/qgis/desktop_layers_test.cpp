// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_layers.h"

#include <qgsgraduatedsymbolrenderer.h>
#include <qgsrendercontext.h>
#include <qgssymbol.h>
#include <qgsvectordataprovider.h>

#include "apps/qgis/qgis_names.h"
#include "base/files.h"
#include "engine/basUtil.h"
#include "engine/output_layer.h"
#include "tests/apps/qgis/qgis_world.h"
#include "tests/support/error_of.h"

namespace kestrel::test {
namespace {

using data::FeatureSource;
using data::FieldType;
using qgis::field_of_type;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class DesktopLayers : public QgisWorld {
  protected:
    DesktopLayers() { four_zones(); }

    enum class Which { all, selected };
    /// Values of the field ID, as the engine reads them.
    static std::vector<std::string> values(const contracts::FeatureLayer& layer, Which which = Which::all) {
        const std::vector<std::string> field{"ID"};
        const std::vector<std::int64_t> ids = layer.selection().ids();
        const auto features = which == Which::selected ? layer.feature_class().read_polygons(field, ids)
                                                       : layer.feature_class().read_polygons(field);
        std::vector<std::string> texts;
        for (const auto& value : features.columns.front()) {
            texts.push_back(data::text_of(value));
        }
        return texts;
    }
    void add_memory_zones() {
        const QgsVectorLayer original(QString::fromStdString(shapefile()), "sheds", "ogr");
        memory = &add_memory_copy(original, "In memory");
    }

    QgsVectorLayer* memory = nullptr;
};

TEST_F(DesktopLayers, ShapefileIsReadInItsPlace) {
    add_vector(shapefile(), "Sheds");
    const auto layer = feature_layer("Sheds");
    EXPECT_EQ(layer->source(), FeatureSource{.path = shapefile()});
    EXPECT_THAT(values(*layer), ElementsAre("1", "2", "3", "4"));
    EXPECT_TRUE(layer->polygonal());
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DesktopLayers, SubsetFilterIsObeyed) {
    add_vector(shapefile() + "|subset=\"ID\" > 2", "Sheds");
    const auto layer = feature_layer("Sheds");
    EXPECT_EQ(layer->source(), (FeatureSource{.path = shapefile(), .subset = "\"ID\" > 2"}));
    EXPECT_THAT(values(*layer), ElementsAre("3", "4"));
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DesktopLayers, FilterThatIsAWholeStatementIsCopied) {
    add_vector(shapefile() + "|subset=SELECT * FROM sheds WHERE ID < 3", "Sheds");
    EXPECT_THAT(values(*feature_layer("Sheds")), ElementsAre("1", "2"));
    EXPECT_THAT(copies(), SizeIs(1));
}

TEST_F(DesktopLayers, SelectedFeatureThatAFilterHidesDoesNotCount) {
    QgsVectorLayer& shown = add_vector(shapefile(), "Sheds");
    shown.setSubsetString("\"ID\" > 2");
    shown.selectByIds({0, 3});
    EXPECT_THAT(values(*feature_layer("Sheds"), Which::selected), ElementsAre("4"));
}

TEST_F(DesktopLayers, LayerOfAGeoPackageIsReadInItsPlace) {
    const std::string path = geopackage();
    add_vector(path + "|layername=sheds", "Zones").selectByIds({4, 1});
    const auto layer = feature_layer("Zones");
    EXPECT_EQ(layer->source(), (FeatureSource{.path = path, .layer_name = "sheds"}));
    EXPECT_THAT(values(*layer, Which::selected), ElementsAre("1", "4"));
    EXPECT_THAT(layer->fields(), SizeIs(2)) << "its feature id is no field";
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DesktopLayers, MemoryLayerIsCopiedWithItsSelection) {
    add_memory_zones();
    memory->dataProvider()->deleteFeatures({2});  // so that ids have a gap
    memory->selectByIds({3, 4});
    const auto layer = feature_layer("In memory");
    EXPECT_EQ(layer->source(), FeatureSource{});
    EXPECT_TRUE(layer->polygonal());
    ASSERT_THAT(layer->fields(), SizeIs(2));
    EXPECT_EQ(layer->fields()[0].name, "ID");
    EXPECT_THAT(copies(), IsEmpty()) << "to know the fields no copy is needed";
    EXPECT_THAT(values(*layer), ElementsAre("1", "3", "4"));
    EXPECT_THAT(values(*layer, Which::selected), ElementsAre("3", "4"));
    EXPECT_THAT(copies(), SizeIs(1)) << "one copy serves for all that is asked";
}

TEST_F(DesktopLayers, FieldsOfACopyAreThoseThatTheLayerTells) {
    memory = new QgsVectorLayer("Polygon?crs=EPSG:26912", "fields", "memory");
    memory->dataProvider()->addAttributes(
        {field_of_type("whole", QMetaType::Int), field_of_type("long", QMetaType::LongLong),
         field_of_type("real", QMetaType::Double), field_of_type("text", QMetaType::QString),
         field_of_type("yes", QMetaType::Bool), field_of_type("day", QMetaType::QDate),
         field_of_type("fid", QMetaType::Int)});
    memory->updateFields();
    project().addMapLayer(memory);
    const auto layer = feature_layer("fields");
    std::vector<FieldType> told;
    std::vector<FieldType> copied;
    for (const auto& field : layer->fields()) {
        told.push_back(field.type);
    }
    const data::FeatureClass copy = layer->feature_class();
    for (const auto& field : copy.fields()) {
        copied.push_back(field.type);
    }
    EXPECT_THAT(told, ElementsAre(FieldType::integer, FieldType::big_integer, FieldType::real, FieldType::text,
                                  FieldType::boolean, FieldType::other, FieldType::integer));
    EXPECT_EQ(copied, told);
}

TEST_F(DesktopLayers, UncommittedEditsAreCopied) {
    QgsVectorLayer& edited = add_vector(shapefile(), "Sheds");
    edited.startEditing();
    const auto layer = feature_layer("Sheds");
    values(*layer);
    EXPECT_THAT(copies(), IsEmpty()) << "nothing has been edited yet";
    edited.changeAttributeValue(1, 0, 77);
    edited.deleteFeature(2);
    edited.selectByIds({1, 3});
    EXPECT_THAT(values(*layer), UnorderedElementsAre("1", "77", "4"));
    EXPECT_THAT(values(*layer, Which::selected), UnorderedElementsAre("77", "4"));
    edited.changeAttributeValue(1, 0, 78);
    EXPECT_THAT(values(*layer, Which::selected), UnorderedElementsAre("78", "4")) << "the copy follows the edits";
    edited.rollBack();
    EXPECT_THAT(values(*layer), ElementsAre("1", "2", "3", "4"));
    EXPECT_THAT(copies(), IsEmpty()) << "a copy that serves no more is deleted";
}

TEST_F(DesktopLayers, FieldOfTheLayersOwnIsCopied) {
    add_vector(shapefile(), "Sheds").addExpressionField("\"ID\" * 10", field_of_type("TEN", QMetaType::Int));
    const auto layer = feature_layer("Sheds");
    ASSERT_THAT(layer->fields(), SizeIs(3));
    const std::vector<std::string> field{"TEN"};
    const auto columns = layer->feature_class().read_columns(field);
    ASSERT_THAT(columns.front(), SizeIs(4));
    EXPECT_EQ(data::text_of(columns.front()[3]), "40");
}

TEST_F(DesktopLayers, CoordinateSystemChosenForALayerCounts) {
    add_vector(shapefile(), "Sheds").setCrs(QgsCoordinateReferenceSystem("EPSG:32612"));
    EXPECT_THAT(feature_layer("Sheds")->feature_class().spatial_reference().name(), testing::HasSubstr("WGS 84"));
}

TEST_F(DesktopLayers, CopyIsMadeAnewWhenTheEndOfARunHasDeletedIt) {
    add_memory_zones();
    const auto layer = feature_layer("In memory");
    values(*layer);
    base::remove_folder(world.extension / "temp");
    EXPECT_THAT(values(*layer), SizeIs(4));
}

TEST_F(DesktopLayers, CopyThatCannotBeWrittenIsAnError) {
    add_memory_zones();
    base::remove_folder(world.extension / "temp");
    base::write_file(world.extension / "temp", "no folder");
    EXPECT_NE(error_of([&] { feature_layer("In memory")->feature_class(); }).number(), 0);
}

TEST_F(DesktopLayers, LayerThatIsGoneIsAnError) {
    QgsVectorLayer& shown = add_vector(shapefile(), "Sheds");
    const auto layer = feature_layer("Sheds");
    project().removeMapLayer(&shown);
    const auto error = error_of([&] { layer->feature_class(); });
    EXPECT_EQ(error.number(), base::kObjectVariableNotSet);
    EXPECT_EQ(error.description(), "The layer has been removed from the map");
}

TEST_F(DesktopLayers, RasterIsKnownByWhatGdalOpens) {
    const auto raster =
        std::dynamic_pointer_cast<contracts::RasterLayer>(basUtil::FindLayer("cover", application->map()));
    ASSERT_NE(raster, nullptr);
    EXPECT_EQ(raster->source(), world.folder / "cover.tif");
}

TEST_F(DesktopLayers, LayersThatNoRunCanUseAreNeitherFeaturesNorRasters) {
    project().addMapLayer(new QgsVectorLayer("/nowhere/at/all.shp", "gone", "ogr"));
    project().addMapLayer(new QgsVectorLayer("None?field=a:integer", "table", "memory"));
    for (const char* name : {"gone", "table"}) {
        const auto layer = basUtil::FindLayer(name, application->map());
        ASSERT_NE(layer, nullptr) << name;
        EXPECT_EQ(std::dynamic_pointer_cast<contracts::FeatureLayer>(layer), nullptr) << name;
        EXPECT_EQ(std::dynamic_pointer_cast<contracts::RasterLayer>(layer), nullptr) << name;
    }
}

/// Colour by which QGIS draws a value; "none" when it does not.
std::string drawn(QgsVectorLayer& layer, const QVariant& value) {
    QgsFeature feature(layer.fields());
    feature.setAttribute("pctIS", value);
    QgsRenderContext context;
    QgsFeatureRenderer& renderer = *layer.renderer();
    renderer.startRender(context, layer.fields());
    const QgsSymbol* symbol = renderer.symbolForFeature(feature, context);
    const std::string colour = symbol == nullptr ? "none" : symbol->color().name().toStdString();
    renderer.stopRender(context);
    return colour;
}

TEST_F(DesktopLayers, LegendDrawsEveryValueInItsClass) {
    memory = new QgsVectorLayer("Polygon?crs=EPSG:26912&field=pctIS:double", "out", "memory");
    project().addMapLayer(memory);
    feature_layer("out")->set_renderer(output_legend());
    const auto* renderer = dynamic_cast<const QgsGraduatedSymbolRenderer*>(memory->renderer());
    ASSERT_NE(renderer, nullptr);
    ASSERT_EQ(renderer->ranges().size(), 3);
    EXPECT_EQ(renderer->classAttribute(), "pctIS");
    EXPECT_EQ(renderer->ranges()[0].label(), "< 10%");
    EXPECT_EQ(renderer->ranges()[1].label(), "10% - 25%");
    EXPECT_EQ(renderer->ranges()[2].label(), "> 25%");
    EXPECT_EQ(drawn(*memory, 0), "#aaff00");
    EXPECT_EQ(drawn(*memory, 9.99), "#aaff00");
    EXPECT_EQ(drawn(*memory, 9.995), "#ffffbe");
    EXPECT_EQ(drawn(*memory, 25), "#ffffbe");
    EXPECT_EQ(drawn(*memory, 25.01), "#ff0000");
    EXPECT_EQ(drawn(*memory, 100), "#ff0000");
    EXPECT_EQ(drawn(*memory, QVariant()), "none");
}

}  // namespace
}  // namespace kestrel::test
