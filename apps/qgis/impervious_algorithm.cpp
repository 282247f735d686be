// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/impervious_algorithm.h"

#include <qgsprocessingcontext.h>
#include <qgsprocessingfeedback.h>
#include <qgsproject.h>
#include <qgsrasterlayer.h>
#include <qgsvectorlayer.h>

#include "apps/qgis/desktop_layers.h"
#include "apps/qgis/feedback.h"
#include "apps/qgis/layer_copies.h"
#include "apps/qgis/layer_sources.h"
#include "apps/qgis/qgis_names.h"
#include "apps/qgis/run_texts.h"
#include "base/conversions.h"
#include "base/files.h"
#include "coefficients/basUtil.h"
#include "data/raster.h"
#include "hosting/headless_run.h"
#include "hosting/run_choices.h"
#include "hosting/run_layers.h"
#include "hosting/run_totals.h"
#include "parameters/basISModelUtil.h"

namespace kestrel::qgis {

using data::FeatureClass;

namespace {

const QStringList kUnits{"", "Meters", "Feet"};

[[noreturn]] void refuse(const QString& reason) {
    throw QgsProcessingException(reason);
}

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

/// What can be wrong with the data is said as an algorithm says it.
template <typename Work>
auto translated(Work work) {
    try {
        return work();
    } catch (const base::RuntimeError& error) {
        refuse(qt(error.description()));
    }
}

void check_zone_field(const FeatureClass& zones, const std::string& name) {
    const int position = zones.find_field(name);
    if (position < 0 || !basISModelUtil::suits(zones.fields()[static_cast<std::size_t>(position)].type,
                                               basISModelUtil::kAnalysisFields)) {
        refuse(QStringLiteral("The field '%1' of the analysis layer holds neither whole numbers nor text, so it cannot "
                              "name the zones.")
                   .arg(qt(name)));
    }
}

void check_name(const RunOutput& output) {
    if (!qt(output.file_name).endsWith(".shp", Qt::CaseInsensitive)) {
        refuse("The output is written as a shapefile: its name must end in .shp.");
    }
}

QVariantMap outputs_of(const contracts::RunResult& result, const RunOutput& output) {
    const contracts::ZoneResult total = hosting::total_of(result);
    const QString records = qt(base::join_path(output.folder, output.layer_name));
    return {{"OUTPUT", qt(output.path())},
            {"REPORT", records + ".prm"},
            {"METADATA", records + ".met"},
            {"LAYER_FILE", records + ".lyr"},
            {"ZONE_COUNT", static_cast<int>(result.zones.size())},
            {"TOTAL_AREA", total.total_area},
            {"IMPERVIOUS_AREA", total.impervious_area}};
}

/// \throws QgsProcessingException when there is no output.
QVariantMap ended(const contracts::RunResult& result, const RunOutput& output, const FeedbackInteraction& interaction,
                  QgsProcessingFeedback& feedback) {
    if (result.finished) {
        feedback.pushInfo(qt(finished_details(result)));
        return outputs_of(result, output);
    }
    QString reason = qt(unfinished_text(result));
    if (!result.cancelled && !feedback.isCanceled() && !interaction.last_message().empty()) {
        reason += " " + qt(interaction.last_message());
    }
    refuse(reason);
}

}  // namespace

/// The run as it is laid out before it begins. Working folder and copies go with it.
struct ImperviousAlgorithm::Prepared {
    explicit Prepared(const std::string& contact_file)
        : folder(contact_file),
          copies(std::make_shared<LayerCopies>([this] { return base::join_path(folder.path(), "layers"); })) {}

