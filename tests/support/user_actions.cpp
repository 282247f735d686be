// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/user_actions.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

namespace kestrel::test {

void press(const QWidget& window, const std::string& button) {
    auto& pressed = control_in<QAbstractButton>(window, button);
    QTest::mouseClick(&pressed, Qt::LeftButton, Qt::NoModifier, {8, pressed.height() / 2});
    QApplication::processEvents();
}

void choose_entry(QComboBox& list, const std::string& text) {
    list.setFocus();
    const int wanted = list.findText(QString::fromStdString(text), Qt::MatchExactly | Qt::MatchCaseSensitive);
    ASSERT_GE(wanted, 0) << text << " is not in " << list.objectName().toStdString();
    QTest::keyClick(&list, Qt::Key_Home);
    for (int i = 0; i < list.count() && list.currentIndex() != wanted; ++i)
        QTest::keyClick(&list, Qt::Key_Down);
    ASSERT_EQ(list.currentText().toStdString(), text);
}

}  // namespace kestrel::test
