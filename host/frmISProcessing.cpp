// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "host/frmISProcessing.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace kestrel {

namespace {
constexpr int kSteps = 1000;
}

frmISProcessing::frmISProcessing(const QString& text, QWidget* parent)
    : QDialog(parent), lblStep(new QLabel), m_bar(new QProgressBar), cmdCancel(new QPushButton("Cancel")) {
    setObjectName("frmISProcessing");
    setWindowTitle("Kestrel");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* message = new QLabel(text);
    message->setObjectName("lblMessage");
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    lblStep->setObjectName("lblStep");
    lblStep->setTextFormat(Qt::PlainText);
    lblStep->setWordWrap(true);
    m_bar->setObjectName("barProgress");
    m_bar->setAccessibleName("Progress");
    m_bar->setRange(0, kSteps);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdCancel, &QPushButton::clicked, this, &frmISProcessing::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(message);
    layout->addWidget(m_bar);
    layout->addWidget(lblStep);
    layout->addWidget(cmdCancel, 0, Qt::AlignRight);
    setMinimumWidth(50 * fontMetrics().averageCharWidth());
}

void frmISProcessing::show_progress(double fraction, const QString& text) {
    m_bar->setValue(static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * kSteps)));
    lblStep->setText(text);
}

void frmISProcessing::reject() {
    m_cancelled = true;
    cmdCancel->setEnabled(false);
}

ProcessingWindow::ProcessingWindow(const QString& text)
    : m_window(std::make_unique<frmISProcessing>(text, QApplication::activeWindow())) {
    m_window->show();
    QApplication::processEvents();
}

ProcessingWindow::~ProcessingWindow() = default;

bool ProcessingWindow::report(double fraction, std::string_view text) {
    m_window->show_progress(fraction, QString::fromUtf8(text.data(), static_cast<int>(text.size())));
    QApplication::processEvents();
    return !m_window->cancelled();
}

}  // namespace kestrel
