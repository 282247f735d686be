// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <qgsprocessingoutputs.h>
#include <qgsprocessingparameters.h>

#include "apps/qgis/feedback.h"
#include "apps/qgis/impervious_algorithm.h"
#include "apps/qgis/qgis_names.h"
#include "base/files.h"
#include "coefficients/basUtil.h"
#include "coefficients/coefficient_option.h"
#include "forms/analysis/form_texts.h"

/// \file
/// What the algorithm asks for, and what it says of itself.
namespace kestrel::qgis {

namespace {

/// Names of the coefficient sets in a store; none when it cannot be read.
QStringList set_names_in(const std::string& store) {
    QStringList names;
    FeedbackInteraction nobody(nullptr);
    const reporting::ScopedInteraction spoken_through(nobody);
    clsISModelProperties props;
    if (base::file_exists(store) && basUtil::GetISModelProperties(props, store)) {
        for (const std::string& name : basUtil::set_names(props)) {
            names << QString::fromStdString(name);
        }
    }
    return names;
}

QgsProcessingParameterDefinition* advanced(QgsProcessingParameterDefinition* parameter) {
    parameter->setFlags(parameter->flags() | kAdvancedParameter);
    return parameter;
}

}  // namespace

QString ImperviousAlgorithm::shortDescription() const {
    return QStringLiteral("Estimates the impervious surface of polygons from land cover.");
}

QStringList ImperviousAlgorithm::tags() const {
    return {"impervious", "land cover", "watershed", "zonal", "kestrel"};
}

QString ImperviousAlgorithm::shortHelpString() const {
    return QStringLiteral(
        "Estimates how much of each polygon is covered by impervious surface - roofs, roads, pavement. Every class of "
        "the land cover has a percentage of impervious surface, from the chosen coefficient set; polygons that share a "
        "value of the analysis field become one zone of the output.\n\n"
        "Coefficient: the High, Medium or Low coefficient for all zones; or by population density, where polygons at "
        "or above the high cut-off take the High, those at or below the low one the Low, and all others the Medium "
        "coefficient.\n\n"
        "Scenarios: inside the polygons of a layer the land cover counts as another class, given by its code. They are "
        "applied in their order.\n\n"
        "The output is a shapefile. A run report (.prm), metadata (.met), a layer file (.lyr) and a style are written "
        "beside it, and an older output of that name is replaced.");
}

void ImperviousAlgorithm::initAlgorithm(const QVariantMap&) {
    add_inputs();
    add_density_and_scenarios();
    addParameter(advanced(new QgsProcessingParameterString("LAYER_NAME", "Layer name (that of the file when empty)",
                                                           QVariant(), false, true)));
    addParameter(advanced(new QgsProcessingParameterFile("STORE", "Coefficient store (the user's own when empty)",
                                                         kOneFile, "xml", QVariant(), true)));
    addParameter(new QgsProcessingParameterVectorDestination("OUTPUT", "Impervious surface", kPolygonSource));
    addOutput(new QgsProcessingOutputFile("REPORT", "Run report"));
    addOutput(new QgsProcessingOutputFile("METADATA", "Metadata"));
    addOutput(new QgsProcessingOutputFile("LAYER_FILE", "Layer file"));
    addOutput(new QgsProcessingOutputNumber("ZONE_COUNT", "Number of zones"));
    addOutput(new QgsProcessingOutputNumber("TOTAL_AREA", "Total area"));
    addOutput(new QgsProcessingOutputNumber("IMPERVIOUS_AREA", "Impervious area"));
}

void ImperviousAlgorithm::add_inputs() {
    addParameter(new QgsProcessingParameterRasterLayer("LAND_COVER", "Land cover"));
    addParameter(new QgsProcessingParameterEnum("UNITS", "Land cover units",
                                                {"As the land cover says", "Meters", "Feet"}, false, 0));
    addParameter(
        new QgsProcessingParameterFeatureSource("ZONES", "Analysis layer", {static_cast<int>(kPolygonSource)}));
    addParameter(new QgsProcessingParameterField("FIELD", "Analysis field", QVariant(), "ZONES"));
    const QStringList sets = set_names_in(base::join_path(m_extension_folder, "etc/isprops.xml"));
    auto* set = new QgsProcessingParameterString("SET", "Coefficient set", sets.value(0));
    set->setMetadata({{"widget_wrapper", QVariantMap{{"value_hints", sets}}}});
    addParameter(set);
    addParameter(new QgsProcessingParameterEnum("OPTION", "Coefficient",
                                                {"High", "Medium", "Low", "By population density"}, false, 1));
}

void ImperviousAlgorithm::add_density_and_scenarios() {
    addParameter(new QgsProcessingParameterFeatureSource("DENSITY_LAYER", "Population density layer",
                                                         {static_cast<int>(kPolygonSource)}, QVariant(), true));
    addParameter(new QgsProcessingParameterField("DENSITY_FIELD", "Population density field", QVariant(),
                                                 "DENSITY_LAYER", kNumericField, false, true));
    addParameter(new QgsProcessingParameterNumber("DENSITY_HIGH", "High density from", kRealNumber, QVariant(), true));
    addParameter(new QgsProcessingParameterNumber("DENSITY_LOW", "Low density up to", kRealNumber, QVariant(), true));
    addParameter(new QgsProcessingParameterMatrix("SCENARIOS", "Land cover change scenarios", 0, false,
                                                  {"Polygon layer", "Class code"}, QVariant(), true));
}

QStringList ImperviousAlgorithm::scenario_cells(const QVariantMap& parameters, QgsProcessingContext& context) const {
    QStringList cells;
    // A table that was left out counts as one of a single cell.
    if (parameters.value("SCENARIOS").isValid()) {
        for (const QVariant& cell : parameterAsMatrix(parameters, "SCENARIOS", context)) {
            cells << cell.toString();
        }
    }
    return cells.join("").isEmpty() ? QStringList() : cells;
}

bool ImperviousAlgorithm::checkParameterValues(const QVariantMap& parameters, QgsProcessingContext& context,
                                               QString* message) const {
    if (!QgsProcessingAlgorithm::checkParameterValues(parameters, context, message)) {
        return false;
    }
    QString reason;
    if (parameterAsEnum(parameters, "OPTION", context) == static_cast<int>(CoefficientOption::by_density)) {
        for (const char* needed : {"DENSITY_LAYER", "DENSITY_FIELD", "DENSITY_HIGH", "DENSITY_LOW"}) {
            if (reason.isEmpty() && !parameters.value(needed).isValid()) {
                reason = QStringLiteral("The coefficient is chosen by population density, which needs: %1.")
                             .arg(parameterDefinition(needed)->description());
            }
        }
        // Equal ones pass, as they do in the form.
        if (reason.isEmpty() && parameterAsDouble(parameters, "DENSITY_HIGH", context) <
                                    parameterAsDouble(parameters, "DENSITY_LOW", context)) {
            reason = form_texts::kLowAboveHigh;
        }
    }
    if (scenario_cells(parameters, context).size() % 2 != 0) {
        reason = "A scenario is a polygon layer and a class code.";
    }
    if (message != nullptr) {
        *message = reason;
    }
    return reason.isEmpty();
}

}  // namespace kestrel::qgis
