// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/run_output.h"

#include "base/files.h"

namespace kestrel {

std::string RunOutput::path() const {
    return base::join_path(folder, file_name);
}

std::vector<std::string> RunOutput::records() const {
    return {base::join_path(folder, layer_name + ".prm"), base::join_path(folder, layer_name + ".met"),
            base::join_path(folder, layer_name + ".lyr"),
            base::join_path(folder, base::base_name_of(file_name) + ".qml")};
}

}  // namespace kestrel
