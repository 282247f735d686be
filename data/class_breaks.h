// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::data {

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(const Colour&, const Colour&) = default;
};

/// A legend of classes on one number field. A feature falls in the first class whose upper break is not below its
/// value.
struct ClassBreaksRenderer {
    struct Class {
        double upper_break = 0;
        std::string label;
        Colour fill;
        friend bool operator==(const Class&, const Class&) = default;
    };

    std::string field;
    std::vector<Class> classes;

    /// Position of the class of `value`, or -1 when it is above every break.
    int class_of(double value) const {
        for (std::size_t i = 0; i < classes.size(); ++i) {
            if (value <= classes[i].upper_break) {
                return static_cast<int>(i);
            }
        }
        return -1;
    }

    friend bool operator==(const ClassBreaksRenderer&, const ClassBreaksRenderer&) = default;
};

}  // namespace kestrel::data
