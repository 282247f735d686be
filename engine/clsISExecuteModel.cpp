// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISExecuteModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/part_of_progress.h"
#include "data/layer_file.h"
#include "data/output_files.h"
#include "engine/basUtil.h"
#include "engine/clsISTableFunctions.h"
#include "engine/clsPopulationDensity.h"
#include "engine/engine_texts.h"
#include "engine/model_run.h"
#include "engine/run_records.h"
#include "polygons/dissolve.h"
#include "records/metadata.h"
#include "records/run_report.h"
#include "reporting/error_report.h"

namespace kestrel {

using data::Field;
using data::Table;

namespace {

constexpr const char* kModule = "clsISExecuteModel";

// The share of a run that joining the polygons takes.
constexpr double kDissolveBegins = 0.7;
constexpr double kDissolveEnds = 0.9;
constexpr double kOutputWritten = 0.98;

/// An area table as it was after a stage, under the name of that stage's working table.
Table snapshot(const Table& table, const std::string& name) {
    Table copy = table;
    copy.rename(name);
    return copy;
}

/// The sum of an area table's wanted columns in each row. They are added in their order.
std::vector<double> row_sums(const Table& table, bool (*wanted)(const Field&)) {
    std::vector<double> sums(table.row_count(), 0.0);
    for (int field = 2; field < static_cast<int>(table.fields().size()); ++field) {
        if (wanted(table.fields()[static_cast<std::size_t>(field)])) {
            const std::span<const double> column = table.numbers(field);
            std::transform(sums.begin(), sums.end(), column.begin(), sums.begin(), std::plus<>());
        }
    }
    return sums;
}

/// The files of an output that stands in its place but is not in the map yet: unless they are kept, they go again.
class PublishedFiles {
  public:
    explicit PublishedFiles(std::vector<std::string> paths) : m_paths(std::move(paths)) {}
    ~PublishedFiles() {
        for (const std::string& path : m_paths) {
            try {
                base::remove_file(path);
            } catch (const base::RuntimeError&) {
                continue;  // what made the run fail is told already
            }
        }
    }
    PublishedFiles(const PublishedFiles&) = delete;
    PublishedFiles& operator=(const PublishedFiles&) = delete;

    std::vector<std::string> keep() { return std::exchange(m_paths, {}); }

  private:
    std::vector<std::string> m_paths;
};

}  // namespace

/// Ends a run on every exit: working data is removed and the result handed over, whatever happened before.
class clsISExecuteModel::RunEnd {
  public:
    explicit RunEnd(clsISExecuteModel& model) : m_model(model) {}
    ~RunEnd() {
        m_model.hand_over();
        m_model.m_run.reset();
    }
    RunEnd(const RunEnd&) = delete;
    RunEnd& operator=(const RunEnd&) = delete;

  private:
    clsISExecuteModel& m_model;
};

clsISExecuteModel::clsISExecuteModel(RunOptions options) : m_options(std::move(options)) {}
clsISExecuteModel::~clsISExecuteModel() = default;

void clsISExecuteModel::ExecuteModel(contracts::Application* pApp, const std::string& pWorkPath,
                                     const std::string& pFileName, const std::string& shpPath,
                                     const std::string& shpName, const std::string& LayerName) try {
    if (pApp == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "There is no application to run in");
    }
    m_run = std::make_unique<ModelRun>(*pApp, pWorkPath, m_options.threads);
    const reporting::ScopedInteraction recorded(m_run->notices);  // until the result is handed over
    const RunEnd end(*this);
    run_stages(pFileName, shpPath, shpName, LayerName);
} catch (...) {
    report_current({"ExecuteModel", kModule});
}

/// A run, stage by stage. A stage that fails, or finds the run cancelled, ends it; it has told what there was to tell.
void clsISExecuteModel::run_stages(const std::string& pFileName, const std::string& shpPath, const std::string& shpName,
                                   const std::string& LayerName) {
    if (!prepare(pFileName) || !calculate_areas() || !adjust_for_scenarios() || !sum_by_analysis_value()) {
        return;
    }
    if (!DissolveAnalysisLayer(shpPath, shpName, LayerName) || !isCalPctIS() || !isSetCompleteArea()) {
        return;
    }
    describe_result(*m_run);
    if (!publish(shpPath, shpName, LayerName)) {
        return;
    }
    isUpdateLegend(*m_run->output_layer, shpPath);
    if (m_run->incomplete > 0) {
        reporting::current_interaction().message_box(engine_texts::nodata_cells());
    }
    m_run->map().refresh();
    isWriteMetadata(shpPath, LayerName);
    m_run->reader.FlushParameters();
    m_run->app.progress().report(1, "Finished");
}

