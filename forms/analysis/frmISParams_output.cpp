// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QFocusEvent>
#include <QScopedValueRollback>

#include "base/files.h"
#include "forms/analysis/form_texts.h"
#include "forms/analysis/frmISParams.h"
#include "parameters/basISModelUtil.h"
#include "reporting/error_report.h"

/// \file
/// The parameter form's output: what leaving the box of its name does.
namespace kestrel {

using reporting::current_interaction;

namespace {

constexpr const char* kModule = "ISParams";

/// The button that the mouse is pressing, if that is where the focus has gone.
QAbstractButton* button_being_pressed() {
    return QApplication::mouseButtons() == Qt::NoButton ? nullptr
                                                        : qobject_cast<QAbstractButton*>(QApplication::focusWidget());
}

/// Whether a focus event means that the box itself was entered or left, and not its window, or the box for a menu.
bool of_the_box(const QEvent& event) {
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(event).reason();
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
}

}  // namespace

bool frmISParams::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtOutputTheme && event->type() == QEvent::FocusIn && of_the_box(*event)) {
        txtOutputTheme_GotFocus();
    } else if (watched == txtOutputTheme && event->type() == QEvent::FocusOut && of_the_box(*event)) {
        txtOutputTheme_Validate();
    }
    return QDialog::eventFilter(watched, event);
}

void frmISParams::txtOutputTheme_GotFocus() {
    m_output_pending = true;
}

void frmISParams::txtOutputTheme_Change() {
    m_output_pending = !m_applying_rules;
}

void frmISParams::txtOutputTheme_Validate() try {
    if (QAbstractButton* pressed = button_being_pressed()) {
        // A box that opened now would swallow the click. The button's own procedure comes first, and those that need
        // the name apply the rules themselves.
        connect(pressed, &QAbstractButton::released, this, &frmISParams::leave_output_box_late,
                static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
        return;
    }
    leave_output_box();
} catch (...) {
    report_current({"txtOutputTheme_Validate", kModule});
}

/// The button that took the focus has been released.
void frmISParams::leave_output_box_late() try {
    if (auto* const button = qobject_cast<QAbstractButton*>(sender())) {
        disconnect(button, &QAbstractButton::released, this, &frmISParams::leave_output_box_late);
    }
    if (m_map != nullptr && !m_running && !txtOutputTheme->hasFocus()) {
        leave_output_box();
    }
} catch (...) {
    report_current({"txtOutputTheme_Validate", kModule});
}

void frmISParams::leave_output_box() {
    if (m_output_pending && !m_applying_rules) {
        m_output_pending = false;
        const QScopedValueRollback<bool> applying(m_applying_rules, true);
        apply_output_rules();
    }
}

void frmISParams::apply_output_rules() {
    const basISModelUtil::OutputName name = basISModelUtil::completed_output_name(
        txtOutputTheme->text().toStdString(), base::temporary_folder(), m_extension_folder);
    txtOutputTheme->setText(QString::fromStdString(name.path));
    if (name.path.empty()) {
        return;
    }
    txtThemeName->setText(QString::fromStdString(basISModelUtil::SetThemeName(name.file_name)));
    m_land_cover_position = cboLCTheme->currentIndex();
    m_analysis_position = cboAnalysisTheme->currentIndex();
    m_field_position = cboAnalysisUnit->currentIndex();
    m_output_file = name.file_name;
    m_output_folder = name.folder;
    if (!name.chosen_folder.empty()) {
        current_interaction().message_box(form_texts::other_output_folder(name.chosen_folder));
    }
}

void frmISParams::cmdOutputBrowse_Click() try {
    const auto path = current_interaction().file_dialog(form_texts::output_file());
    const QString chosen = QString::fromStdString(path.value_or("")).trimmed();
    txtOutputTheme->setText(chosen.isEmpty() ? QStringLiteral("kestrel") : chosen);
    txtOutputTheme->setFocus();
} catch (...) {
    report_current({"cmdOutputBrowse_Click", kModule});
}

void frmISParams::RefreshForm() try {
    if (m_analysis_position < cboAnalysisTheme->count()) {
        cboAnalysisTheme->setCurrentIndex(m_analysis_position);
    }
    cboLCTheme->setCurrentIndex(m_land_cover_position);
    cboAnalysisUnit->setCurrentIndex(m_field_position);
    txtOutputTheme->clear();
    txtThemeName->clear();
    m_output_pending = false;
} catch (...) {
    report_current({"RefreshForm", kModule});
}

}  // namespace kestrel
