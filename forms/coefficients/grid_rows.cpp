// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/grid_rows.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/text.h"
#include "coefficients/basISModelPropsUtil.h"
#include "reporting/error_report.h"

namespace kestrel::basISModelPropsUtil {

namespace {

constexpr const char* kModule = "basISModelPropsUtil";

GridRow row_of(const clsLCClass& land_class) {
    using base::text_of;
    return {"",
            text_of(land_class.ID),
            land_class.LCName,
            text_of(land_class.LCHigh),
            text_of(land_class.LCMed),
            text_of(land_class.LCLow)};
}

bool is_empty(const GridRow& row) {
    return std::all_of(row.begin() + kValueColumn, row.end(), [](const std::string& cell) { return cell.empty(); });
}

/// The text of a cell that must hold a number.
const std::string& number_in(const GridRow& row, GridColumn column) {
    const std::string& text = row[static_cast<std::size_t>(column)];
    if (!base::numeric(text)) {
        throw base::RuntimeError(base::kTypeMismatch,
                                 fmt::format("Type mismatch: \"{}\" in row {} is no number", text, row[0]));
    }
    return text;
}

clsLCClass class_of(const GridRow& row) {
    clsLCClass land_class;
    land_class.ID = base::to_integer(number_in(row, kValueColumn));
    land_class.LCName = row[kNameColumn];
    land_class.LCHigh = base::to_single(number_in(row, kHighColumn));
    land_class.LCMed = base::to_single(number_in(row, kMediumColumn));
    land_class.LCLow = base::to_single(number_in(row, kLowColumn));
    return land_class;
}

std::shared_ptr<clsISLCDef> find_or_add(clsISModelProperties& props, const std::string& name) {
    if (auto set = find_set(props, name)) {
        return set;
    }
    auto added = std::make_shared<clsISLCDef>();
    added->LCType = name;
    props.ISLCDefs.Add(added);
    return added;
}

}  // namespace

void SetLCGridHeaders(GridContents& grid) try {
    grid.headers = {{"", 400}, {"Value", 775}, {"Name", 2600}, {"High", 965}, {"Medium", 965}, {"Low", 965}};
    grid.rows.clear();
} catch (...) {
    report_current({"SetLCGridHeaders", kModule});
}

void LoadLCGrid(GridContents& grid, std::string_view setName, const clsISModelProperties& props) try {
    SetLCGridHeaders(grid);
    if (const auto set = find_set(props, setName)) {
        for (const auto& land_class : set->LCClasses) {
            grid.rows.push_back(row_of(*land_class));
        }
        number_rows(grid);
    }
} catch (...) {
    report_current({"LoadLCGrid", kModule});
}

void RemoveEmptyGridRows(GridContents& grid) try {
    if (std::erase_if(grid.rows, is_empty) > 0) {
        number_rows(grid);
    }
} catch (...) {
    report_current({"RemoveEmptyGridRows", kModule});
}

bool SaveModelPropUpdates(GridContents& grid, const std::string& setName, clsISModelProperties& props) try {
    RemoveEmptyGridRows(grid);
    // All rows are converted before the first is written: a cell that is no number stops the save as a whole.
    std::vector<clsLCClass> updates;
    for (const GridRow& row : grid.rows) {
        updates.push_back(class_of(row));
    }
    const std::shared_ptr<clsISLCDef> set = find_or_add(props, setName);
    clsLCClasses& classes = set->LCClasses;
    std::int32_t position = 0;
    for (clsLCClass& update : updates) {
        if (++position > classes.Count()) {
            classes.Add(std::make_shared<clsLCClass>());
        }
        *classes.Item(position) = std::move(update);
    }
    while (classes.Count() > position) {
        classes.Remove(classes.Count());
    }
    return true;
} catch (...) {
    return reported<bool>({"SaveModelPropUpdates", kModule});
}

GridRow fresh_row() {
    return {"", "0", "", "0", "0", "0"};
}

bool has_data(const GridRow& row) {
    return std::any_of(row.begin() + kValueColumn, row.end(), [](const std::string& cell) {
        const std::string text = base::without_spaces(cell);
        return !text.empty() && text != "0";
    });
}

void number_rows(GridContents& grid) {
    std::int32_t number = 0;
    for (GridRow& row : grid.rows) {
        row[kNumberColumn] = base::text_of(++number);
    }
}

}  // namespace kestrel::basISModelPropsUtil