/// Reads the settings and the layers, and lays out what the pass over the land cover looks at.
bool clsISExecuteModel::prepare(const std::string& pFileName) {
    ModelRun& run = *m_run;
    if (!run.app.progress().report(0, "Reading the layers") || !read_settings(run, pFileName) ||
        !read_analysis_layer(run)) {
        return false;
    }
    inspect_land_cover(run);
    run.areas.Initialise(&run.app, run.option, run.threads);
    const PolygonLayer* density = nullptr;
    std::optional<clsPopulationDensity> density_stage;
    if (run.by_density()) {
        density_stage.emplace(run.map(), run.analysis, run.density_theme, run.density_field, run.density_high,
                              run.density_low);
        base::PartOfProgress progress(run.app.progress(), kAnalysisLayerRead, kScenariosBegin);
        if (!density_stage->DensityCalculation(progress, run.threads)) {
            if (!run.cancelled()) {
                reporting::current_interaction().message_box(engine_texts::density_failed());
            }
            return false;
        }
        density = &density_stage->NewAnalysisTheme().density;
        run.density_digits = density_stage->NewAnalysisTheme().class_digits;
        run.zone_field = density_stage->NewAnalysisFieldName();
    } else {
        run.zone_field = run.analysis_field;
    }
    lay_out_zones(run, density);
    return !run.cancelled();
}

bool clsISExecuteModel::calculate_areas() {
    ModelRun& run = *m_run;
    run.summary = run.areas.isGetLCArea(run.work_path, area_theme(run), *run.land_cover, "Value", run.zone_field,
                                        run.by_density(), run.units, *run.classes, "tmpZone", "areaTemp");
    run.result.unknown_classes = run.areas.unknown_classes();
    if (!run.summary || run.cancelled()) {
        return false;
    }
    run.result.zone_tables.push_back(*run.summary);
    return true;
}

bool clsISExecuteModel::adjust_for_scenarios() {
    ModelRun& run = *m_run;
    int number = 2;  // the first scenario's names begin with 2, not with 0 or 1
    for (std::size_t i = 0; i < run.scenarios.size(); ++i, ++number) {
        const TextList& choice = std::next(run.scenario_choices->begin(), static_cast<std::ptrdiff_t>(i))->second;
        clsISDSAdjustment adjustment({.working_folder = run.work_path,
                                      .analysis = area_theme(run),
                                      .land_cover = run.land_cover.get(),
                                      .units = run.units,
                                      .option = run.option,
                                      .areas = &run.areas});
        run.summary = adjustment.isDSAdjustment(
            std::move(*run.summary), run.scenarios[i], run.zone_field, choice.Item(3), fmt::format("{}dsZone", number),
            fmt::format("{}dsarea", number), fmt::format("{}dsInt", number), *run.classes);
        if (!run.summary || run.cancelled()) {
            return false;
        }
        run.result.zone_tables.push_back(snapshot(*run.summary, fmt::format("{}dsarea", number)));
    }
    return true;
}

/// Sums the density classes of each zone, so that the table's keys are analysis values again.
bool clsISExecuteModel::sum_by_analysis_value() {
    ModelRun& run = *m_run;
    if (run.by_density()) {
        run.summary = clsISTableFunctions(run.work_path)
                          .SumTable(*run.summary, run.analysis_field, run.summary->fields().at(1).name);
        if (run.summary) {
            run.result.zone_tables.push_back(*run.summary);
        }
    }
    return run.summary.has_value() && !run.cancelled();
}

bool clsISExecuteModel::DissolveAnalysisLayer(const std::string& shpPath, const std::string& shpName,
                                              const std::string& LayerName) try {
    (void)shpPath;  // the output stays in memory until it is whole: publish() writes it
    (void)shpName;
    ModelRun& run = *m_run;
    run.result.layer_name = LayerName;
    base::PartOfProgress progress(run.app.progress(), kDissolveBegins, kDissolveEnds);
    run.output.polygons =
        polygons::dissolve(run.analysis.polygons, run.groups.group_of(), run.groups.count(), progress, run.threads);
    if (run.cancelled()) {
        return false;
    }
    run.output.groups = &run.groups;
    Field field = output_analysis_field(run.analysis.field, run.groups, run.analysis_fields, run.units);
    if (field.name != run.analysis_field) {
        run.notices.notice(engine_texts::renamed_output_field(run.analysis_field, field.name));
    }
    run.output.fields = {std::move(field)};
    const bool only_analysis_field = OutputLayer::kFirstField + run.output.fields.size() <= 3;
    return !only_analysis_field || AddNewFields();
} catch (...) {
    return reported<bool>({"DissolveAnalysisLayer", kModule});
}

bool clsISExecuteModel::AddNewFields() try {
    for (Field& field : output_area_fields(m_run->units)) {
        m_run->output.fields.push_back(std::move(field));
    }
    return true;
} catch (...) {
    return reported<bool>({"AddNewFields", kModule});
}

bool clsISExecuteModel::isCalPctIS() try {
    ModelRun& run = *m_run;
    const Table& table = *run.summary;
    const std::vector<double> areas = row_sums(table, is_area_column);
    const std::vector<double> impervious_areas = row_sums(table, is_impervious_column);
    std::size_t likely_row = 0;
    for (std::size_t i = 0; i < run.groups.count(); ++i) {
        double area = 0;
        double impervious = 0;
        if (const std::optional<std::size_t> row = table.find_row(run.groups.text(i), likely_row)) {
            area = areas[*row];
            impervious = impervious_areas[*row];
            likely_row = *row + 1;
        }
        run.output.total_area.push_back(base::round_to_scale(area, 6));
        run.output.impervious_area.push_back(base::round_to_scale(impervious, 6));
        run.output.percent.push_back(area == 0 ? 0 : base::round_to_scale(impervious / area * 100, 2));
        run.output.complete.push_back(true);
    }
    return true;
} catch (...) {
    return reported<bool>({"isCalPctIS", kModule});
}

