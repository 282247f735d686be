// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/forms/coefficients/editor_fixture.h"

namespace kestrel::test {

using basISModelPropsUtil::GridCell;

inline const reporting::MessageBox kNoInteger = {"Invalid value entered - Class Value must be an integer.", "",
                                                 reporting::Icon::exclamation, reporting::Buttons::ok};
inline const reporting::MessageBox kNotNumeric = {"Invalid value entered - Coefficients must be numeric.", "",
                                                  reporting::Icon::exclamation, reporting::Buttons::ok};
inline const reporting::MessageBox kOutOfRange = {"Invalid value entered - Coefficients must be between 0-100.", "",
                                                  reporting::Icon::exclamation, reporting::Buttons::ok};

/// On the set "Town": rows "1,Roof,90,80,70", "2,Park,10,5,1" and "3,Pond,0,0,0".
class GridTest : public EditorTest {
  protected:
    void SetUp() override {
        open();
        select_set(1);
        grid().setFocus();
    }
    std::string overlay_text() { return overlay().text().toStdString(); }
    /// Makes the grid so low that rows are out of view.
    void fill_rows(int count) {
        while (grid().rows() < count)
            grid().insert_fresh_row(grid().rows() + 1);
    }
    bool in_view(GridCell cell) { return grid().viewport()->rect().contains(grid().place_of(cell)); }
};

}  // namespace kestrel::test
