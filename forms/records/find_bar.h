// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QWidget>

namespace kestrel {

/// Finds words in a text, by keyboard: Ctrl+F shows the bar, Enter and F3 go to the next place, Shift+F3 goes to the
/// one before, Esc hides the bar. Upper and lower case make no difference. At an end of the text the search goes on
/// from the other one. Hidden until it is asked for.
class FindBar final : public QWidget {
    Q_OBJECT
  public:
    /// \param text where words are found; it outlives the bar.
    /// \param window in which the keys work; it holds the text and the bar.
    FindBar(QPlainTextEdit& text, QWidget& window);

    /// Where the words are typed.
    QLineEdit& box() { return *txtFind; }

    /// Shows the bar, ready for typing. What is marked in a line of the text is taken over.
    void open();
    /// Hides the bar; the text gets the focus.
    void dismiss();
    /// Without any words these open the bar.
    void find_next();
    void find_previous();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void find(QTextDocument::FindFlags direction);
    void forget_result();

    QPlainTextEdit& m_text;
    QLineEdit* txtFind;
    QLabel* lblFound;
};

}  // namespace kestrel
