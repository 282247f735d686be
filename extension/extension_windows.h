// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "contracts/application.h"

namespace kestrel {

/// The commands, by the sub-types that tell them apart.
enum class CommandKind : std::int32_t {
    run_analysis = 1,
    view_parameters = 2,
    view_metadata = 3,
    change_coefficients = 4,
    help = 5,
    about = 6,
};

/// The windows of an extension on a desktop. Abstract, so that neither the extension nor its commands need a window
/// system; the command line's extension has none.
class ExtensionWindows {
  public:
    virtual ~ExtensionWindows() = default;

    /// From here to stop() the extension's code speaks with the user as `application` does, but for help, which opens
    /// the window here. Stops what was started before.
    virtual void start(contracts::Application& application) = 0;
    /// Closes all windows. Where one holds changes that are not saved, the user is asked whether to save them; there is
    /// no way back.
    virtual void stop() = 0;

    /// Opens the window of a command, or brings it to the front where it is open. Each kind of window exists once, from
    /// its first use until stop().
    virtual void open(CommandKind command, contracts::Application& application) = 0;
};

}  // namespace kestrel
