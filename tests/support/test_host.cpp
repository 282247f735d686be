// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/test_host.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "base/files.h"

namespace kestrel::test {

namespace {

const std::string kLibrary = KESTREL_EXTENSION_LIBRARY;

void copy_part(const std::string& name, const std::string& folder) {
    std::filesystem::copy(base::join_path(base::folder_of(kLibrary), name), base::join_path(folder, name),
                          std::filesystem::copy_options::recursive);
}

}  // namespace

TestHost::TestHost(Raster raster) {
    const std::string file = base::file_name_of(kLibrary);
    for (const std::string& part : {file, std::string("etc"), std::string("help")}) {
        copy_part(part, m_folder.path());
    }
    m_library_path = m_folder / file;
    m_kestrel = std::make_unique<hosting::HostedExtension>(m_library_path);
    application.register_extension(contracts::kKestrelExtension, m_kestrel->config());
    raster_analysis.IExtensionConfig_State(contracts::kExtensionEnabled);
    if (raster == Raster::registered) {
        application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
    }
    m_kestrel->start(application);
    set_state(contracts::kExtensionEnabled);
}

TestHost::~TestHost() = default;

std::vector<std::string> TestHost::shown_menu() const {
    std::vector<std::string> lines;
    for (const hosting::HostedItem& item : menu().items) {
        if (item.def.Group) {
            lines.emplace_back("-");
        }
        const std::string caption = item.command->ICommand_Caption();
        lines.push_back(item.command->ICommand_Enabled() ? caption : "(" + caption + ")");
    }
    return lines;
}

void TestHost::click(const std::string& caption) {
    for (const hosting::HostedItem& item : menu().items) {
        if (item.command->ICommand_Caption() == caption) {
            if (!item.command->ICommand_Enabled()) {
                throw std::logic_error("'" + caption + "' is greyed");
            }
            item.command->ICommand_OnClick();
            QApplication::processEvents();
            return;
        }
    }
    throw std::logic_error("the menu has no '" + caption + "'");
}

QWidget* TestHost::window(const std::string& name) const {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName().toStdString() == name) {
            return widget;
        }
    }
    return nullptr;
}

std::vector<std::string> TestHost::windows() const {
    std::vector<std::string> names;
    for (const QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible()) {
            names.push_back(widget->objectName().toStdString());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace kestrel::test
