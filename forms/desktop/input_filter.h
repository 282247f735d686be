// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace kestrel {

/// While it lives, input by the user reaches one window only, whatever else the application has open. Other events
/// pass, so that everything goes on being painted, and what a window does of its own accord it can do.
///
/// A modal window that opens meanwhile gets its input, too: a message that cannot be answered would hold everything up.
class InputFilter final : public QObject {
  public:
    /// \param window the one that stays open for input.
    explicit InputFilter(QWidget& window);
    ~InputFilter() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool admits(const QObject& watched) const;
    bool admits_window(const QWidget& window) const;
    /// The modal window that has opened since; nothing when there is none.
    QWidget* later_modal_window() const;

    QPointer<QWidget> m_window;
    /// The modal window that there was before.
    QPointer<QWidget> m_modal_before;
};

}  // namespace kestrel
