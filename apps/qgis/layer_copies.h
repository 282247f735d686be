// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "data/feature_class.h"

class QgsVectorLayer;

namespace kestrel::qgis {

/// A layer's features in a GeoPackage, for an engine that cannot open the layer itself.
struct LayerCopy {
    data::FeatureSource source;
    /// The copy's id of each of the layer's features.
    std::map<std::int64_t, std::int64_t> ids;
};

/// The copies of layers that OGR cannot open, or that show more than their source holds. A copy is made when it is
/// first asked for and serves until the layer changes or the copy is deleted, as the end of every run does.
class LayerCopies final : public QObject {
  public:
    /// \param folder gives the folder for the copies; it is made when it is missing.
    explicit LayerCopies(std::function<std::string()> folder) : m_folder(std::move(folder)) {}

    /// Whether the engine needs a copy of this layer.
    static bool needed(const QgsVectorLayer& layer);

    /// \throws RuntimeError when the copy cannot be written.
    const LayerCopy& copy_of(QgsVectorLayer& layer);

  private:
    void watch(QgsVectorLayer& layer);
    void forget(const QString& layer_id);

    std::function<std::string()> m_folder;
    std::map<QString, LayerCopy> m_copies;
    std::vector<QString> m_watched;
    int m_number = 0;
};

/// The layer's fields as a copy of it has them.
std::vector<data::Field> fields_of_copy(const QgsVectorLayer& layer);

}  // namespace kestrel::qgis
