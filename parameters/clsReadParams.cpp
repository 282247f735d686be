// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/clsReadParams.h"

#include <optional>
#include <string_view>

#include "base/errors.h"
#include "base/files.h"
#include "parameters/parameter_file_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {

/// The fields of a line: empty ones are kept, but an empty line has none at all.
std::vector<std::string> split_fields(std::string_view line) {
    std::vector<std::string> fields;
    if (line.empty()) {
        return fields;
    }
    std::size_t start = 0;
    for (std::size_t end = line.find('#'); end != std::string_view::npos; end = line.find('#', start)) {
        fields.emplace_back(line.substr(start, end - start));
        start = end + 1;
    }
    fields.emplace_back(line.substr(start));
    return fields;
}

const std::string& field_at(const std::vector<std::string>& fields, std::size_t position, int line = __builtin_LINE()) {
    if (position >= fields.size()) {
        throw base::RuntimeError(base::kSubscriptOutOfRange, "Subscript out of range", "Kestrel", line);
    }
    return fields[position];
}

template <typename Dictionary>
const std::shared_ptr<Dictionary>& set_or_throw(const std::shared_ptr<Dictionary>& dictionary,
                                                int line = __builtin_LINE()) {
    if (dictionary == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "Object variable not set", "Kestrel", line);
    }
    return dictionary;
}

}  // namespace

std::string clsReadParams::AnalysisTheme() const {
    return parameter("ANALYSISTHEME");
}

std::string clsReadParams::AnalysisFieldName() const {
    return parameter("ANALYSISUNIT");
}

std::string clsReadParams::lcTheme() const {
    return parameter("LCTHEME");
}

std::string clsReadParams::LCUnits() const {
    return parameter("LCUNITS");
}

std::string clsReadParams::PopulationDensity() const {
    return parameter("POPDENSITY");
}

std::optional<CoefficientOption> clsReadParams::coefficient_option() const {
    const std::string name = PopulationDensity();
    if (name == "0") {
        return CoefficientOption::high;
    }
    if (name == "1") {
        return CoefficientOption::medium;
    }
    if (name == "2") {
        return CoefficientOption::low;
    }
    return name == "3" ? std::optional(CoefficientOption::by_density) : std::nullopt;
}

std::string clsReadParams::PopDensityTheme() const {
    return parameter("POPDENSITYTHEME");
}

std::string clsReadParams::PopDensityFldName() const {
    return parameter("POPDENSITYFLD");
}

std::string clsReadParams::PopDensityHigh() const {
    return parameter("POPDENSITYHIGH");
}

std::string clsReadParams::PopDensityLow() const {
    return parameter("POPDENSITYLOW");
}

std::shared_ptr<LandClassDictionary> clsReadParams::LandClasses() const {
    return set_or_throw(m_land_classes);
}

std::shared_ptr<ScenarioDictionary> clsReadParams::DevScenarios() const {
    return set_or_throw(m_scenarios);
}

std::string clsReadParams::OutThemeName() const {
    return parameter("OUTTHEMENAME");
}

void clsReadParams::ReadParameters(const std::string& PathName, const std::string& FileName) try {
    m_path_name = PathName;
    m_file_name = FileName;
    m_parameters = std::make_shared<base::Dictionary<std::string>>();
    m_land_classes = std::make_shared<LandClassDictionary>();
    m_scenarios = std::make_shared<ScenarioDictionary>();

    const std::string path = m_path_name + "/temp/" + m_file_name;
    if (!base::file_exists(path)) {
        reporting::current_interaction().message_box(parameter_file_texts::missing_file(m_path_name, m_file_name));
        return;
    }
    base::TextReader reader(path);
    while (const std::optional<std::string> line = reader.read_line()) {
        read_line(*line);
    }
} catch (...) {
    report_current({"ReadParameters", "clsReadParams"});
}

void clsReadParams::FlushParameters() {
    m_parameters.reset();
    m_land_classes.reset();
    m_scenarios.reset();
}

std::string clsReadParams::parameter(const std::string& keyword) const {
    // Looked up so that a missing keyword leaves an empty entry behind.
    return (*set_or_throw(m_parameters))[keyword];
}

void clsReadParams::read_line(const std::string& line) {
    const std::vector<std::string> fields = split_fields(line);
    const std::string& keyword = field_at(fields, 0);
    if (keyword == "CLASS") {
        m_land_classes->add(field_at(fields, 1), ParamCol(fields));
    } else if (keyword == "DS") {
        m_scenarios->add(field_at(fields, 1), ParamCol(fields));
    } else {
        m_parameters->add(keyword, field_at(fields, 1));
    }
}

TextList clsReadParams::ParamCol(const std::vector<std::string>& fields) {
    TextList list;
    for (std::size_t i = 2; i < fields.size(); ++i) {
        list.Add(fields[i]);
    }
    return list;
}

}  // namespace kestrel
