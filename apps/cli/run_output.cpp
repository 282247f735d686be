// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_output.h"

#include <filesystem>
#include <stdexcept>

#include "base/files.h"
#include "base/text.h"
#include "running/output_check.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

std::string with_extension(const std::string& name) {
    if (base::lower_case(name).ends_with(".shp")) {
        return name;
    }
    return name + (name.ends_with(".") ? "shp" : ".shp");
}

}  // namespace

RunOutput output_of(const std::string& text, const std::string& layer_name) {
    const std::string given = std::string(base::trimmed(text));
    const std::string name = base::file_name_of(given);
    if (name.empty() || name == "." || name == ".." || base::lower_case(name) == ".shp") {
        throw std::invalid_argument("'" + text + "' has no file name: write DIR/NAME.shp");
    }
    if (base::folder_exists(given) && !base::lower_case(name).ends_with(".shp")) {
        throw std::invalid_argument("'" + text + "' is a folder: write " + base::join_path(given, "NAME.shp"));
    }
    RunOutput output;
    // An empty path has no absolute form of its own; "." is the present folder.
    const std::string folder = given.size() == name.size() ? "." : given.substr(0, given.size() - name.size());
    output.folder = fs::absolute(folder).lexically_normal().string();
    if (output.folder.size() > 1 && output.folder.ends_with('/')) {
        output.folder.pop_back();
    }
    output.file_name = with_extension(name);
    output.layer_name = layer_name.empty() ? base::base_name_of(output.file_name) : layer_name;
    if (const auto reason = running::wrong_name(output)) {
        throw std::invalid_argument(*reason);
    }
    return output;
}

std::string refusal_text(const running::RunRefusal& refusal) {
    using Cause = running::RunRefusal::Cause;
    switch (refusal.cause) {
        case Cause::output_name:
            return refusal.reason + ". Give another --output.";
        case Cause::missing_folder:
            return refusal.reason + " Make it, or give another --output.";
        case Cause::existing_output:
            return refusal.reason + " Give --overwrite to replace it, or another --output.";
        case Cause::extension_folder:
            return "The extension folder cannot be used. " + refusal.reason +
                   ". Give another --extension-folder, or none.";
        case Cause::unusable_folder:
        case Cause::replaced_input:
            break;
    }
    return refusal.reason + " Give another --output.";
}

}  // namespace kestrel::cli
