// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <memory>

#include "platform/contracts/interaction.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace kestrel {

/// The window shown while a run works: a text, a bar and a Cancel button. Does not block the caller.
class frmISProcessing final : public QDialog {
    Q_OBJECT
  public:
    explicit frmISProcessing(const QString& text, QWidget* parent = nullptr);

    /// \param fraction 0 to 1.
    void show_progress(double fraction, const QString& text);
    bool cancelled() const { return m_cancelled; }

    /// Esc and the close button cancel, too; the window stays until the run has ended.
    void reject() override;

  private:
    QLabel* lblStep;
    QProgressBar* m_bar;
    QPushButton* cmdCancel;
    bool m_cancelled = false;
};

/// frmISProcessing as a run's progress; shown while it lives.
class ProcessingWindow final : public platform::WaitingWindow {
  public:
    explicit ProcessingWindow(const QString& text);
    ~ProcessingWindow() override;

    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override { return m_window->cancelled(); }

  private:
    std::unique_ptr<frmISProcessing> m_window;
};

}  // namespace kestrel
