// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/field.h"

#include "base/conversions.h"

namespace kestrel::data {

namespace {

struct TextOf {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(std::int64_t value) const { return base::text_of(value); }
    std::string operator()(double value) const { return base::text_of(value); }
    std::string operator()(const std::string& value) const { return value; }
};

struct NumberOf {
    double operator()(std::monostate) const { return 0; }
    double operator()(std::int64_t value) const { return static_cast<double>(value); }
    double operator()(double value) const { return value; }
    double operator()(const std::string& value) const { return base::to_double(value); }
};

}  // namespace

std::string text_of(const Value& value) {
    return std::visit(TextOf{}, value);
}

double number_of(const Value& value) {
    return std::visit(NumberOf{}, value);
}

}  // namespace kestrel::data
