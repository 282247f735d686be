// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace kestrel::contracts {

class Application;

/// States of an extension in its host.
enum ExtensionState : std::int32_t { kExtensionEnabled = 1, kExtensionDisabled = 2 };

/// How a host knows an extension: what it is called, and when it starts and stops.
class IExtension {
  public:
    virtual ~IExtension() = default;
    virtual std::string IExtension_Name() const = 0;
    /// \param initializationData the host application; it outlives the extension's use of it.
    virtual void IExtension_Startup(Application* initializationData) = 0;
    virtual void IExtension_Shutdown() = 0;
};

/// What a host's extension manager shows of an extension, and its on/off state.
class IExtensionConfig {
  public:
    virtual ~IExtensionConfig() = default;
    virtual std::string IExtensionConfig_ProductName() const = 0;
    virtual std::string IExtensionConfig_Description() const = 0;
    /// \return an ExtensionState; 0 before the host has set one. May do the extension's housekeeping, and throw.
    virtual std::int32_t IExtensionConfig_State() = 0;
    virtual void IExtensionConfig_State(std::int32_t state) = 0;
};

/// Registered name of this program's extension.
inline constexpr const char* kKestrelExtension = "KESTREL_EXT.clsExtension";
/// Registered name under which a host offers its raster analysis.
inline constexpr const char* kRasterAnalysisExtension = "esriCore.SAExtension.1";

}  // namespace kestrel::contracts
