// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "contracts/extension.h"

namespace kestrel::hosting {

/// The raster analysis that runs ask their host for. It is part of the program, so every host has it; a desktop lets
/// its user switch it off.
class RasterAnalysis final : public contracts::IExtensionConfig {
  public:
    std::string IExtensionConfig_ProductName() const override { return "Raster analysis"; }
    std::string IExtensionConfig_Description() const override { return "Counts the cells of rasters in polygons."; }
    std::int32_t IExtensionConfig_State() override { return m_state; }
    void IExtensionConfig_State(std::int32_t state) override { m_state = state; }

  private:
    std::int32_t m_state = contracts::kExtensionEnabled;
};

}  // namespace kestrel::hosting
