// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/real/whole_run.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "coefficients/basUtil.h"
#include "engine/clsISExecuteModel.h"
#include "hosting/headless_application.h"
#include "parameters/model_parameters.h"
#include "tests/support/scripted_interaction.h"

namespace kestrel::test {

namespace {

class EnabledExtension final : public contracts::IExtensionConfig {
  public:
    std::string IExtensionConfig_ProductName() const override { return "Raster analysis"; }
    std::string IExtensionConfig_Description() const override { return {}; }
    std::int32_t IExtensionConfig_State() override { return m_state; }
    void IExtensionConfig_State(std::int32_t state) override { m_state = state; }

  private:
    std::int32_t m_state = contracts::kExtensionEnabled;
};

std::shared_ptr<contracts::Layer> feature_layer(const std::string& source, const std::vector<std::int64_t>& selected) {
    return std::make_shared<hosting::HeadlessFeatureLayer>(layer_name_of(source), data::FeatureSource::parse(source),
                                                           selected);
}

void fill_map(hosting::HeadlessMap& map, const RunSettings& settings) {
    map.append_layer(
        std::make_shared<hosting::HeadlessRasterLayer>(layer_name_of(settings.land_cover), settings.land_cover));
    map.append_layer(feature_layer(settings.zones, settings.selected));
    if (settings.option == kByDensity && settings.density != settings.zones) {
        map.append_layer(feature_layer(settings.density, {}));
    }
    for (const RunSettings::Scenario& scenario : settings.scenarios) {
        map.append_layer(feature_layer(scenario.source, scenario.selected));
    }
}

ModelParameters parameters_of(const RunSettings& settings) {
    ModelParameters parameters;
    parameters.land_cover_layer = layer_name_of(settings.land_cover);
    parameters.land_cover_units = settings.units;
    parameters.analysis_layer = layer_name_of(settings.zones);
    parameters.analysis_field = settings.field;
    parameters.coefficient_option = settings.option;
    parameters.density_layer = layer_name_of(settings.density);
    parameters.density_field = settings.density_field;
    parameters.density_high = settings.density_high;
    parameters.density_medium = {settings.density_low, settings.density_high};
    parameters.density_low = settings.density_low;
    parameters.layer_name = "result";
    for (const RunSettings::Scenario& scenario : settings.scenarios) {
        const auto number = static_cast<std::int32_t>(parameters.scenarios.size()) + 1;
        parameters.scenarios.push_back(
            {number, layer_name_of(scenario.source), "target class", std::to_string(scenario.target)});
    }
    return parameters;
}

}  // namespace

std::string layer_name_of(const std::string& source) {
    const std::string mark = "|layername=";
    const std::size_t bar = source.find(mark);
    return bar != std::string::npos ? source.substr(bar + mark.size()) : std::filesystem::path(source).stem().string();
}

WholeRun::WholeRun(const RunSettings& settings) {
    const std::string extension_folder = m_folder / "ext";
    const std::string output_folder = m_folder / "out";
    std::filesystem::create_directories(extension_folder + "/temp");
    std::filesystem::create_directories(output_folder);
    ScriptedInteraction user;
    base::NoProgress progress;
    hosting::HeadlessApplication application(progress);
    EnabledExtension raster_analysis;
    application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
    fill_map(application.map(), settings);
    clsISModelProperties store;
    ModelParameters parameters = parameters_of(settings);
    parameters.output_path = output();
    if (!basUtil::GetISModelProperties(store, real_file("isprops.xml")) ||
        !write_model_parameters(extension_folder + "/temp", "model_params.txt", parameters, store, settings.set, "")) {
        throw std::runtime_error("the parameter file could not be written");
    }
    clsISExecuteModel model({.threads = settings.threads});
    model.ExecuteModel(&application, extension_folder, "model_params.txt", output_folder, "result.shp", "result");
    boxes = user.boxes;
    call_stacks = user.call_stacks;
    result = application.result().value();
}

}  // namespace kestrel::test
