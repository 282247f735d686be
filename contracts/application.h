// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/progress.h"
#include "contracts/extension.h"
#include "contracts/map.h"
#include "contracts/run_result.h"
#include "reporting/interaction.h"

namespace kestrel::contracts {

/// An open document of the host: what holds the map.
class Document {
  public:
    virtual ~Document() = default;
    virtual Map& focus_map() = 0;
};

/// The host application.
class Application {
  public:
    virtual ~Application() = default;

    virtual Document& document() = 0;

    /// The extension registered under `class_id`, or nothing when the host has none of that name.
    virtual IExtensionConfig* find_extension(std::string_view class_id) = 0;

    /// A layer named `name` on the shapefile at `path`; it is not in the map yet. Nothing when the host cannot make
    /// one.
    virtual std::shared_ptr<FeatureLayer> make_feature_layer(const std::string& path, const std::string& name) = 0;

    /// How the host speaks with its user. An extension makes it its own thread's interaction when it starts up.
    virtual reporting::Interaction& interaction() = 0;

    /// The progress of the run in hand. Where a waiting window of interaction() is up, it is that one.
    virtual base::Progress& progress() = 0;

    /// Takes what a run made, also when the run ended without an output.
    virtual void run_ended(RunResult result) = 0;
};

}  // namespace kestrel::contracts
