// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/polygon_reading.h"

#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/parallel.h"
#include "data/layer_reading.h"
#include "data/ogr_fields.h"
#include "data/ogr_polygons.h"

namespace kestrel::data {

void take_values(std::vector<std::vector<Value>>& columns, const OGRFeature& feature, const FieldChoice& choice) {
    for (std::size_t i = 0; i < choice.positions.size(); ++i) {
        const int position = choice.positions[i];
        columns[i].push_back(value_of(feature, position, choice.fields[static_cast<std::size_t>(position)].type));
    }
}

void take_polygons(PolygonFeatures& features, const OGRFeature& feature, const FieldChoice& choice,
                   const std::string& label) {
    const AppendResult result = append_feature(features.polygons, feature.GetGeometryRef());
    if (result == AppendResult::no_polygon) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 fmt::format("Feature {} of {} is no polygon", feature.GetFID(), label));
    }
    if (result == AppendResult::not_finite) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format("Feature {} of {} has a coordinate that is no finite number", feature.GetFID(), label));
    }
    features.ids.push_back(feature.GetFID());
    take_values(features.columns, feature, choice);
}

namespace {

/// Features that are read as one item of work, so that it can be stopped soon.
constexpr std::int64_t kFeaturesPerItem = 1024;

/// Whether records are numbered from 0, which is their id, and can be read from any of them on.
bool numbered(const OpenLayer& open, const FeatureSource& source) {
    return source.subset.empty() && driver_name(*open.dataset) == "ESRI Shapefile" &&
           open.layer->TestCapability(OLCFastSetNextByIndex) != 0;
}

/// Puts parts that were read at the same time together in their order, each as soon as those before it are there.
class PartsInOrder {
  public:
    explicit PartsInOrder(PolygonFeatures whole) : m_whole(std::move(whole)) {}

    void add(std::size_t position, PolygonFeatures part) {
        const std::lock_guard lock(m_mutex);
        m_waiting.emplace(position, std::move(part));
        for (auto next = m_waiting.begin(); next != m_waiting.end() && next->first == m_next; ++m_next) {
            append(next->second);
            next = m_waiting.erase(next);
        }
    }
    PolygonFeatures whole() { return std::move(m_whole); }

  private:
    void append(PolygonFeatures& part) {
        m_whole.ids.insert(m_whole.ids.end(), part.ids.begin(), part.ids.end());
        m_whole.polygons.append(part.polygons);
        for (std::size_t i = 0; i < m_whole.columns.size(); ++i) {
            m_whole.columns[i].insert(m_whole.columns[i].end(), std::make_move_iterator(part.columns[i].begin()),
                                      std::make_move_iterator(part.columns[i].end()));
        }
    }

    std::mutex m_mutex;
    PolygonFeatures m_whole;
    std::map<std::size_t, PolygonFeatures> m_waiting;
    std::size_t m_next = 0;
};

/// What one thread reads with.
class PartReader {
  public:
    PartReader(const OpenLayer& open, const FeatureSource& source, const FieldChoice& choice)
        : m_label(open.label), m_choice(choice), m_reading(open, source) {
        m_reading.keep_only(choice.fields, choice.positions, true);
    }
    /// With a handle of its own.
    PartReader(std::unique_ptr<OpenLayer> own, const FeatureSource& source, const FieldChoice& choice)
        : PartReader(*own, source, choice) {
        m_own = std::move(own);
    }

    /// The records from `first` on, up to `end`, which is not among them.
    PolygonFeatures records(std::int64_t first, std::int64_t end) {
        m_reading.go_to(first);
        return features(kAll, end);
    }
    /// The next `count` features.
    PolygonFeatures next(std::int64_t count) { return features(count, kAll); }

    static constexpr std::int64_t kAll = std::numeric_limits<std::int64_t>::max();

  private:
    PolygonFeatures features(std::int64_t count, std::int64_t end) {
        PolygonFeatures part;
        part.columns.resize(m_choice.positions.size());
        for (; count > 0; --count) {
            const FeaturePointer feature = m_reading.next();
            if (feature == nullptr || feature->GetFID() >= end) {
                break;
            }
            take_polygons(part, *feature, m_choice, m_label);
        }
        return part;
    }

    std::unique_ptr<OpenLayer> m_own;
    const std::string& m_label;
    const FieldChoice& m_choice;
    LayerReading m_reading;
};

/// Room for all points of a layer, where its file tells how many there can be: what is not used costs nothing.
PolygonFeatures empty_whole(const FeatureSource& source, const FieldChoice& choice, bool is_shapefile) {
    PolygonFeatures whole;
    whole.columns.resize(choice.positions.size());
    if (is_shapefile) {
        std::error_code unknown;
        const std::uintmax_t bytes = std::filesystem::file_size(source.file(), unknown);
        whole.polygons.reserve_points(unknown ? 0 : bytes / sizeof(polygons::Point));
    }
    return whole;
}

}  // namespace

PolygonFeatures read_all_polygons(const OpenLayer& open, const FeatureSource& source, const FieldChoice& choice,
                                  base::Progress& progress, int threads) {
    const std::int64_t count = open.layer->GetFeatureCount(FALSE);  // below 0 where it would have to be counted
    const auto items =
        static_cast<std::size_t>(std::max<std::int64_t>(1, (count + kFeaturesPerItem - 1) / kFeaturesPerItem));
    const bool by_record = numbered(open, source);
    const auto workers = by_record ? std::min(static_cast<std::size_t>(threads), items) : 1;
    std::vector<std::unique_ptr<PartReader>> readers(workers);
    PartsInOrder parts(empty_whole(source, choice, by_record));
    base::for_each_item(
        items, static_cast<int>(workers), progress, "Reading the layers", [&](std::size_t item, int worker) {
            std::unique_ptr<PartReader>& reader = readers[static_cast<std::size_t>(worker)];
            if (reader == nullptr && worker == 0) {
                reader = std::make_unique<PartReader>(open, source, choice);
            } else if (reader == nullptr) {
                reader = std::make_unique<PartReader>(std::make_unique<OpenLayer>(open_layer(source)), source, choice);
            }
            const bool last = item + 1 == items;
            const std::int64_t first = static_cast<std::int64_t>(item) * kFeaturesPerItem;
            if (workers > 1) {
                parts.add(item, reader->records(first, last ? PartReader::kAll : first + kFeaturesPerItem));
            } else {
                parts.add(item, reader->next(last ? PartReader::kAll : kFeaturesPerItem));
            }
        });
    return parts.whole();
}

}  // namespace kestrel::data
