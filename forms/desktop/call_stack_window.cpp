// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/call_stack_window.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "forms/desktop/fixed_font.h"

namespace kestrel {

CallStackWindow::CallStackWindow(const QString& text, QWidget* parent)
    : QDialog(parent), m_text(text), m_view(new QPlainTextEdit) {
    setObjectName("callStackWindow");
    setWindowTitle("Kestrel - Unexpected Program Error");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    m_view->setObjectName("callStackText");
    m_view->setAccessibleName("Error report");
    m_view->setReadOnly(true);
    // Readable by keyboard alone, too.
    m_view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_view->setFont(fixed_font());
    m_view->setTabStopDistance(4 * m_view->fontMetrics().horizontalAdvance(' '));
    m_view->setPlainText(m_text);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setObjectName("closeCallStack");
    m_copy = buttons->addButton("&Copy All", QDialogButtonBox::ActionRole);
    m_copy->setObjectName("copyCallStack");
    connect(m_copy, &QPushButton::clicked, this, &CallStackWindow::copy_all);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addWidget(buttons);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);  // only now that it belongs to the dialog
    setSizeGripEnabled(true);
    resize(90 * m_view->fontMetrics().horizontalAdvance('x'), 24 * m_view->fontMetrics().lineSpacing());
}

void CallStackWindow::copy_all() {
    QGuiApplication::clipboard()->setText(m_text);
    m_copy->setText("Copied");
}

}  // namespace kestrel
