// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/extensions_window.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace kestrel::qgis {

ExtensionsWindow::ExtensionsWindow(const ExtensionList& extensions, QWidget* parent)
    : QDialog(parent), m_extensions(extensions), m_list(new QListWidget), m_description(new QLabel) {
    setObjectName("kestrelExtensions");
    setWindowTitle("Extensions");
    m_list->setObjectName("kestrelExtensionList");
    m_list->setAccessibleName("Extensions");
    m_description->setObjectName("kestrelExtensionDescription");
    m_description->setWordWrap(true);
    m_description->setMinimumHeight(2 * fontMetrics().lineSpacing());
    m_description->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto* caption = new QLabel("&Switched-on extensions:");
    caption->setBuddy(m_list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(caption);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_description);
    layout->addWidget(buttons);
    setMinimumWidth(45 * fontMetrics().averageCharWidth());
    connect(m_list, &QListWidget::itemChanged, this, &ExtensionsWindow::item_changed);
    connect(m_list, &QListWidget::currentRowChanged, this, &ExtensionsWindow::describe);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExtensionsWindow::reject);
}

void ExtensionsWindow::setVisible(bool visible) {
    if (visible && !isVisible()) {
        show_states();
    }
    QDialog::setVisible(visible);
}

void ExtensionsWindow::show_states() {
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const ExtensionList::Entry& entry : m_extensions.entries()) {
            auto* item =
                new QListWidgetItem(QString::fromStdString(entry.extension->IExtensionConfig_ProductName()), m_list);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
            item->setCheckState(ExtensionList::switched_on(entry) ? Qt::Checked : Qt::Unchecked);
        }
    }
    m_list->setCurrentRow(0);
    describe(0);
}

void ExtensionsWindow::item_changed(const QListWidgetItem* item) {
    const auto row = static_cast<std::size_t>(m_list->row(item));
    ExtensionList::switch_on(m_extensions.entries().at(row), item->checkState() == Qt::Checked);
    emit states_changed();
}

void ExtensionsWindow::describe(int row) {
    const auto& entries = m_extensions.entries();
    const bool known = row >= 0 && static_cast<std::size_t>(row) < entries.size();
    m_description->setText(
        known ? QString::fromStdString(entries[static_cast<std::size_t>(row)].extension->IExtensionConfig_Description())
              : QString());
}

}  // namespace kestrel::qgis
