// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace kestrel {

/// Shows the report of an unexpected error so that the user can read it and pass it on.
class CallStackWindow final : public QDialog {
    Q_OBJECT
  public:
    explicit CallStackWindow(const QString& text, QWidget* parent = nullptr);

    /// Puts the whole report on the clipboard.
    void copy_all();

  private:
    QString m_text;
    QPlainTextEdit* m_view;
    QPushButton* m_copy;
};

}  // namespace kestrel
