// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsCommands.h"

#include <array>

#include "base/errors.h"
#include "extension/clsExtension.h"
#include "reporting/error_report.h"

namespace kestrel {

using base::RuntimeError;

namespace {

constexpr const char* kModule = "clsCommands";

/// By sub-type, which counts from 1.
constexpr std::array kCaptions{
    "Run Impervious Surface Analysis...",
    "View Kestrel Parameters for a Layer...",
    "View Kestrel Metadata for a Layer...",
    "Change Coefficients...",
    "Help...",
    "About Kestrel...",
};

bool is_command(std::int32_t sub_type) {
    return sub_type >= 1 && sub_type <= static_cast<std::int32_t>(kCaptions.size());
}

std::string caption_of(std::int32_t sub_type) {
    return is_command(sub_type) ? kCaptions[static_cast<std::size_t>(sub_type) - 1] : "";
}

template <typename Object>
Object& found(Object* object, const char* otherwise, int line = __builtin_LINE()) {
    if (object == nullptr) {
        throw RuntimeError(base::kObjectVariableNotSet, otherwise, "Kestrel", line);
    }
    return *object;
}

}  // namespace

bool clsCommands::ICommand_Enabled() const {
    return m_extension != nullptr && m_extension->IExtensionConfig_State() == contracts::kExtensionEnabled;
}

std::string clsCommands::ICommand_Name() const {
    return caption_of(m_sub_type);
}

std::string clsCommands::ICommand_Caption() const {
    return caption_of(m_sub_type);
}

std::string clsCommands::ICommand_Tooltip() const {
    return caption_of(m_sub_type);
}

std::string clsCommands::ICommand_Message() const {
    return caption_of(m_sub_type);
}

std::int32_t clsCommands::ICommandSubType_GetCount() const {
    return static_cast<std::int32_t>(kCaptions.size());
}

void clsCommands::ICommand_OnCreate(contracts::Application* hook) {
    m_application = hook;
    m_extension = hook == nullptr ? nullptr : hook->find_extension(contracts::kKestrelExtension);
}

// Help and About are guarded like the rest, and only the disabled state keeps a command from its window. Intended.
void clsCommands::ICommand_OnClick() try {
    contracts::Application& application = found(m_application, "The command was given no application");
    contracts::IExtensionConfig& raster_analysis =
        found(application.find_extension(contracts::kRasterAnalysisExtension),
              "The application has no raster analysis extension (esriCore.SAExtension.1)");
    if (raster_analysis.IExtensionConfig_State() == contracts::kExtensionDisabled) {
        reporting::current_interaction().message_box(
            {"Spatial Analyst Extension required to run Impervious Surface Analysis.", "",
             reporting::Icon::exclamation});
        return;
    }
    open_window();
} catch (...) {
    // Not under the click's own name: this is the one that reports are known by.
    report_current({"Application", kModule});
}

void clsCommands::open_window() const {
    if (!is_command(m_sub_type)) {
        return;
    }
    auto* const extension = dynamic_cast<clsExtension*>(m_extension);
    ExtensionWindows* const windows = extension == nullptr ? nullptr : extension->windows();
    found(windows, "The application has no Kestrel extension with windows (KESTREL_EXT.clsExtension)")
        .open(CommandKind{m_sub_type}, *m_application);
}

}  // namespace kestrel
