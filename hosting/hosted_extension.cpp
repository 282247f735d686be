// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/hosted_extension.h"

namespace kestrel::hosting {

HostedExtension::HostedExtension(const std::string& library_path)
    : m_library(library_path), m_extension(m_library.create(contracts::kKestrelExtension)) {}

HostedExtension::~HostedExtension() {
    stop();
}

void HostedExtension::start(contracts::Application& application) {
    stop();
    extension().IExtension_Startup(&application);
    m_started = true;
    m_toolbar = m_library.create(contracts::kKestrelToolbar);
    const contracts::IToolBarDef& bar = toolbar();
    for (std::int32_t position = 0; position < bar.IToolBarDef_ItemCount(); ++position) {
        contracts::ItemDef def;
        bar.IToolBarDef_GetItemInfo(position, def);
        m_items.push_back(make_item(def, application));
    }
}

void HostedExtension::stop() {
    m_items.clear();
    m_toolbar.reset();
    if (m_started) {
        m_started = false;
        extension().IExtension_Shutdown();
    }
}

HostedItem HostedExtension::make_item(const contracts::ItemDef& def, contracts::Application& application) const {
    HostedItem item{def, m_library.create(def.ID)};
    item.menu = dynamic_cast<const contracts::IMenuDef*>(item.object.get());
    if (item.menu != nullptr) {
        for (std::int32_t position = 0; position < item.menu->IMenuDef_ItemCount(); ++position) {
            contracts::ItemDef entry;
            item.menu->IMenuDef_GetItemInfo(position, entry);
            item.items.push_back(make_item(entry, application));
        }
        return item;
    }
    item.command = &contract<contracts::ICommand>(*item.object);
    if (auto* const kinds = dynamic_cast<contracts::ICommandSubType*>(item.object.get())) {
        kinds->ICommandSubType_SetSubType(def.SubType);
    }
    item.command->ICommand_OnCreate(&application);
    return item;
}

}  // namespace kestrel::hosting
