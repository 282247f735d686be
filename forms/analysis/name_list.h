// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace kestrel {

/// A drop-down list that keeps its width however long its entries are; opened, it is as wide as the longest. Closed, it
/// cuts a name that is too long with dots, and its tip shows the whole.
class NameList final : public QComboBox {
    Q_OBJECT
  public:
    /// \param characters for which there is room.
    /// \param when_empty what stands there while nothing is chosen.
    NameList(const QString& name, int characters, const QString& when_empty);

    void showPopup() override;
    /// What there is room for of the chosen name.
    QString shown_text() const;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