    hosting::PrivateRunFolder folder;
    std::shared_ptr<LayerCopies> copies;
    hosting::RunLayers layers;
    contracts::DistanceUnits distance_units = contracts::kUnknownUnits;
    clsISModelProperties store;
    std::string store_path;
    std::string set_name;
    ModelParameters parameters;
};

ImperviousAlgorithm::ImperviousAlgorithm(std::string extension_folder)
    : m_extension_folder(std::move(extension_folder)) {}

ImperviousAlgorithm::~ImperviousAlgorithm() = default;

QgsProcessingAlgorithm* ImperviousAlgorithm::createInstance() const {
    return new ImperviousAlgorithm(m_extension_folder);
}

std::string ImperviousAlgorithm::store_path(const QVariantMap& parameters, const QgsProcessingContext& context) const {
    const QString chosen = parameterAsString(parameters, "STORE", context);
    return chosen.isEmpty() ? base::join_path(m_extension_folder, "etc/isprops.xml") : text_of(chosen);
}

bool ImperviousAlgorithm::prepareAlgorithm(const QVariantMap& parameters, QgsProcessingContext& context,
                                           QgsProcessingFeedback* feedback) {
    return translated([&] {
        FeedbackInteraction interaction(feedback);
        const reporting::ScopedInteraction spoken_through(interaction);
        m_prepared = std::make_unique<Prepared>(base::join_path(m_extension_folder, "etc/contact.ini"));
        prepare_land_cover(parameters, context);
        prepare_coefficients(parameters, context);
        prepare_zones(parameters, context);
        prepare_density(parameters, context);
        prepare_scenarios(parameters, context);
        return true;
    });
}

void ImperviousAlgorithm::prepare_land_cover(const QVariantMap& parameters, QgsProcessingContext& context) {
    const QgsRasterLayer* raster = parameterAsRasterLayer(parameters, "LAND_COVER", context);
    const std::string source = raster == nullptr ? "" : gdal_source(*raster);
    if (source.empty()) {
        refuse("The land cover is no raster that GDAL reads.");
    }
    std::string units = text_of(kUnits.value(parameterAsEnum(parameters, "UNITS", context)));
    if (units.empty()) {
        units = hosting::units_of(data::RasterDataset::open(source).spatial_reference());
    }
    if (units.empty()) {
        refuse("The land cover does not say that it is in metres or feet: choose its units.");
    }
    m_prepared->parameters.land_cover_units = units;
    m_prepared->parameters.land_cover_layer = m_prepared->layers.add_raster(source, text_of(raster->name()));
}

void ImperviousAlgorithm::prepare_coefficients(const QVariantMap& parameters, const QgsProcessingContext& context) {
    Prepared& prepared = *m_prepared;
    prepared.store_path = store_path(parameters, context);
    if (!basUtil::GetISModelProperties(prepared.store, prepared.store_path)) {
        refuse(QStringLiteral("The coefficient store '%1' cannot be read.").arg(qt(prepared.store_path)));
    }
    QStringList names;
    for (const std::string& name : basUtil::set_names(prepared.store)) {
        names << qt(name);
    }
    const QString chosen = parameterAsString(parameters, "SET", context);
    if (!names.contains(chosen)) {
        refuse(QStringLiteral("The coefficient store '%1' holds no set '%2'. It holds: %3.")
                   .arg(qt(prepared.store_path), chosen, names.join(", ")));
    }
    prepared.set_name = text_of(chosen);
}

void ImperviousAlgorithm::prepare_zones(const QVariantMap& parameters, QgsProcessingContext& context) {
    Prepared& prepared = *m_prepared;
    bool selected_only = false;
    QgsVectorLayer& layer = polygons(parameters, "ZONES", context, selected_only);
    prepared.parameters.analysis_field = text_of(parameterAsString(parameters, "FIELD", context));
    prepared.parameters.analysis_layer = add_polygons(layer, selected_only);
    const FeatureClass opened = DesktopFeatureLayer(layer, prepared.copies).feature_class();
    check_zone_field(opened, prepared.parameters.analysis_field);
    const QgsProject* project = context.project();
    prepared.distance_units = project != nullptr && project->crs().isValid()
                                  ? units_of_map(project->crs())
                                  : hosting::distance_units_of(opened.spatial_reference());
}

void ImperviousAlgorithm::prepare_density(const QVariantMap& parameters, QgsProcessingContext& context) {
    ModelParameters& chosen = m_prepared->parameters;
    chosen.coefficient_option = static_cast<CoefficientOption>(parameterAsEnum(parameters, "OPTION", context));
    if (chosen.coefficient_option != CoefficientOption::by_density) {
        return;
    }
    bool selected_only = false;
    QgsVectorLayer& layer = polygons(parameters, "DENSITY_LAYER", context, selected_only);
    chosen.density_layer = add_polygons(layer, selected_only);
    chosen.density_field = text_of(parameterAsString(parameters, "DENSITY_FIELD", context));
    chosen.density_high = base::text_of(parameterAsDouble(parameters, "DENSITY_HIGH", context));
    chosen.density_low = base::text_of(parameterAsDouble(parameters, "DENSITY_LOW", context));
    chosen.density_medium = {chosen.density_low, chosen.density_high};
}

void ImperviousAlgorithm::prepare_scenarios(const QVariantMap& parameters, QgsProcessingContext& context) {
    Prepared& prepared = *m_prepared;
    const QStringList cells = scenario_cells(parameters, context);
    std::int32_t number = 0;
    for (int i = 0; i + 1 < cells.size(); i += 2) {
        const QString layer_text = cells[i].trimmed();
        const QString code_text = cells[i + 1].trimmed();
        if (layer_text.isEmpty() && code_text.isEmpty()) {
            continue;
        }
        ++number;
        auto* layer = qobject_cast<QgsVectorLayer*>(QgsProcessingUtils::mapLayerFromString(layer_text, context));
        if (layer == nullptr || layer->geometryType() != kPolygonGeometry) {
            refuse(QStringLiteral("Scenario %1: there is no polygon layer '%2'.").arg(number).arg(layer_text));
        }
        bool is_code = false;
        const std::int32_t code = code_text.toInt(&is_code);
        if (!is_code) {
            refuse(QStringLiteral("Scenario %1: '%2' is no class code.").arg(number).arg(code_text));
        }
        prepared.parameters.scenarios.push_back({number, add_polygons(*layer, false),
                                                 hosting::class_name(prepared.store, prepared.set_name, code),
                                                 base::text_of(code)});
    }
}

QgsVectorLayer& ImperviousAlgorithm::polygons(const QVariantMap& parameters, const QString& name,
                                              QgsProcessingContext& context, bool& selected_only) const {
    QVariantMap plain = parameters;
    const QVariant value = parameters.value(name);
    if (value.canConvert<QgsProcessingFeatureSourceDefinition>()) {
        const auto definition = value.value<QgsProcessingFeatureSourceDefinition>();
        selected_only = definition.selectedFeaturesOnly;
        plain[name] = definition.source.valueAsString(context.expressionContext());
    }
    QgsVectorLayer* layer = parameterAsVectorLayer(plain, name, context);
    if (layer == nullptr) {
        refuse(invalidSourceError(parameters, name));
    }
    return *layer;
}

std::string ImperviousAlgorithm::add_polygons(QgsVectorLayer& layer, bool selected_only) {
    const DesktopFeatureLayer features(layer, m_prepared->copies);
    const std::vector<std::int64_t> selected = selected_only ? features.selection().ids() : std::vector<std::int64_t>{};
    if (selected_only && selected.empty()) {
        refuse(QStringLiteral("No feature of the layer '%1' is selected.").arg(layer.name()));
    }
    const FeatureClass opened = features.feature_class();
    return m_prepared->layers.add_features(opened.source(), opened, selected, text_of(layer.name()));
}

QVariantMap ImperviousAlgorithm::processAlgorithm(const QVariantMap& parameters, QgsProcessingContext& context,
                                                  QgsProcessingFeedback* feedback) {
    return translated([&] {
        const std::unique_ptr<Prepared> prepared = std::move(m_prepared);
        FeedbackInteraction interaction(feedback);
        const reporting::ScopedInteraction spoken_through(interaction);
        FeedbackProgress progress(*feedback);
        const std::string path = text_of(parameterAsOutputLayer(parameters, "OUTPUT", context));
        const QString layer_name = parameterAsString(parameters, "LAYER_NAME", context);
        const RunOutput output{.folder = base::folder_of(path),
                               .file_name = base::file_name_of(path),
                               .layer_name = layer_name.isEmpty() ? base::base_name_of(path) : text_of(layer_name)};
        std::vector<std::string> inputs = prepared->layers.files();
        inputs.push_back(prepared->store_path);
        check_name(output);
        const hosting::HeadlessEnding ending = hosting::carry_out_headless(
            {.layers = prepared->layers.layers(), .distance_units = prepared->distance_units},
            {.parameters = prepared->parameters,
             .output = output,
             .store = prepared->store,
             .set_name = prepared->set_name,
             .inputs = inputs,
             .replacing = running::Replacing::allowed},
            prepared->folder.path(), progress);
        if (ending.run.refusal) {
            refuse(qt(ending.run.refusal->reason));
        }
        return ended(ending.result, output, interaction, *feedback);
    });
}

}  // namespace kestrel::qgis
