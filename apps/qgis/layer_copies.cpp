// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/layer_copies.h"

#include <qgsfeatureiterator.h>
#include <qgsproject.h>
#include <qgsvectorfilewriter.h>
#include <qgsvectorlayer.h>

#include <QCoreApplication>
#include <algorithm>
#include <memory>

#include "apps/qgis/layer_sources.h"
#include "base/errors.h"
#include "base/files.h"

namespace kestrel::qgis {

using base::RuntimeError;
using data::FieldType;

namespace {

constexpr const char* kLayerInCopy = "copy";

[[noreturn]] void fail(const QgsVectorLayer& layer, const QString& reason, int line = __builtin_LINE()) {
    throw RuntimeError(base::kLibraryFailure,
                       text_of(QStringLiteral("The layer '%1' cannot be copied: %2").arg(layer.name(), reason)),
                       "Kestrel", line);
}

FieldType type_of(const QgsField& field) {
    switch (field.type()) {
        case QVariant::Int:
        case QVariant::UInt:
            return FieldType::integer;
        case QVariant::LongLong:
        case QVariant::ULongLong:
            return FieldType::big_integer;
        case QVariant::Double:
            return FieldType::real;
        case QVariant::String:
            return FieldType::text;
        case QVariant::Bool:
            return FieldType::boolean;
        default:
            return FieldType::other;
    }
}

std::unique_ptr<QgsVectorFileWriter> writer_for(const QgsVectorLayer& layer, const std::string& path) {
    QgsVectorFileWriter::SaveVectorOptions options;
    options.driverName = "GPKG";
    options.layerName = kLayerInCopy;
    options.fileEncoding = "UTF-8";
    // A field "fid" of the layer stays a field: ids in the copy count its features.
    options.layerOptions = QStringList{"FID=kestrel_fid"};
    std::unique_ptr<QgsVectorFileWriter> writer(QgsVectorFileWriter::create(
        QString::fromStdString(path), layer.fields(), QgsWkbTypes::multiType(layer.wkbType()), layer.crs(),
        QgsProject::instance()->transformContext(), options));
    if (!writer || writer->hasError() != QgsVectorFileWriter::NoError) {
        fail(layer, writer ? writer->errorMessage() : QStringLiteral("there is no writer for GeoPackages"));
    }
    return writer;
}

std::map<std::int64_t, std::int64_t> write_features(const QgsVectorLayer& layer, QgsVectorFileWriter& writer) {
    std::map<std::int64_t, std::int64_t> ids;
    QgsFeature feature;
    QgsFeatureIterator features = layer.getFeatures();
    for (std::int64_t id = 1; features.nextFeature(feature); ++id) {
        ids.emplace(feature.id(), id);
        if (!writer.addFeature(feature, QgsFeatureSink::FastInsert)) {
            fail(layer, writer.errorMessage());
        }
    }
    if (!features.isValid()) {
        fail(layer, "its features cannot be read");
    }
    if (!writer.flushBuffer()) {
        fail(layer, writer.errorMessage());
    }
    return ids;
}

}  // namespace

bool LayerCopies::needed(const QgsVectorLayer& layer) {
    return shows_more_than_its_source(layer) || !ogr_source(layer);
}

const LayerCopy& LayerCopies::copy_of(QgsVectorLayer& layer) {
    const auto known = m_copies.find(layer.id());
    if (known != m_copies.end() && base::file_exists(known->second.source.path)) {
        return known->second;
    }
    const std::string folder = m_folder();
    base::create_folders(folder);
    const QString name = QStringLiteral("layer_%1_%2.gpkg").arg(QCoreApplication::applicationPid()).arg(++m_number);
    LayerCopy copy{.source = {.path = base::join_path(folder, text_of(name)), .layer_name = kLayerInCopy}, .ids = {}};
    const auto writer = writer_for(layer, copy.source.path);
    copy.ids = write_features(layer, *writer);
    watch(layer);
    return m_copies[layer.id()] = std::move(copy);
}

void LayerCopies::watch(QgsVectorLayer& layer) {
    const QString id = layer.id();
    if (std::find(m_watched.begin(), m_watched.end(), id) != m_watched.end()) {
        return;
    }
    m_watched.push_back(id);
    const auto changed = [this, id] { forget(id); };
    connect(&layer, &QgsVectorLayer::layerModified, this, changed);
    connect(&layer, &QgsVectorLayer::dataChanged, this, changed);
    connect(&layer, &QgsVectorLayer::dataSourceChanged, this, changed);
    connect(&layer, &QgsVectorLayer::subsetStringChanged, this, changed);
    connect(&layer, &QgsVectorLayer::updatedFields, this, changed);
    connect(&layer, &QgsVectorLayer::crsChanged, this, changed);
    connect(&layer, &QgsVectorLayer::afterCommitChanges, this, changed);
    connect(&layer, &QgsVectorLayer::afterRollBack, this, changed);
    connect(&layer, &QObject::destroyed, this, [this, id] {
        forget(id);
        m_watched.erase(std::remove(m_watched.begin(), m_watched.end(), id), m_watched.end());
    });
}

void LayerCopies::forget(const QString& layer_id) {
    const auto known = m_copies.find(layer_id);
    if (known == m_copies.end()) {
        return;
    }
    try {
        base::remove_file(known->second.source.path);
    } catch (const RuntimeError&) {
        // It lies in a folder that is emptied at the end of the next run.
    }
    m_copies.erase(known);
}

std::vector<data::Field> fields_of_copy(const QgsVectorLayer& layer) {
    std::vector<data::Field> fields;
    for (const QgsField& field : layer.fields()) {
        data::Field& added = fields.emplace_back();
        added.name = text_of(field.name());
        added.alias = text_of(field.alias());
        added.type = type_of(field);
        added.length = field.length();
        added.precision = added.type == FieldType::text ? 0 : field.length();
        added.scale = field.precision();
    }
    return fields;
}

}  // namespace kestrel::qgis
