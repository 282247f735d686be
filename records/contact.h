// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kestrel {

/// Stands for a value that is not configured; people complete it by hand.
inline constexpr const char* kEnterValue = "<enter value>";

/// Whom to ask about the data, as an installation configures it.
struct Contact {
    std::string street_address = kEnterValue;
    std::string city = kEnterValue;
    std::string state = kEnterValue;
    std::string postal_code = kEnterValue;
    std::string country = kEnterValue;
    std::string telephone = kEnterValue;
    std::string fax = kEnterValue;
    std::string e_mail = kEnterValue;
    std::string hours = kEnterValue;
    std::string web_page = kEnterValue;
};

/// Reads `etc/contact.ini` below the extension folder: lines "key = value", the keys named as the members above. Blanks
/// around key and value do not count; lines that begin with "#" or ";" are comments. What the file does not give, and
/// a key that it gives without a value, stays kEnterValue, and so does everything when the file is missing. Keys that
/// are not known are passed over; of a repeated key the last line counts.
/// \throws RuntimeError when the file is there and cannot be read.
Contact read_contact(const std::string& extension_folder);

}  // namespace kestrel
