// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "coefficients/clsISModelProperties.h"
#include "forms/coefficients/coefficient_grid.h"

namespace kestrel {

/// Asks for the name of a new coefficient set and, if wanted, for the set that it starts as a copy of. Adds nothing to
/// the sets: the new one exists as a name in the editor's list and as rows of the editor's grid.
class frmAddLCType final : public QDialog {
    Q_OBJECT
  public:
    /// \param props the sets that a new one can start from.
    /// \param list the editor's list of sets, which gets the new name.
    /// \param grid the editor's grid, which gets the new set's classes.
    frmAddLCType(const clsISModelProperties& props, QComboBox& list, CoefficientGrid& grid, QWidget* parent = nullptr);

    void setVisible(bool visible) override;

  private:
    void build_layout();
    void Form_Load();
    void ChkModelAfter_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

    const clsISModelProperties& m_props;
    QComboBox& m_list;
    CoefficientGrid& m_grid;

    QLineEdit* txtLCType;
    QCheckBox* ChkModelAfter;
    QLabel* Label1;
    QComboBox* cboLCType;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace kestrel
