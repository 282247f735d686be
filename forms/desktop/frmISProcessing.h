// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>
#include <memory>

#include "forms/desktop/input_filter.h"
#include "reporting/interaction.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace kestrel {

/// The window shown while a run works: a text, a bar, the current step and a Cancel button. Does not block the caller.
class frmISProcessing final : public QDialog {
    Q_OBJECT
  public:
    explicit frmISProcessing(const QString& text, QWidget* parent = nullptr);

    /// \param fraction 0 to 1.
    void show_progress(double fraction, const QString& text);
    bool cancelled() const { return m_cancelled; }

    /// Esc and the close button cancel, too; the window stays until the run has ended.
    void reject() override;

  protected:
    bool event(QEvent* event) override;

  private:
    /// Makes room for the texts in the font that they have by now.
    void fit_texts();

    QLabel* lblMessage;
    QLabel* lblStep;
    QProgressBar* m_bar;
    QPushButton* cmdCancel;
    bool m_cancelled = false;
};

/// frmISProcessing as a run's progress; shown while it lives. It belongs to the window that is active when it is made,
/// and goes with it: the run is stopped then.
class ProcessingWindow final : public reporting::WaitingWindow {
  public:
    explicit ProcessingWindow(const QString& text);
    ~ProcessingWindow() override;

    /// `other` hears what is reported, too, and goes before the window does. It has no say in whether the run goes on.
    void show_beside(std::unique_ptr<base::Progress> other) { m_beside = std::move(other); }
    /// `act` is called when it has closed.
    void when_closed(std::function<void()> act) { m_closed = std::move(act); }

    /// Processes all events that are due; input reaches this window only.
    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override { return m_window == nullptr || m_window->cancelled(); }

  private:
    QPointer<frmISProcessing> m_window;
    std::unique_ptr<InputFilter> m_filter;
    std::unique_ptr<base::Progress> m_beside;
    std::function<void()> m_closed;
};

}  // namespace kestrel
