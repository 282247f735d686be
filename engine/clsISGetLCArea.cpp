// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISGetLCArea.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/part_of_progress.h"
#include "counting/zonal_tabulation.h"
#include "engine/basUtil.h"
#include "engine/clsISTableFunctions.h"
#include "engine/engine_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

using data::Table;

namespace {

constexpr const char* kModule = "clsISGetLCArea";

// The share of a run that the pass over the land cover takes.
constexpr double kPassBegins = 0.1;
constexpr double kPassEnds = 0.7;

/// The coefficients of all class columns in a zone, looked up once for each density class.
class ColumnCoefficients {
  public:
    ColumnCoefficients(const CoefficientLookup& lookup, const Tabulation& tabulation, bool by_zone)
        : m_lookup(lookup), m_tabulation(tabulation), m_by_zone(by_zone) {}

    const std::vector<double>& of(const std::string& key) {
        const char density_class = m_by_zone && !key.empty() ? key.back() : '\0';
        std::vector<double>& coefficients = m_known[density_class];
        if (coefficients.empty()) {
            for (const Tabulation::Column& column : m_tabulation.columns) {
                coefficients.push_back(m_lookup.coefficient(base::text_of(column.land_class), key));
            }
        }
        return coefficients;
    }

  private:
    const CoefficientLookup& m_lookup;
    const Tabulation& m_tabulation;
    bool m_by_zone;
    std::map<char, std::vector<double>> m_known;
};

}  // namespace

double area_factor(const std::string& units) {
    if (units == "Feet") {
        return 2.2956e-05;  // Intended; not 1/43560.
    }
    return units == "Meters" ? 0.0001 : 0;
}

void clsISGetLCArea::Initialise(contracts::Application* pApp, std::optional<CoefficientOption> option, int threads) {
    Reset();
    m_application = pApp;
    m_option = option;
    m_threads = threads;
}

void clsISGetLCArea::Reset() {
    m_application = nullptr;
    m_counts.reset();
    m_unknown_classes.clear();
}

std::optional<Table> clsISGetLCArea::isGetLCArea(const std::string& pWorkspace, const AreaTheme& AnalysisTheme,
                                                 const contracts::RasterLayer& lcTheme, const std::string& ValueField,
                                                 const std::string& ZoneField, bool popDS, const std::string& LCUnits,
                                                 const LandClassDictionary& dictCL, const std::string& tmpZone,
                                                 const std::string& areaTemp) try {
    (void)ValueField;  // the cell value itself; the zone grid and its name exist only while rows are swept
    (void)tmpZone;
    (void)popDS;  // the keys of the zones already end in their density class
    const std::string zone_field = basUtil::stored_field_name(ZoneField, AnalysisTheme.fields);
    if (!SwitchOnRasterAnalysis()) {
        reporting::current_interaction().message_box(engine_texts::raster_analysis_missing());
        return std::nullopt;
    }
    const std::optional<Tabulation> tabulation = TabulateAreas(AnalysisTheme, lcTheme);
    if (!tabulation || m_application->progress().cancelled()) {
        return std::nullopt;
    }
    if (tabulation->keys.empty()) {
        reporting::current_interaction().message_box(
            engine_texts::no_zone_has_cells(AnalysisTheme.name, lcTheme.name()));
        return std::nullopt;
    }
    std::optional<Table> table =
        clsISTableFunctions(pWorkspace).createDBF(areaTemp, zone_field, 2 * tabulation->field_count() - 2, *tabulation);
    if (!table || !CalculateAreas(*tabulation, area_factor(LCUnits), dictCL, *table)) {
        return std::nullopt;
    }
    return table;
} catch (...) {
    return reported<std::optional<Table>>({"isGetLCArea", kModule});
}

/// Enables the host's raster analysis; a host without it cannot count.
bool clsISGetLCArea::SwitchOnRasterAnalysis() {
    if (m_application == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "The area engine has not been initialised");
    }
    contracts::IExtensionConfig* extension = m_application->find_extension(contracts::kRasterAnalysisExtension);
    if (extension == nullptr) {
        return false;
    }
    try {
        extension->IExtensionConfig_State(contracts::kExtensionEnabled);
        return extension->IExtensionConfig_State() == contracts::kExtensionEnabled;
    } catch (const std::exception&) {
        return false;  // a host that cannot switch it on says so in the caller's message
    }
}

