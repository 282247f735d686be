// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/name_list.h"

#include <QAbstractItemView>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace kestrel {

NameList::NameList(const QString& name, int characters, const QString& when_empty) {
    setObjectName(name);
    setPlaceholderText(when_empty);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(characters);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void NameList::showPopup() {
    const int bar = view()->verticalScrollBar()->sizeHint().width();
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + bar);
    QComboBox::showPopup();
}

/// Some versions of Qt leave a placeholder out where nothing can be typed.
void NameList::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox look;
    initStyleOption(&look);
    painter.drawComplexControl(QStyle::CC_ComboBox, look);
    if (currentIndex() < 0) {
        look.currentText = placeholderText();
        QColor pale = look.palette.color(QPalette::ButtonText);
        pale.setAlphaF(0.5);
        look.palette.setColor(QPalette::ButtonText, pale);
    }
    painter.drawControl(QStyle::CE_ComboBoxLabel, look);
}

}  // namespace kestrel
