// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/records/frmISTParams.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QFileInfo>
#include <QFormLayout>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <utility>

#include "base/errors.h"
#include "base/files.h"
#include "forms/desktop/fixed_font.h"
#include "forms/records/viewer_texts.h"
#include "records/record_files.h"
#include "reporting/error_report.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "frmISTParams";
constexpr int kTextColumns = 84;
constexpr int kTextLines = 30;
constexpr int kNameCharacters = 20;

}  // namespace

frmISTParams::frmISTParams(QWidget* parent)
    : QDialog(parent),
      cboSelLayers(new QComboBox),
      lstSelLayers(new QListWidget(this)),
      txtTParams(new QPlainTextEdit),
      m_find(new FindBar(*txtTParams, *this)),
      cmdClose(new QPushButton) {
    setObjectName("frmISTParams");
    setWindowTitle(viewer_texts::kNoFile);
    setWindowFlags(Qt::Window);
    build_layout();
    connect(cboSelLayers, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &frmISTParams::cboSelLayers_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmISTParams::cmdClose_Click);
}

void frmISTParams::build_layout() {
    cboSelLayers->setObjectName("cboSelLayers");
    cboSelLayers->setAccessibleName("Layer");
    cboSelLayers->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboSelLayers->setMinimumContentsLength(kNameCharacters);
    lstSelLayers->setObjectName("lstSelLayers");
    lstSelLayers->hide();
    txtTParams->setObjectName("txtTParams");
    txtTParams->setAccessibleName("Text of the layer's file");
    txtTParams->setReadOnly(true);
    // Without a cursor a read-only text could not be gone through and marked by keyboard.
    txtTParams->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtTParams->setFont(fixed_font());
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(cmdClose, QDialogButtonBox::RejectRole);
    cmdClose->setObjectName("cmdClose");
    cmdClose->setText("&Close");
    cmdClose->setDefault(true);

    auto* fields = new QFormLayout;
    fields->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    fields->addRow("&Layer:", cboSelLayers);
    auto* all = new QVBoxLayout(this);
    all->addLayout(fields);
    all->addWidget(txtTParams, 1);
    all->addWidget(m_find);
    all->addWidget(buttons);
    const QFontMetrics metrics(txtTParams->font());
    resize(kTextColumns * metrics.horizontalAdvance('m'), kTextLines * metrics.lineSpacing());
}

void frmISTParams::Application(contracts::Application* application) try { m_application = application; } catch (...) {
    report_current({"Application", kModule});
}

void frmISTParams::FileType(std::string file_type) try {
    m_file_type = std::move(file_type);
    if (isVisible()) {
        activate_later();  // a window that is the active one already is told nothing when it is shown again
    }
} catch (...) {
    report_current({"FileType", kModule});
}

void frmISTParams::setVisible(bool visible) {
    if (visible && !isVisible()) {
        m_shown = {};
        m_find->hide();
        activate_now();
        if (m_layers.empty()) {
            return;
        }
    }
    QDialog::setVisible(visible);
}

bool frmISTParams::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        activate_later();
    }
    return QDialog::event(event);
}

void frmISTParams::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_find->isVisible()) {
        m_find->dismiss();  // the next one closes the window
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmISTParams::activate_later() {
    // The closing of a box of our own makes the window active, too: while one is up nothing is begun.
    if (m_activation_pending || m_activating) {
        return;
    }
    m_activation_pending = true;
    QMetaObject::invokeMethod(this, &frmISTParams::activate_pending, Qt::QueuedConnection);
}

void frmISTParams::activate_pending() {
    m_activation_pending = false;
    if (isVisible()) {
        activate_now();
    }
}

void frmISTParams::activate_now() {
    if (m_activating) {
        return;
    }
    m_activating = true;
    Form_Activate();
    m_activating = false;
}

void frmISTParams::Form_Activate() try {
    const std::vector<FoundLayer> before = std::exchange(m_layers, scan_ParamLayers());
    if (m_layers.empty()) {
        reporting::current_interaction().message_box(viewer_texts::no_files(m_file_type));
        if (isVisible()) {
            close();
        }
        return;
    }
    if (m_layers != before || m_listed_type != m_file_type || m_shown == ShownFile{}) {
        list_layers();
        return;
    }
    // A file that could not be read is tried again only when it has changed: the report of the failure makes the
    // window active when it closes.
    const QFileInfo now(chosen_path());
    if (ShownFile{now.filePath(), now.lastModified(), now.size()} != m_shown) {
        cboSelLayers_Click();
    }
} catch (...) {
    report_current({"Form_Activate", kModule});
}

std::vector<frmISTParams::FoundLayer> frmISTParams::scan_ParamLayers() try {
    if (m_application == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "Object variable not set");
    }
    std::vector<FoundLayer> found;
    for (const auto& layer : feature_layers(m_application->document().focus_map())) {
        std::string folder = GetPath(*layer);
        if (auto name = record_name(*layer, folder, m_file_type)) {
            found.push_back({std::move(*name), std::move(folder)});
        }
    }
    return found;
} catch (...) {
    return reported<std::vector<FoundLayer>>({"ParamLayers", kModule});
}

std::string frmISTParams::GetPath(const contracts::FeatureLayer& layer) try {
    return source_folder(layer.source());
} catch (...) {
    return reported<std::string>({"GetPath", kModule});
}

void frmISTParams::list_layers() {
    const QSignalBlocker quiet(cboSelLayers);
    cboSelLayers->clear();
    lstSelLayers->clear();
    for (const auto& [name, folder] : m_layers) {
        cboSelLayers->addItem(QString::fromStdString(name));
        lstSelLayers->addItem(QString::fromStdString(folder));
    }
    m_listed_type = m_file_type;
    cboSelLayers->setCurrentIndex(0);
    cboSelLayers_Click();
}

QString frmISTParams::chosen_path() const {
    const QListWidgetItem* folder = lstSelLayers->currentItem();
    return (folder == nullptr ? QString() : folder->text()) + cboSelLayers->currentText() + "." +
           QString::fromStdString(m_listed_type);
}

void frmISTParams::cboSelLayers_Click() try {
    lstSelLayers->setCurrentRow(cboSelLayers->currentIndex());
    const QFileInfo file(chosen_path());
    m_shown = {file.filePath(), file.lastModified(), file.size()};
    // With the name of one layer never stands the text or the caption of another, also when reading fails.
    txtTParams->clear();
    setWindowTitle(viewer_texts::kNoFile);
    const std::string text = base::to_utf8(base::read_file(file.filePath().toStdString()));
    txtTParams->setPlainText(QString::fromStdString(text));
    setWindowTitle(
        QString::fromStdString(viewer_texts::caption(m_listed_type, cboSelLayers->currentText().toStdString())));
} catch (...) {
    report_current({"cboSelLayers_Click", kModule});
}

void frmISTParams::cmdClose_Click() try { reject(); } catch (...) {
    report_current({"cmdClose_Click", kModule});
}

}  // namespace kestrel
