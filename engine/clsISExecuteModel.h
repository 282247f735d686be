// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "base/clock.h"
#include "contracts/application.h"

namespace kestrel {

struct ModelRun;

/// What a host may choose about how a run is carried out; nothing here changes a figure.
struct RunOptions {
    /// Threads that the raster pass may use; 0 for as many as there are cores.
    int threads = 0;
    /// Writes the run's tables and working shapefiles into this folder for inspection; nothing when empty.
    std::string keep_temp_folder{};
    /// Source of the time stamps, which outlives the run; the system's clock when nothing.
    const base::Clock* clock = nullptr;
};

/// One impervious-surface run, from the model parameter file to the finished output layer.
class clsISExecuteModel {
  public:
    explicit clsISExecuteModel(RunOptions options = {});
    ~clsISExecuteModel();
    clsISExecuteModel(const clsISExecuteModel&) = delete;
    clsISExecuteModel& operator=(const clsISExecuteModel&) = delete;

    /// Runs the model and returns nothing: whatever happened is told to the user through the interaction, and handed to
    /// `pApp` as a RunResult.
    /// \param pApp the host; its focus map holds the layers that the parameter file names.
    /// \param pWorkPath the extension folder; the parameter file lies in its folder "temp".
    /// \param pFileName name of the parameter file.
    /// \param shpPath folder of the output; it exists.
    /// \param shpName file name of the output shapefile, such as "sheds_is.shp".
    /// \param LayerName name of the output layer in the map, and base name of the records beside it.
    void ExecuteModel(contracts::Application* pApp, const std::string& pWorkPath, const std::string& pFileName,
                      const std::string& shpPath, const std::string& shpName, const std::string& LayerName);

  private:
    class RunEnd;

    void run_stages(const std::string& pFileName, const std::string& shpPath, const std::string& shpName,
                    const std::string& LayerName);
    bool prepare(const std::string& pFileName);
    bool calculate_areas();
    bool adjust_for_scenarios();
    bool sum_by_analysis_value();
    bool publish(const std::string& shpPath, const std::string& shpName, const std::string& LayerName);

    void isWriteMetadata(const std::string& folder, const std::string& name);
    void isCleanUp(const std::string& extension_folder);
    bool isSetCompleteArea();
    void isUpdateLegend(contracts::FeatureLayer& outputLayer, const std::string& shpPath);
    bool DissolveAnalysisLayer(const std::string& shpPath, const std::string& shpName, const std::string& LayerName);
    bool AddNewFields();
    bool isCalPctIS();
    void keep_working_files();
    void hand_over();

    RunOptions m_options;
    std::unique_ptr<ModelRun> m_run;
};

}  // namespace kestrel