/// Marks the features that touch NODATA cells, before the output is written; what they are is known from the pass.
bool clsISExecuteModel::isSetCompleteArea() try {
    ModelRun& run = *m_run;
    const auto& touches = run.areas.counts()->counts().touches_nodata;
    for (std::size_t i = 0; i < touches.size(); ++i) {
        const std::uint32_t group = run.groups.group_of()[i];
        if (touches[i] != 0 && run.output.complete[group]) {
            run.output.complete[group] = false;
            ++run.incomplete;
        }
    }
    return true;
} catch (...) {
    return reported<bool>({"isSetCompleteArea", kModule});
}

/// The second half of DissolveAnalysisLayer, once the output is whole: writes it beside its place, moves it there, and
/// puts its layer into the map. After this the run cannot be cancelled any more.
bool clsISExecuteModel::publish(const std::string& shpPath, const std::string& shpName,
                                const std::string& LayerName) try {
    ModelRun& run = *m_run;
    if (!run.app.progress().report(kDissolveEnds, "Writing the output")) {
        return false;
    }
    data::StagedOutput stage(shpPath);
    base::PartOfProgress writing(run.app.progress(), kDissolveEnds, kOutputWritten);
    run.output.write(stage.path(shpName), writing);
    if (run.cancelled()) {
        return false;
    }
    PublishedFiles files(stage.publish());
    run.output_layer = run.app.make_feature_layer(base::join_path(shpPath, shpName), LayerName);
    if (run.output_layer == nullptr) {
        reporting::current_interaction().message_box(engine_texts::feature_class_missing());
        return false;
    }
    if (const auto earlier = basUtil::FindLayer(LayerName, run.map())) {
        run.map().remove_layer(earlier);
    }
    run.map().add_layer(run.output_layer);
    run.result.files = files.keep();
    run.result.finished = true;
    return true;
} catch (...) {
    return reported<bool>({"DissolveAnalysisLayer", kModule});
}

void clsISExecuteModel::isUpdateLegend(contracts::FeatureLayer& outputLayer, const std::string& shpPath) try {
    ModelRun& run = *m_run;
    const data::ClassBreaksRenderer legend = output_legend();
    outputLayer.set_renderer(legend);
    run.map().refresh();
    const std::string shapefile = run.result.files.front();
    const std::string layer_file = base::join_path(shpPath, outputLayer.name() + ".lyr");
    data::write_layer_file(layer_file, {.layer_name = outputLayer.name(),
                                        .shapefile_name = base::file_name_of(shapefile),
                                        .reference = run.output.reference,
                                        .renderer = legend});
    run.result.files.push_back(layer_file);
    const std::string style_file = base::join_path(shpPath, base::base_name_of(shapefile) + ".qml");
    data::write_style_file(style_file, legend);
    run.result.files.push_back(style_file);
} catch (...) {
    report_current({"isUpdateLegend", kModule});
}

void clsISExecuteModel::isWriteMetadata(const std::string& folder, const std::string& name) try {
    ModelRun& run = *m_run;
    const base::SystemClock system_clock;
    const base::Clock& clock = m_options.clock != nullptr ? *m_options.clock : system_clock;
    const RunRecord record = record_of(run, clock.now());
    const std::string report = base::join_path(folder, name + ".prm");
    write_run_report(report, record);
    run.result.files.push_back(report);
    const std::string metadata = base::join_path(folder, name + ".met");
    write_metadata(metadata, record, output_record_of(run), read_contact(run.work_path));
    run.result.files.push_back(metadata);
} catch (...) {
    report_current({"isWriteMetadata", kModule});
}

void clsISExecuteModel::isCleanUp(const std::string& extension_folder) try {
    base::empty_folder(base::join_path(extension_folder, "temp"));
} catch (...) {
    report_current({"isCleanUp", kModule});
}

/// A failure here must not keep the end of the run from cleaning up.
void clsISExecuteModel::keep_working_files() try {
    if (!m_options.keep_temp_folder.empty()) {
        keep_working_data(*m_run, m_options.keep_temp_folder);
    }
} catch (...) {
    report_current({"ExecuteModel", kModule});
}

/// Cleans up and hands the result to the application; the end of every run.
void clsISExecuteModel::hand_over() try {
    ModelRun& run = *m_run;
    keep_working_files();
    run.areas.Reset();
    isCleanUp(run.work_path);
    run.result.cancelled = !run.result.finished && run.cancelled();
    run.result.notices = run.notices.take_notices();
    run.app.run_ended(std::move(run.result));
} catch (...) {
    report_current({"ExecuteModel", kModule});
}

}  // namespace kestrel
