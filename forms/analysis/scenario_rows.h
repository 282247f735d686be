// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <cstdint>
#include <vector>

#include "coefficients/clsISModelProperties.h"
#include "contracts/map.h"
#include "forms/analysis/form_rules.h"
#include "parameters/model_parameters.h"

class QGridLayout;

namespace kestrel {

/// The scenario area of the parameter form: a clipping frame, the frame of rows that slides inside it, the scroll bar
/// that slides it, and the buttons that add and delete rows. What to do on a button is the form's.
///
/// Element 0 of every array of controls always exists; without rows it is hidden.
class ScenarioRows final : public QGroupBox {
    Q_OBJECT
  public:
    explicit ScenarioRows(QWidget* parent = nullptr);

    /// The highest row index; -1 when there is no row.
    std::int16_t highest() const { return m_highest; }
    int count() const { return m_highest + 1; }
    QPushButton& add_button() { return *cmdDSAdd; }
    QPushButton& delete_button() { return *cmdDSDelete; }
    QComboBox& themes(int row) { return *cboDSTheme[static_cast<std::size_t>(row)]; }
    QComboBox& classes(int row) { return *cboDSToClass[static_cast<std::size_t>(row)]; }

    std::vector<ScenarioState> states() const;
    /// The applied rows, as the parameter file names them.
    std::vector<ScenarioChoice> choices() const;

    /// Shows the next row, applied, with the lists of row 0 and nothing selected in them.
    void show_next_row();
    /// Every row from `row` on takes over what the one below it holds, and the last one goes.
    void take_row_out(int row);
    void clear();

    /// Height of the frame of rows: as many row pitches as there are rows.
    int GetDSItemsFrameHeight() const;
    /// Fits the frame of rows to the number of rows, and the scroll bar to what does not fit into the clipping frame.
    void SetDSVScroll();

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void build_frames();
    void build_layout();
    void load_row();
    void unload_row();
    void show_row(int row, bool visible);
    QWidgetList controls_of(std::size_t row) const;
    /// Fits rows and clipping frame to the fonts and the style that the controls have by now.
    void fit_rows();
    int row_width() const;
    void VScroll1_Change(int value);
    void scroll_to(const QWidget& control);

    std::int16_t m_highest = -1;
    int m_pitch = 0;
    QFrame* fraDSContainer;
    QFrame* fraDSItems;
    QScrollBar* VScroll1;
    QPushButton* cmdDSAdd;
    QPushButton* cmdDSDelete;
    QLabel* m_heading;
    QLabel* m_hint;
    QGridLayout* m_grid;
    std::vector<QCheckBox*> chkDSApply;
    std::vector<QLabel*> lblDSNum;
    std::vector<QLabel*> lblDSLabel1;
    std::vector<QComboBox*> cboDSTheme;
    std::vector<QLabel*> lblDSLabel2;
    std::vector<QComboBox*> cboDSToClass;
};

namespace basISModelUtil {

/// Adds a scenario row. Without a coefficient set this is refused in a box, and the set's list gets the focus.
/// \return a sentence for each layer that is left out because its source cannot be opened.
std::vector<std::string> AddDS(ScenarioRows& rows, QComboBox& cboLCType, const clsISModelProperties& store,
                               const contracts::Map& map);

/// Asks which row to delete, and deletes it.
void RemoveDS(ScenarioRows& rows);

}  // namespace basISModelUtil

}  // namespace kestrel
