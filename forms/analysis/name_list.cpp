// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/name_list.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>

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

bool NameList::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && shown_text() != currentText()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), currentText() + "\n" + toolTip(), this);
        return true;
    }
    return QComboBox::event(event);
}

QString NameList::shown_text() const {
    QStyleOptionComboBox look;
    initStyleOption(&look);
    const QRect room = style()->subControlRect(QStyle::CC_ComboBox, &look, QStyle::SC_ComboBoxEditField, this);
    constexpr int kMargin = 2;  // that styles leave between the field's edges and the text
    return fontMetrics().elidedText(currentText(), Qt::ElideRight, room.width() - kMargin);
}

void NameList::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox look;
    initStyleOption(&look);
    painter.drawComplexControl(QStyle::CC_ComboBox, look);
    look.currentText = shown_text();
    if (currentIndex() < 0) {
        // Some versions of Qt leave a placeholder out where nothing can be typed.
        look.currentText = placeholderText();
        QColor pale = look.palette.color(QPalette::ButtonText);
        pale.setAlphaF(0.5);
        look.palette.setColor(QPalette::ButtonText, pale);
    }
    painter.drawControl(QStyle::CE_ComboBoxLabel, look);
}

}  // namespace kestrel
