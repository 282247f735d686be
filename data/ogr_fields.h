// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "data/field.h"

class OGRFeature;
class OGRFeatureDefn;

/// \file
/// Private to this room: OGR's fields and values as ours.
namespace kestrel::data {

std::vector<Field> fields_of(OGRFeatureDefn& definition);

/// The value of the field at `position`, which is of that type. Dates, lists and the like are text.
Value value_of(const OGRFeature& feature, int position, FieldType type);

}  // namespace kestrel::data
