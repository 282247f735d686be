// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "contracts/extension.h"

namespace kestrel::test {

/// The host's raster analysis, which can be made to refuse its service.
class RasterAnalysis final : public contracts::IExtensionConfig {
  public:
    std::string IExtensionConfig_ProductName() const override { return "Raster analysis"; }
    std::string IExtensionConfig_Description() const override { return {}; }
    std::int32_t IExtensionConfig_State() override { return m_state; }
    void IExtensionConfig_State(std::int32_t state) override { m_state = refuses ? m_state : state; }

    bool refuses = false;

  private:
    std::int32_t m_state = contracts::kExtensionDisabled;
};

}  // namespace kestrel::test
