// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/apps/qgis/qgis_world.h"

#include <qgsfeatureiterator.h>
#include <qgslayertree.h>
#include <qgslayertreegroup.h>
#include <qgsvectordataprovider.h>
#include <qgsvectorfilewriter.h>

#include <QCoreApplication>
#include <stdexcept>

#include "engine/basUtil.h"

namespace kestrel::test {

namespace {

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

template <typename Layer>
Layer& into_project(Layer* layer, const std::string& group = {}) {
    if (!layer->isValid()) {
        throw std::runtime_error("QGIS cannot open " + layer->source().toStdString());
    }
    QgsProject::instance()->addMapLayer(layer, false);
    QgsLayerTreeGroup* parent = QgsProject::instance()->layerTreeRoot();
    if (!group.empty()) {
        QgsLayerTreeGroup* known = parent->findGroup(qt(group));
        parent = known == nullptr ? parent->addGroup(qt(group)) : known;
    }
    parent->addLayer(layer);
    return *layer;
}

}  // namespace

QgisWorld::QgisWorld() {
    application.emplace(
        *QgsProject::instance(),
        qgis::DesktopApplication::Desktop{.interaction = world.said,
                                          .progress = [this]() -> base::Progress& { return world.progress; },
                                          .redraw = [this] { ++redrawn; },
                                          .run_ended = [this](const contracts::RunResult& ended) { result = ended; },
                                          .copies_folder = [this] { return world.extension / "temp"; }});
    application->register_extension(contracts::kRasterAnalysisExtension, world.raster_analysis);
}

QgisWorld::~QgisWorld() {
    application.reset();
    QgsProject::instance()->clear();
}

QgsVectorLayer& QgisWorld::add_vector(const std::string& source, const std::string& name, const std::string& provider,
                                      const std::string& group) {
    return into_project(new QgsVectorLayer(qt(source), qt(name), qt(provider)), group);
}

QgsRasterLayer& QgisWorld::add_raster(const std::string& source, const std::string& name) {
    return into_project(new QgsRasterLayer(qt(source), qt(name), "gdal"));
}

QgsVectorLayer& QgisWorld::add_memory_copy(const QgsVectorLayer& original, const std::string& name) {
    auto* copy = new QgsVectorLayer("Polygon?crs=" + original.crs().authid(), qt(name), "memory");
    copy->dataProvider()->addAttributes(original.fields().toList());
    copy->updateFields();
    QgsFeature feature;
    for (QgsFeatureIterator features = original.getFeatures(); features.nextFeature(feature);) {
        copy->dataProvider()->addFeature(feature);
    }
    copy->updateExtents();
    return into_project(copy);
}

void QgisWorld::settle() {
    QCoreApplication::processEvents();
}

std::vector<std::string> QgisWorld::map_layers() {
    std::vector<std::string> names;
    for (const auto& layer : application->map().layers()) {
        names.push_back(layer->name());
        if (const auto* group = dynamic_cast<const contracts::GroupLayer*>(layer.get())) {
            std::string members;
            for (const auto& member : group->members()) {
                members += (members.empty() ? "" : " ") + member->name();
            }
            names.back() += "(" + members + ")";
        }
    }
    return names;
}

std::shared_ptr<contracts::FeatureLayer> QgisWorld::feature_layer(const std::string& name) {
    return std::dynamic_pointer_cast<contracts::FeatureLayer>(basUtil::FindLayer(name, application->map()));
}

void QgisWorld::four_zones() {
    world.land_cover("2 2 5 5\n2 2 5 5\n5 5 7 7\n5 5 7 7");
    world.layer("sheds", {integer_field("ID"), text_field("NAME")},
                {{{{0, 2, 2, 4}}, {1, "north west"}},
                 {{{2, 2, 4, 4}}, {2, "north east"}},
                 {{{0, 0, 2, 2}}, {3, "south west"}},
                 {{{2, 0, 4, 2}}, {4, "south east"}}});
    add_raster(world.folder / "cover.tif", "cover");
}

std::string QgisWorld::geopackage() {
    QgsVectorLayer original(qt(shapefile()), "sheds", "ogr");
    const QString path = qt(world.folder / "zones.gpkg");
    QgsVectorFileWriter::SaveVectorOptions options;
    for (const char* name : {"other", "sheds"}) {
        options.layerName = name;
        EXPECT_EQ(QgsVectorFileWriter::writeAsVectorFormatV3(&original, path, project().transformContext(), options),
                  QgsVectorFileWriter::NoError);
        options.actionOnExistingFile = QgsVectorFileWriter::CreateOrOverwriteLayer;
    }
    return path.toStdString();
}

std::vector<std::string> QgisWorld::run() {
    result.reset();
    world.run_in(*application);
    return result && result->finished ? world.rows() : std::vector<std::string>{};
}

}  // namespace kestrel::test
