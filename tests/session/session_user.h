// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QDialog;
class QWidget;

namespace kestrel::test {

/// Who sits before the desktop: deals with the boxes that open, by keys and mouse, and cancels runs. Needs no call: it
/// looks at the screen all the time.
class SessionUser final : public QObject {
  public:
    SessionUser();

    /// What is done with a dialog of that object name; it must close it.
    std::map<std::string, std::function<void(QDialog&)>> in_dialog;
    /// What is typed into the next input boxes.
    std::vector<std::string> answers;
    /// Presses Cancel in the waiting window as soon as the bar stands above nothing.
    bool cancels = false;

    // What was seen.
    /// Title and text of every message box.
    std::vector<std::string> boxes;
    /// Dialogs that nobody had foreseen. They were closed.
    std::vector<std::string> strange;
    std::vector<std::string> questions;
    /// How far the bar stood when Cancel was pressed; nothing unless it was.
    std::vector<int> cancelled_at;
    bool waiting_window_seen = false;

  private:
    void look();
    void deal_with(QWidget& modal);
    void watch_waiting_window();

    QTimer m_timer;
    bool m_busy = false;
};

/// The visible window of that object name; nothing when there is none.
QWidget* visible_window(const std::string& name);

}  // namespace kestrel::test
