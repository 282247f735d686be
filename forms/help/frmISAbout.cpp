// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/help/frmISAbout.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "forms/help/about_texts.h"
#include "records/contact.h"
#include "reporting/error_report.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "frmISAbout";
constexpr int kLineCharacters = 72;

QLabel* text_label(const char* name) {
    auto* const label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

}  // namespace

frmISAbout::frmISAbout(std::string extension_folder, QWidget* parent)
    : QDialog(parent),
      m_extension_folder(std::move(extension_folder)),
      lblVersion(text_label("lblVersion")),
      lblDescription(text_label("lblDescription")),
      lblDisclaimer(text_label("lblDisclaimer")) {
    setObjectName("frmISAbout");
    setWindowTitle("About Kestrel");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    build_layout();
    connect(cmdOK, &QPushButton::clicked, this, &frmISAbout::cmdOK_Click);
}

void frmISAbout::build_layout() {
    auto* const heading = text_label("lblName");
    heading->setText("Kestrel");
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 2);
    large.setBold(true);
    heading->setFont(large);
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");

    const int width = kLineCharacters * fontMetrics().averageCharWidth();
    auto* const layout = new QVBoxLayout(this);
    layout->setSpacing(fontMetrics().lineSpacing() / 2);
    for (QWidget* const part :
         std::initializer_list<QWidget*>{heading, lblVersion, lblDescription, line, lblDisclaimer}) {
        part->setMinimumWidth(width);
        layout->addWidget(part);
    }
    layout->addWidget(buttons);
    // As high as the texts need it, whatever is configured.
    layout->setSizeConstraint(QLayout::SetFixedSize);
    cmdOK->setDefault(true);  // only now that it belongs to the dialog
}

void frmISAbout::setVisible(bool visible) {
    if (visible && !isVisible()) {
        Form_Load();
    }
    QDialog::setVisible(visible);
}

void frmISAbout::Form_Load() try {
    lblVersion->setText(QString::fromStdString(
        about_texts::version(KESTREL_VERSION_MAJOR, KESTREL_VERSION_MINOR, KESTREL_VERSION_PATCH)));
    lblDescription->setText(about_texts::kDescription);
    lblDisclaimer->setText(QString::fromStdString(about_texts::disclaimer(read_contact(m_extension_folder).e_mail)));
    cmdOK->setFocus();
} catch (...) {
    report_current({"Form_Load", kModule});
}

void frmISAbout::cmdOK_Click() try { accept(); } catch (...) {
    report_current({"cmdOK_Click", kModule});
}

}  // namespace kestrel
