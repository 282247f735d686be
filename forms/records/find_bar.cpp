// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/records/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShortcut>
#include <QTextCursor>

#include "forms/records/find_words.h"
#include "forms/records/viewer_texts.h"
#include "reporting/error_report.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "find_bar";

/// What is marked, when it lies in one line.
QString marked_words(const QPlainTextEdit& text) {
    const QString marked = text.textCursor().selectedText();
    return marked.contains(QChar::ParagraphSeparator) ? QString() : marked;
}

}  // namespace

FindBar::FindBar(QPlainTextEdit& text, QWidget& window) : m_text(text), txtFind(new QLineEdit), lblFound(new QLabel) {
    setObjectName("fraFind");
    txtFind->setObjectName("txtFind");
    txtFind->setToolTip("Enter or F3: next place; Shift+F3: the one before; Esc: close");
    lblFound->setObjectName("lblFound");
    auto* label = new QLabel("&Find:");
    label->setBuddy(txtFind);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(txtFind, 1);
    row->addWidget(lblFound, 1);
    hide();
    const auto key = [&](const char* keys, void (FindBar::*act)()) {
        connect(new QShortcut(QKeySequence(keys), &window), &QShortcut::activated, this, act);
    };
    key("Ctrl+F", &FindBar::open);
    key("F3", &FindBar::find_next);
    key("Shift+F3", &FindBar::find_previous);
    connect(txtFind, &QLineEdit::textChanged, this, &FindBar::forget_result);
    connect(&m_text, &QPlainTextEdit::textChanged, this, &FindBar::forget_result);
}

void FindBar::open() try {
    const QString marked = marked_words(m_text);
    if (!marked.isEmpty()) {
        txtFind->setText(marked);
    }
    show();
    txtFind->selectAll();
    txtFind->setFocus(Qt::ShortcutFocusReason);
} catch (...) {
    report_current({"open", kModule});
}

void FindBar::dismiss() try {
    m_text.setFocus(Qt::OtherFocusReason);  // before it would go to what comes next
    hide();
    forget_result();
} catch (...) {
    report_current({"dismiss", kModule});
}

void FindBar::find_next() try { find({}); } catch (...) {
    report_current({"find_next", kModule});
}

void FindBar::find_previous() try { find(QTextDocument::FindBackward); } catch (...) {
    report_current({"find_previous", kModule});
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        find_next();  // and not what the window's default button does
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FindBar::find(QTextDocument::FindFlags direction) {
    if (txtFind->text().isEmpty()) {
        open();
        return;
    }
    const FoundWords found = find_words(txtFind->text(), m_text.textCursor(), direction);
    if (found.place.isNull()) {
        lblFound->setText(viewer_texts::kNotFound);
        show();  // F3 finds without the bar, too, but this must be seen
        return;
    }
    m_text.setTextCursor(found.place);
    const bool backward = direction.testFlag(QTextDocument::FindBackward);
    lblFound->setText(!found.around ? "" : backward ? viewer_texts::kFromTheEnd : viewer_texts::kFromTheBeginning);
}

/// It was of other words, or of another text.
void FindBar::forget_result() {
    lblFound->clear();
}

}  // namespace kestrel
