// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/frmISPDensity.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "base/errors.h"
#include "forms/analysis/name_list.h"
#include "forms/analysis/named_control.h"
#include "forms/analysis/parameter_controls.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

using reporting::current_interaction;

namespace {

constexpr const char* kModule = "ISPDensity";
constexpr int kNameCharacters = 30;
constexpr int kNumberCharacters = 10;

/// Rows of the table of bounds, from its first.
enum BoundRow : int { kHigh, kMedium, kLow };
/// Columns of the dialog.
enum Column : int { kCaption, kRelation, kFirstBound, kAnd, kSecondBound, kRest };

/// A box that is as wide as a number needs in the font that it has.
class NumberBox final : public QLineEdit {
  public:
    NumberBox() { setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); }
    QSize sizeHint() const override {
        ensurePolished();
        const int frame = QLineEdit::minimumSizeHint().width();  // with room for one character
        return {frame + fontMetrics().horizontalAdvance(QString(kNumberCharacters, '0')),
                QLineEdit::sizeHint().height()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }
};

}  // namespace

frmISPDensity::frmISPDensity(QWidget* parent) : QDialog(parent) {
    setObjectName("frmISPDensity");
    setWindowTitle("Population Density Calculation");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);
    build_controls();
    build_layout();
    connect(cboPDenTheme, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &frmISPDensity::cboPDenTheme_Click);
    connect(txtHigh, &QLineEdit::textChanged, this, &frmISPDensity::txtHigh_Change);
    connect(txtLow, &QLineEdit::textChanged, this, &frmISPDensity::txtLow_Change);
    connect(cmdOK, &QPushButton::clicked, this, &frmISPDensity::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmISPDensity::cmdCancel_Click);
}

void frmISPDensity::build_controls() {
    const auto label = [](const char* array, std::size_t position, const char* text) {
        return named(element_name(array, position), new QLabel(text));
    };
    const char* const captions[] = {"&Pop. Density Layer", "&Definition Field", "&High", "Medium", "&Low"};
    for (std::size_t i = 0; i < Label1.size(); ++i) {
        Label1[i] = label("Label1", i, captions[i]);
    }
    const char* const relations[] = {">=", "<=", "between", "AND"};
    for (std::size_t i = 0; i < Label2.size(); ++i) {
        Label2[i] = label("Label2", i, relations[i]);
    }
    cboPDenTheme = new NameList("cboPDenTheme", kNameCharacters, "(choose a layer)");
    cboPDenTheme->setToolTip("The polygon layer that holds the population density");
    cboPDenFld = new NameList("cboPDenFld", kNameCharacters, "(choose a field)");
    cboPDenFld->setToolTip("The field with the density: a number");
    txtHigh = named("txtHigh", new NumberBox);
    txtHigh->setToolTip("From this density on, the High coefficients are taken");
    txtLow = named("txtLow", new NumberBox);
    txtLow->setToolTip("Up to this density, the Low coefficients are taken");
    for (std::size_t i = 0; i < txtMed.size(); ++i) {
        txtMed[i] = named(element_name("txtMed", i), new NumberBox);
        txtMed[i]->setReadOnly(true);
        txtMed[i]->setFocusPolicy(Qt::NoFocus);
        txtMed[i]->setEnabled(false);  // looks like what it is: a mirror
        txtMed[i]->setAccessibleName(i == 0 ? "Medium: above the Low bound" : "Medium: below the High bound");
    }
    Label1[0]->setBuddy(cboPDenTheme);
    Label1[1]->setBuddy(cboPDenFld);
    Label1[2]->setBuddy(txtHigh);
    Label1[4]->setBuddy(txtLow);
    txtHigh->setAccessibleName("High: density at or above");
    txtLow->setAccessibleName("Low: density at or below");
    cmdOK = named("cmdOK", new QPushButton("OK"));
    cmdCancel = named("cmdCancel", new QPushButton("Cancel"));
}

void frmISPDensity::build_layout() {
    auto* grid = new QGridLayout;
    grid->addWidget(Label1[0], 0, kCaption);
    grid->addWidget(cboPDenTheme, 0, kRelation, 1, -1);
    grid->addWidget(Label1[1], 1, kCaption);
    grid->addWidget(cboPDenFld, 1, kRelation, 1, -1);
    build_bounds(*grid, 2);
    grid->setColumnStretch(kRest, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* all = new QVBoxLayout(this);
    all->addLayout(grid);
    all->addStretch(1);
    all->addLayout(buttons);
    cmdOK->setDefault(true);
    QWidget* previous = cboPDenTheme;
    const std::initializer_list<QWidget*> order = {cboPDenFld, txtHigh, txtLow, cmdOK, cmdCancel};
    for (QWidget* control : order) {
        setTabOrder(previous, control);
        previous = control;
    }
}

void frmISPDensity::build_bounds(QGridLayout& grid, int first_row) {
    grid.addWidget(Label1[2], first_row + kHigh, kCaption);
    grid.addWidget(Label2[0], first_row + kHigh, kRelation);
    grid.addWidget(txtHigh, first_row + kHigh, kFirstBound);
    grid.addWidget(Label1[3], first_row + kMedium, kCaption);
    grid.addWidget(Label2[2], first_row + kMedium, kRelation);
    grid.addWidget(txtMed[0], first_row + kMedium, kFirstBound);
    grid.addWidget(Label2[3], first_row + kMedium, kAnd);
    grid.addWidget(txtMed[1], first_row + kMedium, kSecondBound);
    grid.addWidget(Label1[4], first_row + kLow, kCaption);
    grid.addWidget(Label2[1], first_row + kLow, kRelation);
    grid.addWidget(txtLow, first_row + kLow, kFirstBound);
}

contracts::Map& frmISPDensity::map() const {
    if (m_app == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "Object variable not set");
    }
    return m_app->document().focus_map();
}

