// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kestrel::running {

/// Why a run cannot begin.
struct RunRefusal {
    enum class Cause {
        output_name,
        missing_folder,
        unusable_folder,
        replaced_input,
        existing_output,
        extension_folder,
    };
    Cause cause = Cause::output_name;
    /// What is wrong, for the user; a host adds what can be done there. A sentence, but for output_name and
    /// extension_folder, whose full stop is left out.
    std::string reason;
};

}  // namespace kestrel::running
