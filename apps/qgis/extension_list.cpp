// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/extension_list.h"

#include <qgssettings.h>

namespace kestrel::qgis {

namespace {

QString key_of(const std::string& class_id) {
    return "Kestrel/extensions/" + QString::fromStdString(class_id);
}

void set_state(contracts::IExtensionConfig& extension, bool on) {
    extension.IExtensionConfig_State(on ? contracts::kExtensionEnabled : contracts::kExtensionDisabled);
}

}  // namespace

void ExtensionList::add(const std::string& class_id, contracts::IExtensionConfig& extension) {
    m_entries.push_back({class_id, &extension});
    set_state(extension, QgsSettings().value(key_of(class_id), true).toBool());
}

bool ExtensionList::switched_on(const Entry& entry) {
    return entry.extension->IExtensionConfig_State() == contracts::kExtensionEnabled;
}

void ExtensionList::switch_on(const Entry& entry, bool on) {
    set_state(*entry.extension, on);
    QgsSettings().setValue(key_of(entry.class_id), on);
}

}  // namespace kestrel::qgis
