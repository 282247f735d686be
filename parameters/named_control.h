// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemView>
#include <QComboBox>
#include <QScrollBar>
#include <QString>

/// \file
/// Controls by their names, which is what tests find them by.
namespace kestrel {

template <typename Control>
Control* named(const QString& name, Control* control) {
    control->setObjectName(name);
    return control;
}

/// Name of an element of an array of controls: "chkDSApply(0)".
inline QString element_name(const char* array, std::size_t position) {
    return QString("%1(%2)").arg(array).arg(position);
}

/// A drop-down list that keeps its width however long its entries are; opened, it is as wide as the longest.
class NameList final : public QComboBox {
  public:
    NameList(const QString& name, int characters) {
        setObjectName(name);
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(characters);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    void showPopup() override {
        const int bar = view()->verticalScrollBar()->sizeHint().width();
        view()->setMinimumWidth(view()->sizeHintForColumn(0) + bar);
        QComboBox::showPopup();
    }
};

}  // namespace kestrel
