// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QWidget>

#include "tests/support/failure.h"

namespace kestrel::test {

/// Makes every event of a kind fail on its way to a widget, for procedures that nothing else makes fail.
class FailingEvent final : public QObject {
  public:
    FailingEvent(QWidget& widget, QEvent::Type type) : m_type(type) { widget.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == m_type) {
            fail_denied();
        }
        return false;
    }

  private:
    QEvent::Type m_type;
};

}  // namespace kestrel::test