void frmISPDensity::Form_Load() try {
    const contracts::Map& focus_map = map();
    m_loaded = true;
    tell_left_out(basISModelUtil::CheckLayers(*cboPDenTheme, basISModelUtil::LayerKind::FeatureLayer, focus_map,
                                              basISModelUtil::kNumericFields));
    cboPDenTheme_Click();
} catch (...) {
    report_current({"Form_Load", kModule});
}

void frmISPDensity::setVisible(bool visible) {
    if (visible && !isVisible() && m_loaded) {
        list_again();
        cboPDenTheme->setFocus();
    }
    QDialog::setVisible(visible);
}

/// The map may have changed while the dialog was hidden.
void frmISPDensity::list_again() try {
    const contracts::Map& focus_map = map();
    QComboBox layers;
    tell_left_out(basISModelUtil::CheckLayers(layers, basISModelUtil::LayerKind::FeatureLayer, focus_map,
                                              basISModelUtil::kNumericFields));
    basISModelUtil::copy_items(layers, *cboPDenTheme);
    QComboBox fields;
    basISModelUtil::LoadFldsCombobox(basISModelUtil::selected_features(*cboPDenTheme, focus_map).get(), fields,
                                     basISModelUtil::kNumericFields);
    basISModelUtil::copy_items(fields, *cboPDenFld);
} catch (...) {
    report_current({"Form_Load", kModule});
}

/// A layer that was told of once in this dialog is not told of again.
void frmISPDensity::tell_left_out(const std::vector<std::string>& reasons) {
    for (const std::string& reason : reasons) {
        if (m_told.insert(reason).second) {
            current_interaction().notice(reason);
        }
    }
}

void frmISPDensity::cboPDenTheme_Click() try {
    if (cboPDenTheme->currentIndex() < 0) {
        return;
    }
    const auto layer = basISModelUtil::selected_features(*cboPDenTheme, map());
    basISModelUtil::LoadFldsCombobox(layer.get(), *cboPDenFld, basISModelUtil::kNumericFields);
    cboPDenFld->setCurrentIndex(cboPDenFld->count() > 0 ? 0 : -1);
} catch (...) {
    report_current({"cboPDenTheme_Click", kModule});
}

void frmISPDensity::txtHigh_Change(const QString& text) try { txtMed[1]->setText(text); } catch (...) {
    report_current({"txtHigh_Change", kModule});
}

void frmISPDensity::txtLow_Change(const QString& text) try { txtMed[0]->setText(text); } catch (...) {
    report_current({"txtLow_Change", kModule});
}

void frmISPDensity::cmdOK_Click() try {
    if (ValidatePDenForm()) {
        accept();
    }
} catch (...) {
    report_current({"cmdOK_Click", kModule});
}

void frmISPDensity::cmdCancel_Click() try { reject(); } catch (...) {
    report_current({"cmdCancel_Click", kModule});
}

bool frmISPDensity::ValidatePDenForm() try {
    const auto refusal = first_refusal(state());
    if (!refusal) {
        return true;
    }
    current_interaction().message_box(refusal->box);
    QWidget* const controls[] = {cboPDenTheme, cboPDenFld, txtHigh, txtLow};
    controls[static_cast<int>(refusal->control)]->setFocus();
    return false;
} catch (...) {
    return reported<bool>({"ValidatePDenForm", "basISModelUtil"});
}

DensityState frmISPDensity::state() const {
    return {cboPDenTheme->currentIndex() >= 0, cboPDenFld->currentIndex() >= 0, txtHigh->text().toStdString(),
            txtLow->text().toStdString()};
}

void frmISPDensity::write_into(ModelParameters& choices) const {
    choices.density_layer = cboPDenTheme->currentText().toStdString();
    choices.density_field = cboPDenFld->currentText().toStdString();
    choices.density_high = txtHigh->text().toStdString();
    choices.density_low = txtLow->text().toStdString();
    choices.density_medium = {txtMed[0]->text().toStdString(), txtMed[1]->text().toStdString()};
}

}  // namespace kestrel
