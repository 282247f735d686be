// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/contact.h"

#include <optional>
#include <string_view>
#include <unordered_map>

#include "base/files.h"
#include "base/text.h"

namespace kestrel {

namespace {

/// Takes the value of a line, if it is one of a known key.
void read_entry(std::string_view line, const std::unordered_map<std::string_view, std::string*>& values) {
    line = base::trimmed(line);
    const std::size_t equals = line.find('=');
    if (line.starts_with('#') || line.starts_with(';') || equals == std::string_view::npos) {
        return;
    }
    const auto entry = values.find(base::trimmed(line.substr(0, equals)));
    if (entry != values.end()) {
        const std::string_view value = base::trimmed(line.substr(equals + 1));
        *entry->second = value.empty() ? std::string_view(kEnterValue) : value;
    }
}

}  // namespace

Contact read_contact(const std::string& extension_folder) {
    Contact contact;
    const std::string path = base::join_path(extension_folder, "etc/contact.ini");
    if (!base::file_exists(path)) {
        return contact;
    }
    const std::unordered_map<std::string_view, std::string*> values{
        {"street_address", &contact.street_address},
        {"city", &contact.city},
        {"state", &contact.state},
        {"postal_code", &contact.postal_code},
        {"country", &contact.country},
        {"telephone", &contact.telephone},
        {"fax", &contact.fax},
        {"e_mail", &contact.e_mail},
        {"hours", &contact.hours},
        {"web_page", &contact.web_page},
    };
    base::TextReader reader(path);
    while (const std::optional<std::string> line = reader.read_line()) {
        read_entry(*line, values);
    }
    return contact;
}

}  // namespace kestrel
