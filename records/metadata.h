// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "polygons/polygons.h"
#include "records/contact.h"
#include "records/run_record.h"

namespace kestrel {

/// What the metadata says of the output layer itself.
struct OutputRecord {
    /// Bounding rectangle of the output, in the layer's own units.
    polygons::Envelope extent;
    /// Whether the map's distance units are decimal degrees.
    bool decimal_degrees = false;
    /// Names of the output's fields by position: object id at 0, shape at 1, the analysis field at 2, total area at 3,
    /// impervious area at 4, percent at 5, completeness at 6, and whatever may follow.
    std::vector<std::string> field_names;
    /// The analysis field's value of every feature of the output, in order; equal values are not joined.
    std::vector<std::string> analysis_values;
};

/// Writes the metadata of an output in the outline of the FGDC content standard, replacing an existing file.
///
/// Fixed elements and their misspelled names are part of the format. An output without any shape has no extent; its
/// bounds are left as "<enter value>".
///
/// \param path of the file, which ends in ".met".
/// \throws RuntimeError when the file cannot be made or written; the lines written until then stay.
void write_metadata(const std::string& path, const RunRecord& record, const OutputRecord& output,
                    const Contact& contact);

}  // namespace kestrel
