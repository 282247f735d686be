// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_request.h"

#include <charconv>
#include <stdexcept>

namespace kestrel::cli {

ScenarioRequest parse_scenario(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        throw std::invalid_argument("'" + text + "' is no scenario: write SRC:CODE, such as mall.shp:24");
    }
    ScenarioRequest scenario{text.substr(0, colon), 0};
    const std::string code = text.substr(colon + 1);
    const char* first = code.data() + (code.size() > 1 && code[0] == '+' && code[1] != '-' ? 1 : 0);
    const char* last = code.data() + code.size();
    const auto [end, error] = std::from_chars(first, last, scenario.code);
    if (error != std::errc() || end != last) {
        throw std::invalid_argument("'" + code + "' in the scenario '" + text +
                                    "' is no class code: a whole number is needed, such as 24");
    }
    return scenario;
}

}  // namespace kestrel::cli
