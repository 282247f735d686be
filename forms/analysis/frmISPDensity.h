// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "contracts/application.h"
#include "forms/analysis/form_rules.h"
#include "parameters/model_parameters.h"

class QGridLayout;

namespace kestrel {

/// Asks for the population density layer, its density field and the two bounds. OK hides the dialog; what it holds
/// stays for the parameter form until that unloads it, which it does when the dialog was cancelled.
class frmISPDensity final : public QDialog {
    Q_OBJECT
  public:
    explicit frmISPDensity(QWidget* parent = nullptr);

    /// The host; set before Form_Load().
    void Application(contracts::Application* app) { m_app = app; }
    /// Lists the map's layers and the fields of the first. Called once, before the dialog is shown or asked for
    /// anything.
    void Form_Load();

    /// Shown again, it lists the layers that the map has by then, and keeps what is chosen.
    void setVisible(bool visible) override;

    DensityState state() const;
    /// Fills the density settings.
    void write_into(ModelParameters& choices) const;

  private:
    contracts::Map& map() const;
    void build_controls();
    void build_layout();
    void build_bounds(QGridLayout& grid, int first_row);
    void cboPDenTheme_Click();
    void txtHigh_Change(const QString& text);
    void txtLow_Change(const QString& text);
    void cmdOK_Click();
    void cmdCancel_Click();
    /// Tells the first rule that is broken. \return whether there is none.
    bool ValidatePDenForm();
    void list_again();
    void tell_left_out(const std::vector<std::string>& reasons);

    contracts::Application* m_app = nullptr;
    bool m_loaded = false;
    std::set<std::string> m_told;

    std::array<QLabel*, 5> Label1{};
    std::array<QLabel*, 4> Label2{};
    QComboBox* cboPDenTheme;
    QComboBox* cboPDenFld;
    QLineEdit* txtHigh;
    QLineEdit* txtLow;
    /// The Low and the High bound, as the Medium row repeats them.
    std::array<QLineEdit*, 2> txtMed{};
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace kestrel
