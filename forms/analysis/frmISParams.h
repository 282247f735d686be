// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "coefficients/clsISModelProperties.h"
#include "contracts/application.h"
#include "forms/analysis/form_rules.h"
#include "forms/analysis/frmISPDensity.h"
#include "forms/analysis/scenario_rows.h"
#include "parameters/run_output.h"
#include "running/carry_out_run.h"

class QButtonGroup;

namespace kestrel {

/// The analysis parameter form: where the user sets up a run, and starts it. Loads the coefficient store and lists the
/// map's layers when it is opened, and follows the map until it is quit.
///
/// A run processes the events of the host. While it lasts the form takes no input, cannot be closed, and leaves its
/// lists as they are; it may be destroyed.
class frmISParams final : public QDialog, private contracts::MapEvents {
    Q_OBJECT
  public:
    /// \param extension_folder holds the store in `etc`, and `temp` and `output`.
    explicit frmISParams(std::string extension_folder, QWidget* parent = nullptr);
    ~frmISParams() override;

    /// The host; set before the form is shown for the first time. It outlives the form.
    void Application(contracts::Application* app) { m_app = app; }

    /// Showing a form that is not loaded loads it; it stays closed when that fails.
    void setVisible(bool visible) override;
    /// Esc and the close button do what Quit does.
    void reject() override { cmdISQuit_Click(); }

    /// Puts back the list positions that were remembered when the output was named, and empties the output's names.
    void RefreshForm();

  private:
    // The window.
    void build_controls();
    void build_options();
    void build_buttons();
    void build_layout();
    void order_tabs();
    void connect_controls();

    // Events.
    /// \return whether there is something to show.
    bool Form_Load();
    void Form_Unload();
    void cboAnalysisTheme_Click();
    void cboLCType_Click();
    void optPopDensity_MouseUp(int index);
    void txtOutputTheme_Change();
    void txtOutputTheme_GotFocus();
    void txtOutputTheme_Validate();
    void cmdOutputBrowse_Click();
    void cmdDSAdd_Click();
    void cmdDSDelete_Click();
    void cmdISRun_Click();
    void cmdISQuit_Click();
    void cmdISHelp_Click();
    void layer_added() override { refresh_lists("ItemAdded"); }
    void layer_deleted() override { refresh_lists("ItemDeleted"); }
    void layers_reordered() override { refresh_lists("ItemReordered"); }
    void document_opened() override { refresh_lists("OpenDocument"); }

    bool eventFilter(QObject* watched, QEvent* event) override;

    contracts::Map& map() const;
    void empty_controls();
    void fill_layer_lists();
    void refresh_lists(const char* event);
    /// Tells each sentence once while the form is loaded.
    void tell_once(const std::vector<std::string>& sentences);
    void show_density_dialog();
    /// Loads the density dialog where it is not loaded.
    frmISPDensity& density();
    void apply_output_rules();
    /// Applies the rules of the output's name if the box was not left since it was entered or changed.
    void leave_output_box();
    void leave_output_box_late();

    /// Tells the first rule that is broken, and puts the focus where it can be mended. \return whether there is none.
    bool ValidateForm(std::int16_t highest_row);
    FormState state(std::int16_t highest_row);
    QWidget* control_of(FormControl control);
    std::optional<CoefficientOption> coefficient_option() const;
    ModelParameters choices();
    RunOutput output();
    running::RunOrder order();
    void run();
    /// Tells why the run cannot begin, and puts the focus where that can be mended.
    void tell(const running::RunRefusal& refusal);
    class Running;
    void begin_run();
    void end_run();

    std::string m_extension_folder;
    contracts::Application* m_app = nullptr;
    /// What is listened to; nothing when the form is not loaded.
    contracts::Map* m_map = nullptr;
    clsISModelProperties m_props;
    std::unique_ptr<frmISPDensity> m_density;
    std::set<std::string> m_told;
    bool m_running = false;
    bool m_refresh_due = false;
    QPointer<QWidget> m_focus_before_run;

    // The output's name, split; and whether the rules have yet to be applied to what stands in the box.
    std::string m_output_folder;
    std::string m_output_file;
    bool m_output_pending = false;
    bool m_applying_rules = false;
    // Remembered list positions.
    int m_land_cover_position = -1;
    int m_analysis_position = -1;
    int m_field_position = -1;

    QWidget* m_contents;
    QComboBox* cboLCTheme;
    QComboBox* cboLCUnits;
    QComboBox* cboAnalysisTheme;
    QComboBox* cboAnalysisUnit;
    QComboBox* cboLCType;
    QGroupBox* fraPopDensity;
    QButtonGroup* m_options;
    std::vector<QRadioButton*> optPopDensity;
    ScenarioRows* fraDSMain;
    QLineEdit* txtOutputTheme;
    QPushButton* cmdOutputBrowse;
    QLineEdit* txtThemeName;
    QPushButton* cmdISRun;
    QPushButton* cmdISQuit;
    QPushButton* cmdISHelp;
};

}  // namespace kestrel
