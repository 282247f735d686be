// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "contracts/application.h"
#include "data/raster.h"
#include "engine/clsISDSAdjustment.h"
#include "engine/clsISGetLCArea.h"
#include "engine/notice_recorder.h"
#include "engine/output_layer.h"
#include "engine/polygon_layer.h"
#include "engine/run_zones.h"
#include "engine/zone_keys.h"
#include "parameters/clsReadParams.h"

namespace kestrel {

/// The share of a run after which the analysis layer is read, and where reading the scenarios begins and ends.
inline constexpr double kAnalysisLayerRead = 0.05;
inline constexpr double kScenariosBegin = 0.08;
inline constexpr double kScenariosEnd = 0.1;

/// What one run holds while it lasts.
struct ModelRun {
    ModelRun(contracts::Application& application, std::string extension_folder, int threads_to_use)
        : app(application), work_path(std::move(extension_folder)), threads(threads_to_use) {}

    contracts::Map& map() const { return app.document().focus_map(); }
    bool by_density() const { return option == CoefficientOption::by_density; }
    bool cancelled() const { return app.progress().cancelled(); }
    /// A folder of the run's own below "temp", made when it is first needed.
    const std::string& working_folder();

    contracts::Application& app;
    std::string work_path;
    /// That the run may use; 0 for as many as there are cores.
    int threads;
    /// Between the run and its user.
    NoticeRecorder notices{reporting::current_interaction()};

    // The settings, as read.
    clsReadParams reader;
    std::string analysis_theme;
    std::string analysis_field;
    std::string land_cover_theme;
    std::string units;
    std::optional<CoefficientOption> option;
    std::string out_theme_name;
    std::string density_theme;
    std::string density_field;
    std::string density_high;
    std::string density_low;
    std::shared_ptr<LandClassDictionary> classes;
    std::shared_ptr<ScenarioDictionary> scenario_choices;

    // The layers.
    std::shared_ptr<contracts::FeatureLayer> analysis_layer;
    std::shared_ptr<contracts::RasterLayer> land_cover;
    /// The land cover's data; nothing when it cannot be opened, which the area stage tells.
    std::optional<data::RasterDataset> raster;
    PolygonLayer analysis;
    /// The working copy of the selected analysis features; nothing when all are used.
    std::optional<data::FeatureClass> selected;
    /// All fields of the analysis layer, as its source defines them.
    std::vector<data::Field> analysis_fields;
    ZoneGroups groups;
    /// The field that holds the zone keys: the analysis field, or the one that the density stage makes of it.
    std::string zone_field;
    std::vector<std::uint8_t> density_digits;
    std::vector<ScenarioTheme> scenarios;
    std::optional<RunZones> zones;

    // What is made.
    clsISGetLCArea areas;
    std::optional<data::Table> summary;
    OutputLayer output;
    std::shared_ptr<contracts::FeatureLayer> output_layer;
    std::size_t incomplete = 0;
    contracts::RunResult result;

  private:
    std::string m_working_folder;
};

/// Fills the settings from the reader. \return false when the file gave nothing, which the reader has told.
bool read_settings(ModelRun& run, const std::string& file_name);

/// Finds analysis layer and land cover in the map and reads the analysis features, the selected ones when there is a
/// selection. \return false after a failure that was told, or when the run was cancelled. \throws RuntimeError 91 when
/// the map lacks a layer.
bool read_analysis_layer(ModelRun& run);

/// Opens the land cover, and gives notice of what makes its areas doubtful. An analysis layer without a coordinate
/// system is taken to be in the land cover's.
void inspect_land_cover(ModelRun& run);

/// Prepares the scenarios and lays everything that the pass looks at into the land cover's coordinate system.
/// \param density the density polygons under the per-zone option.
void lay_out_zones(ModelRun& run, const PolygonLayer* density);

/// What the area stage is asked for.
AreaTheme area_theme(const ModelRun& run);

/// Fills the run's result: zones, legend, tables and counts.
void describe_result(ModelRun& run);

/// Writes the run's tables and working shapefiles into `folder`.
void keep_working_data(ModelRun& run, const std::string& folder);

}  // namespace kestrel