/// \return nothing after an error, which is told.
std::optional<Tabulation> clsISGetLCArea::TabulateAreas(const AreaTheme& AnalysisTheme,
                                                        const contracts::RasterLayer& lcTheme) {
    try {
        if (!m_counts) {
            ConvertShapeToRaster(AnalysisTheme, lcTheme.source());
        }
    } catch (const base::RuntimeError& error) {
        if (!m_application->progress().cancelled()) {
            reporting::current_interaction().message_box(engine_texts::area_calculation_failed());
            reporting::current_interaction().notice(error.description());
        }
        return std::nullopt;
    }
    return AnalysisTheme.scenario ? m_counts->inside(*AnalysisTheme.scenario) : m_counts->whole();
}

data::RasterDataset clsISGetLCArea::OpenRasterDataset(const std::string& source) {
    return data::RasterDataset::open(source);
}

/// Lays the polygons over the land cover's grid and counts, in the same pass: the grid of zones is never written out.
void clsISGetLCArea::ConvertShapeToRaster(const AreaTheme& AnalysisTheme, const std::string& source) {
    const data::RasterDataset raster = OpenRasterDataset(source);
    const RunZones& zones = *AnalysisTheme.zones;
    counting::TabulationInput input{.zones = zones.zones.get()};
    input.overlay = zones.density.get();
    for (const polygons::SharedPolygons& scenario : zones.scenarios) {
        input.scenarios.push_back(scenario.get());
    }
    base::PartOfProgress progress(m_application->progress(), kPassBegins, kPassEnds);
    m_counts.emplace(counting::tabulate(raster, input, m_threads, progress), zones.keys, raster.grid().cell_area());
}

std::string clsISGetLCArea::AnalysisFieldValues(const Tabulation& table, std::size_t id) try {
    return table.keys.at(id);
} catch (...) {
    return reported<std::string>({"AnalysisFieldValues", kModule});
}

bool clsISGetLCArea::CalculateAreas(const Tabulation& tabulation, double factor, const LandClassDictionary& dictCL,
                                    Table& table) try {
    const CoefficientLookup lookup(m_option, dictCL);
    ColumnCoefficients known(lookup, tabulation, m_option == CoefficientOption::by_density);
    std::vector<std::string> zones;
    std::vector<const double*> coefficients;  // of each zone, column by column
    for (std::size_t id = 0; id < tabulation.keys.size(); ++id) {
        zones.push_back(AnalysisFieldValues(tabulation, id));
        const std::vector<double>& of_zone = known.of(zones.back());
        const auto missing = std::find(of_zone.begin(), of_zone.end(), CoefficientLookup::kNoCoefficient);
        if (missing != of_zone.end()) {
            const auto column = static_cast<std::size_t>(missing - of_zone.begin());
            list_unknown_classes(tabulation, lookup, zones.back());
            reporting::current_interaction().message_box(
                engine_texts::no_coefficients(base::text_of(tabulation.columns[column].land_class)));
            return false;
        }
        coefficients.push_back(of_zone.data());
    }
    table.add_rows(std::move(zones));
    for (std::size_t column = 0; column < tabulation.columns.size(); ++column) {
        const int field = 2 + 2 * static_cast<int>(column);
        Table::NumberSetter areas = table.number_setter(field);
        Table::NumberSetter impervious_areas = table.number_setter(field + 1);
        for (const auto& [row, cells] : tabulation.columns[column].entries) {
            const double area = static_cast<double>(cells) * tabulation.cell_area;
            areas.set(row, area * factor);
            impervious_areas.set(row, area * factor * coefficients[row][column] / 100);
        }
    }
    return true;
} catch (...) {
    return reported<bool>({"CalculateAreas", kModule});
}

void clsISGetLCArea::list_unknown_classes(const Tabulation& tabulation, const CoefficientLookup& lookup,
                                          const std::string& key) {
    for (const Tabulation::Column& column : tabulation.columns) {
        if (lookup.coefficient(base::text_of(column.land_class), key) == CoefficientLookup::kNoCoefficient) {
            const auto& entries = column.entries;
            m_unknown_classes.push_back(
                {column.land_class,
                 std::transform_reduce(entries.begin(), entries.end(), std::uint64_t{0}, std::plus<>(),
                                       [](const Tabulation::Entry& entry) { return entry.cells; })});
        }
    }
}

}  // namespace kestrel
