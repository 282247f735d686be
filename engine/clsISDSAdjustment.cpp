// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISDSAdjustment.h"

#include "base/conversions.h"
#include "engine/basUtil.h"
#include "engine/clsISTableFunctions.h"
#include "engine/engine_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

using data::Field;
using data::Table;

namespace {

constexpr const char* kModule = "clsISDSAdjustment";

/// The column of that name, added with 0 in every row when there is none.
int target_column(Table& table, const std::string& name) {
    const int position = table.find_field(name);
    return position >= 0 ? position
                         : table.add_field(basUtil::CreateFields(name, name, data::FieldType::real, 18, 18, 6));
}

}  // namespace

std::optional<Table> clsISDSAdjustment::isDSAdjustment(Table pTable, const ScenarioTheme& DSTheme,
                                                       const std::string& analysisFldName, const std::string& dcID,
                                                       const std::string& ZoneName, const std::string& aTemp,
                                                       const std::string& dsInt,
                                                       const LandClassDictionary& dictClasses) try {
    (void)dsInt;  // the intersection is the cells of the pass that both cover
    if (DSTheme.failure) {
        std::rethrow_exception(DSTheme.failure);
    }
    if (!DSTheme.same_projection) {
        const auto answer =
            reporting::current_interaction().message_box(engine_texts::scenario_not_in_projection(DSTheme.name));
        return answer == reporting::Answer::ok ? std::optional(std::move(pTable)) : std::nullopt;
    }
    if (!DSTheme.position || !m_context.areas->counts()->any_inside(*DSTheme.position)) {
        reporting::current_interaction().message_box(engine_texts::scenario_outside(DSTheme.name));
        return pTable;
    }
    AreaTheme inside_scenario = m_context.analysis;
    inside_scenario.scenario = DSTheme.position;
    const std::optional<Table> inside = m_context.areas->isGetLCArea(
        m_context.working_folder, inside_scenario, *m_context.land_cover, "Value", analysisFldName,
        m_context.option == CoefficientOption::by_density, m_context.units, dictClasses, ZoneName, aTemp);
    if (!inside) {
        return std::nullopt;
    }
    const ScenarioAreas areas = take_away(pTable, *inside);
    if (!give_to_target(pTable, *inside, areas, dcID, dictClasses)) {
        return std::nullopt;
    }
    m_context.areas->counts()->apply(*DSTheme.position, base::to_integer(dcID));
    return pTable;
} catch (...) {
    reporting::current_interaction().message_box(engine_texts::scenario_failed());
    return reported<std::optional<Table>>({"isDSAdjustment", kModule});
}

/// Takes what lies inside the scenario away from every class of every zone.
clsISDSAdjustment::ScenarioAreas clsISDSAdjustment::take_away(Table& table, const Table& inside) {
    ScenarioAreas areas;
    for (std::size_t s = 0; s < inside.row_count(); ++s) {
        const std::optional<std::size_t> row = table.find_row(inside.key(s));
        if (!row) {
            continue;
        }
        double area = 0;
        for (int field = 2; field < static_cast<int>(inside.fields().size()); ++field) {
            const Field& column = inside.fields()[static_cast<std::size_t>(field)];
            if (!is_area_column(column) && !is_impervious_column(column)) {
                continue;
            }
            const int main = table.find_field(column.name);
            if (main >= 0) {
                table.set_number(*row, main,
                                 base::round_half_even_3(table.number(*row, main)) -
                                     base::round_half_even_3(inside.number(s, field)));
            }
            // The sum is of the unrounded areas: what is given need not equal what was taken to the last digit.
            area += is_area_column(column) ? inside.number(s, field) : 0;
        }
        areas[inside.key(s)] += area;
    }
    return areas;
}

/// Gives each zone's area inside the scenario to the target class, and computes that class's impervious area anew.
/// \return false when the target class has no coefficient, which is told.
bool clsISDSAdjustment::give_to_target(Table& table, const Table& inside, const ScenarioAreas& areas,
                                       const std::string& dcID, const LandClassDictionary& dictClasses) const {
    const int area_column = target_column(table, "area-" + dcID);
    const int impervious_column = target_column(table, "ISarea-" + dcID);
    const CoefficientLookup lookup(m_context.option, dictClasses);
    for (std::size_t s = 0; s < inside.row_count(); ++s) {
        const std::optional<std::size_t> row = table.find_row(inside.key(s));
        if (!row) {
            continue;
        }
        const double coefficient = lookup.coefficient(dcID, inside.key(s));
        if (coefficient == CoefficientLookup::kNoCoefficient) {
            reporting::current_interaction().message_box(engine_texts::no_coefficients(dcID));
            return false;
        }
        const double area = table.number(*row, area_column) + areas.at(inside.key(s));
        table.set_number(*row, area_column, area);
        table.set_number(*row, impervious_column, area * coefficient / 100);
    }
    return true;
}

}  // namespace kestrel
