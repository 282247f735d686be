// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/frmISProcessing.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace kestrel {

namespace {

constexpr int kSteps = 1000;
// Of the text, in characters; a longer one is wrapped.
constexpr int kNarrowest = 60;
constexpr int kWidest = 80;

/// A window inside a modal one is not blocked by it.
QWidget* owner() {
    QWidget* const modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : QApplication::activeWindow();
}

/// An open menu or list would take all input.
void close_popups() {
    while (QWidget* const popup = QApplication::activePopupWidget()) {
        if (!popup->close()) {
            return;
        }
    }
}

/// Of a label's text in that width. What the label itself says depends on the size that it was given last.
int text_height(const QLabel& label, int width) {
    return label.fontMetrics().boundingRect({0, 0, width, QWIDGETSIZE_MAX}, Qt::TextWordWrap, label.text()).height();
}

}  // namespace

frmISProcessing::frmISProcessing(const QString& text, QWidget* parent)
    : QDialog(parent),
      lblMessage(new QLabel(text)),
      lblStep(new QLabel),
      m_bar(new QProgressBar),
      cmdCancel(new QPushButton("&Cancel")) {
    setObjectName("frmISProcessing");
    setWindowTitle("Kestrel");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    lblMessage->setObjectName("lblMessage");
    lblMessage->setTextFormat(Qt::PlainText);
    lblMessage->setWordWrap(true);
    lblStep->setObjectName("lblStep");
    lblStep->setTextFormat(Qt::PlainText);
    lblStep->setWordWrap(true);
    lblStep->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_bar->setObjectName("barProgress");
    m_bar->setAccessibleName("Progress");
    m_bar->setRange(0, kSteps);
    cmdCancel->setObjectName("cmdCancel");
    cmdCancel->setToolTip("Stop the run; nothing is changed then");
    connect(cmdCancel, &QPushButton::clicked, this, &frmISProcessing::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    layout->addWidget(m_bar);
    layout->addWidget(lblStep);
    layout->addWidget(cmdCancel, 0, Qt::AlignRight);
    setCursor(Qt::ArrowCursor);  // its owner's may be the hourglass
}

void frmISProcessing::show_progress(double fraction, const QString& text) {
    m_bar->setValue(static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * kSteps)));
    if (!m_cancelled) {
        lblStep->setText(text);
    }
}

void frmISProcessing::reject() {
    m_cancelled = true;
    cmdCancel->setEnabled(false);
    lblStep->setText("Cancelling...");
}

bool frmISProcessing::event(QEvent* event) {
    // Esc is this window's, also where the host has a shortcut of that key.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    const bool done = QDialog::event(event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::LayoutRequest) {
        fit_texts();
    }
    return done;
}

void frmISProcessing::fit_texts() {
    lblMessage->ensurePolished();  // only now it has the font of the style
    lblStep->ensurePolished();
    const QFontMetrics metrics = lblMessage->fontMetrics();
    const int character = metrics.averageCharWidth();
    const int width =
        std::clamp(metrics.horizontalAdvance(lblMessage->text()), kNarrowest * character, kWidest * character);
    lblMessage->setMinimumSize(width, text_height(*lblMessage, width));
    // Room for two lines, so that the window does not jump from step to step.
    lblStep->setMinimumHeight(std::max(2 * lblStep->fontMetrics().lineSpacing(), text_height(*lblStep, width)));
}

ProcessingWindow::ProcessingWindow(const QString& text) : m_window(new frmISProcessing(text, owner())) {
    close_popups();
    m_filter = std::make_unique<InputFilter>(*m_window);
    m_window->show();
    m_window->activateWindow();
    QApplication::processEvents();
}

ProcessingWindow::~ProcessingWindow() {
    m_beside.reset();
    m_filter.reset();
    delete m_window.data();
    if (m_closed) {
        m_closed();
    }
}

bool ProcessingWindow::report(double fraction, std::string_view text) {
    if (m_beside) {
        m_beside->report(fraction, text);
    }
    if (m_window != nullptr) {
        m_window->show_progress(fraction, QString::fromUtf8(text.data(), static_cast<int>(text.size())));
    }
    QApplication::processEvents();
    return !cancelled();
}

}  // namespace kestrel
