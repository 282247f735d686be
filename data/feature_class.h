// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/progress.h"
#include "data/feature_source.h"
#include "data/field.h"
#include "data/polygon_features.h"
#include "data/spatial_reference.h"
#include "polygons/polygons.h"

namespace kestrel::data {

/// A set of features of one geometry type, read through OGR. Cheap to copy; copies share the open dataset, and are
/// used on one thread.
class FeatureClass {
  public:
    /// \throws RuntimeError 53 when the file is missing, 70 when it may not be read, library failure when it cannot be
    ///         opened, has no such layer (the description lists the layers that there are) or the filter is wrong.
    static FeatureClass open(const FeatureSource& source);

    const FeatureSource& source() const noexcept;
    /// Names of all layers in the source, in order.
    std::vector<std::string> layers_in_source() const;
    /// Name of the layer inside the source.
    const std::string& layer_name() const noexcept;
    /// Attribute fields in order, without object id and geometry.
    const std::vector<Field>& fields() const noexcept;
    /// Position in fields(), compared exactly; -1 when there is none.
    int find_field(std::string_view name) const noexcept;
    const SpatialReference& spatial_reference() const noexcept;
    /// Whether the geometry type is polygon or multipolygon, curved ones included, or any: a layer that may hold
    /// everything is taken, and what is no polygon refused when it is read.
    bool polygonal() const noexcept;
    /// Features that pass the subset filter.
    std::int64_t feature_count() const;
    /// Of the whole layer, but empty when no feature passes the subset filter.
    polygons::Envelope extent() const;

    /// Ids of the features that pass `where` (OGR SQL) as well as the subset, ascending.
    /// \throws RuntimeError (library failure) when the expression is wrong.
    std::vector<std::int64_t> ids_where(const std::string& where) const;

    /// Reads features in source order. Curves become line strings; features without geometry have empty polygons;
    /// measures and heights are dropped; open rings are closed, rings of fewer than four points left out; of a
    /// collection the polygons are taken.
    /// \param field_names fields to read; each must exist (error 5 otherwise).
    /// \param only ids to read, ascending; all features when not given.
    /// \throws RuntimeError 5 when the layer is not polygonal, a feature is no polygon or has a coordinate that is no
    ///         finite number, or one of `only` does not exist; library failure when a feature cannot be read.
    PolygonFeatures read_polygons(std::span<const std::string> field_names,
                                  std::optional<std::span<const std::int64_t>> only = std::nullopt) const;

    /// Reads all features as read_polygons() above does.
    /// \param progress hears the share of the features that is read. When it answers stop, the result is incomplete and
    ///        must not be used.
    /// \param threads that may be used; 0 for as many as there are cores. The result does not depend on it.
    PolygonFeatures read_polygons(std::span<const std::string> field_names, base::Progress& progress,
                                  int threads) const;

    /// Reads the attributes alone, as read_polygons() would; of layers of any geometry type.
    std::vector<std::vector<Value>> read_columns(std::span<const std::string> field_names) const;

  private:
    struct Source;
    void refuse_unless_polygonal() const;
    explicit FeatureClass(std::shared_ptr<Source> source) : m_source(std::move(source)) {}
    std::shared_ptr<Source> m_source;
};

}  // namespace kestrel::data
