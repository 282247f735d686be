// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/frmAddLCType.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

#include "forms/coefficients/combo_boxes.h"
#include "forms/coefficients/editor_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {
constexpr const char* kModule = "ISAddLCType";
constexpr int kNameCharacters = 34;
}  // namespace

frmAddLCType::frmAddLCType(const clsISModelProperties& props, QComboBox& list, CoefficientGrid& grid, QWidget* parent)
    : QDialog(parent),
      m_props(props),
      m_list(list),
      m_grid(grid),
      txtLCType(new QLineEdit),
      ChkModelAfter(new QCheckBox("Start as a copy of an &existing set")),
      Label1(new QLabel("Existing &set:")),
      cboLCType(new QComboBox) {
    setObjectName("frmAddLCType");
    setWindowTitle("New Coefficient Set");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    build_layout();
    connect(ChkModelAfter, &QCheckBox::toggled, this, &frmAddLCType::ChkModelAfter_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmAddLCType::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmAddLCType::cmdCancel_Click);
}

void frmAddLCType::build_layout() {
    txtLCType->setObjectName("txtLCType");
    txtLCType->setAccessibleName("Name of the new set");
    txtLCType->setMinimumWidth(kNameCharacters * fontMetrics().averageCharWidth());
    ChkModelAfter->setObjectName("ChkModelAfter");
    Label1->setObjectName("Label1");
    cboLCType->setObjectName("cboLCType");
    cboLCType->setAccessibleName("Existing set");
    Label1->setBuddy(cboLCType);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    cmdCancel = buttons->button(QDialogButtonBox::Cancel);
    cmdCancel->setObjectName("cmdCancel");

    auto* fields = new QFormLayout;
    fields->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    fields->addRow("&Name of the new set:", txtLCType);
    fields->addRow(ChkModelAfter);
    fields->addRow(Label1, cboLCType);
    auto* all = new QVBoxLayout(this);
    all->addLayout(fields);
    all->addStretch(1);
    all->addWidget(buttons);
    cmdOK->setDefault(true);  // only now that it belongs to the dialog
}

void frmAddLCType::setVisible(bool visible) {
    if (visible && !isVisible()) {
        Form_Load();
    }
    QDialog::setVisible(visible);
}

void frmAddLCType::Form_Load() try {
    basUtil::LoadLCTypeCombobox(*cboLCType, m_props);
    ChkModelAfter->setChecked(false);
    ChkModelAfter_Click();
    txtLCType->setFocus();
} catch (...) {
    report_current({"Form_Load", kModule});
}

void frmAddLCType::ChkModelAfter_Click() try {
    cboLCType->setEnabled(ChkModelAfter->isChecked());
    Label1->setEnabled(ChkModelAfter->isChecked());
} catch (...) {
    report_current({"ChkModelAfter_Click", kModule});
}

void frmAddLCType::cmdOK_Click() try {
    const QString name = txtLCType->text().trimmed();
    if (name.isEmpty()) {
        reject();
        return;
    }
    if (basISModelPropsUtil::inComboBox(m_list, name)) {
        reporting::current_interaction().message_box(editor_texts::set_not_unique(txtLCType->text().toStdString()));
        txtLCType->setFocus();
        txtLCType->selectAll();
        return;
    }
    m_list.addItem(name);
    m_list.setCurrentIndex(m_list.count() - 1);
    if (ChkModelAfter->isChecked() && cboLCType->currentIndex() >= 0) {
        basISModelPropsUtil::LoadLCGrid(m_grid, cboLCType->currentText(), m_props);
    } else {
        basISModelPropsUtil::SetLCGridHeaders(m_grid);
    }
    accept();
} catch (...) {
    report_current({"cmdOK_Click", kModule});
}

void frmAddLCType::cmdCancel_Click() try { reject(); } catch (...) {
    report_current({"cmdCancel_Click", kModule});
}

}  // namespace kestrel
