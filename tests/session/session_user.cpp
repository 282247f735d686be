// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/session/session_user.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTest>

#include "tests/support/user_actions.h"

namespace kestrel::test {

namespace {
constexpr int kEveryMilliseconds = 5;
}

QWidget* visible_window(const std::string& name) {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName().toStdString() == name) {
            return widget;
        }
    }
    return nullptr;
}

SessionUser::SessionUser() {
    QObject::connect(&m_timer, &QTimer::timeout, this, &SessionUser::look);
    m_timer.start(kEveryMilliseconds);
}

void SessionUser::look() {
    if (m_busy) {
        return;
    }
    const QScopedValueRollback<bool> busy(m_busy, true);
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        deal_with(*modal);
    } else {
        watch_waiting_window();
    }
}

void SessionUser::deal_with(QWidget& modal) {
    modal.activateWindow();
    if (auto* const box = qobject_cast<QMessageBox*>(&modal)) {
        boxes.push_back((box->windowTitle() + ": " + box->text()).toStdString());
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    } else if (auto* const input = qobject_cast<QInputDialog*>(&modal); input != nullptr && !answers.empty()) {
        questions.push_back((input->windowTitle() + ": " + input->labelText()).toStdString());
        QTest::keyClicks(input->findChild<QLineEdit*>(), QString::fromStdString(answers.front()));
        answers.erase(answers.begin());
        QTest::keyClick(input, Qt::Key_Return);
    } else if (const auto act = in_dialog.find(modal.objectName().toStdString()); act != in_dialog.end()) {
        act->second(dynamic_cast<QDialog&>(modal));
    } else {
        strange.push_back(modal.objectName().toStdString() + ": " + modal.windowTitle().toStdString());
    }
    if (modal.isVisible()) {
        modal.close();  // whatever went wrong, the session must go on
    }
}

void SessionUser::watch_waiting_window() {
    const QWidget* const window = visible_window("frmISProcessing");
    if (window == nullptr) {
        return;
    }
    waiting_window_seen = true;
    const int value = control_in<QProgressBar>(*window, "barProgress").value();
    if (cancels && value > 0 && cancelled_at.empty()) {
        cancelled_at.push_back(value);
        QTest::mouseClick(&control_in<QPushButton>(*window, "cmdCancel"), Qt::LeftButton);
    }
}

}  // namespace kestrel::test
