// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/feature_source.h"

#include <fmt/format.h>

#include <array>
#include <optional>

#include "base/errors.h"
#include "base/files.h"

namespace kestrel::data {

namespace {

struct SourceOption {
    std::size_t begin;  // of the "|"
    std::size_t value;  // of the text after it
    std::string_view key;
};

/// The first of the options that QGIS appends, at or after `from`.
std::optional<SourceOption> next_option(std::string_view text, std::size_t from) {
    static constexpr std::array<std::string_view, 5> kKeys{
        "|layername=", "|subset=", "|layerid=", "|geometrytype=", "|option:"};
    std::optional<SourceOption> first;
    for (const std::string_view key : kKeys) {
        const std::size_t at = text.find(key, from);
        if (at != std::string_view::npos && (!first || at < first->begin)) {
            first = SourceOption{at, at + key.size(), key};
        }
    }
    return first;
}

}  // namespace

FeatureSource FeatureSource::parse(std::string_view text) {
    auto option = next_option(text, 0);
    FeatureSource result{std::string(text.substr(0, option ? option->begin : text.size()))};
    while (option) {
        if (option->key == "|subset=") {
            result.subset = text.substr(option->value);
            break;
        }
        if (option->key == "|layerid=") {
            throw base::RuntimeError(base::kInvalidProcedureCall,
                                     fmt::format("Name the layer (|layername=NAME): {}", text));
        }
        const auto following = next_option(text, option->value);
        if (option->key == "|layername=") {
            const std::size_t end = following ? following->begin : text.size();
            result.layer_name = text.substr(option->value, end - option->value);
        }
        option = following;
    }
    return result;
}

std::string FeatureSource::file() const {
    return !layer_name.empty() && base::folder_exists(path) ? base::join_path(path, layer_name + ".shp") : path;
}

}  // namespace kestrel::data
