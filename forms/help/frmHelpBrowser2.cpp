// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/help/frmHelpBrowser2.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>
#include <QUrl>

#include "base/files.h"
#include "forms/analysis/named_control.h"
#include "forms/records/find_words.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "isHelpBrowser2";
constexpr int kLineCharacters = 100;
constexpr int kLines = 36;

reporting::MessageBox no_file(const std::string& path) {
    return {"The Kestrel help file (" + path + ") does not exist."};
}

QToolButton* tool_button(const char* name, const char* caption, const char* tip) {
    auto* const button = named(name, new QToolButton);
    button->setText(caption);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

}  // namespace

frmHelpBrowser2::frmHelpBrowser2(std::string extension_folder, QWidget* parent)
    : QDialog(parent), m_extension_folder(std::move(extension_folder)) {
    setObjectName("frmHelpBrowser2");
    setWindowTitle("Kestrel Help");
    setWindowFlags(Qt::Window);
    build_controls();
    build_bar();
    connect_controls();
    add_shortcuts();
    setMinimumSize(m_bar->sizeHint().width() + cmdClose->sizeHint().width(), 12 * fontMetrics().lineSpacing());
    resize(kLineCharacters * fontMetrics().averageCharWidth(), kLines * fontMetrics().lineSpacing());
}

void frmHelpBrowser2::build_controls() {
    brwHelp = named("brwHelp", new QTextBrowser(this));
    brwHelp->setAccessibleName("Help page");
    brwHelp->setOpenLinks(false);  // brwHelp_AnchorClicked() does
    brwHelp->document()->setDocumentMargin(fontMetrics().lineSpacing());
    m_bar = new QWidget(this);
    cmdBack = tool_button("cmdBack", "Back", "The page before (Alt+Left)");
    cmdForward = tool_button("cmdForward", "Forward", "The page after (Alt+Right)");
    cmdHome = tool_button("cmdHome", "Contents", "The first page (Alt+Home)");
    cmdBack->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
    cmdForward->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
    cmdBack->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    cmdForward->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    txtFind = named("txtFind", new QLineEdit);
    txtFind->setPlaceholderText("Find in this page");
    txtFind->setAccessibleName("Find in this page");
    txtFind->setToolTip("Find in this page (Ctrl+F)");
    cmdFindPrevious = tool_button("cmdFindPrevious", "Previous", "The place before (Shift+F3)");
    cmdFindNext = tool_button("cmdFindNext", "Next", "The place after (F3)");
    lblFound = named("lblFound", new QLabel);
    cmdClose = named("cmdClose", new QPushButton("&Close", this));
    cmdClose->setAutoDefault(false);  // Enter belongs to the search
}

void frmHelpBrowser2::build_bar() {
    auto* const layout = new QHBoxLayout(m_bar);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const control : std::initializer_list<QWidget*>{cmdBack, cmdForward, cmdHome}) {
        layout->addWidget(control);
    }
    layout->addStretch(1);
    layout->addWidget(lblFound);
    layout->addWidget(txtFind, 2);
    layout->addWidget(cmdFindPrevious);
    layout->addWidget(cmdFindNext);
    txtFind->setMinimumWidth(20 * fontMetrics().averageCharWidth());
    lblFound->setMinimumWidth(fontMetrics().horizontalAdvance("Not found "));
    lblFound->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void frmHelpBrowser2::connect_controls() {
    connect(cmdBack, &QToolButton::clicked, brwHelp, &QTextBrowser::backward);
    connect(cmdForward, &QToolButton::clicked, brwHelp, &QTextBrowser::forward);
    connect(cmdHome, &QToolButton::clicked, brwHelp, &QTextBrowser::home);
    connect(brwHelp, &QTextBrowser::backwardAvailable, cmdBack, &QToolButton::setEnabled);
    connect(brwHelp, &QTextBrowser::forwardAvailable, cmdForward, &QToolButton::setEnabled);
    connect(brwHelp, &QTextBrowser::anchorClicked, this, &frmHelpBrowser2::brwHelp_AnchorClicked);
    connect(brwHelp, &QTextBrowser::sourceChanged, this, &frmHelpBrowser2::show_title);
    connect(txtFind, &QLineEdit::returnPressed, this, &frmHelpBrowser2::cmdFindNext_Click);
    connect(txtFind, &QLineEdit::textChanged, lblFound, &QLabel::clear);
    connect(cmdFindNext, &QToolButton::clicked, this, &frmHelpBrowser2::cmdFindNext_Click);
    connect(cmdFindPrevious, &QToolButton::clicked, this, &frmHelpBrowser2::cmdFindPrevious_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmHelpBrowser2::cmdClose_Click);
    cmdBack->setEnabled(false);
    cmdForward->setEnabled(false);
}

void frmHelpBrowser2::add_shortcuts() {
    const auto shortcut = [this](const QKeySequence& keys, auto* receiver, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, receiver, slot);
    };
    shortcut(QKeySequence("Alt+Left"), cmdBack, &QToolButton::click);
    shortcut(QKeySequence("Alt+Right"), cmdForward, &QToolButton::click);
    shortcut(QKeySequence("Alt+Home"), cmdHome, &QToolButton::click);
    shortcut(QKeySequence::Find, this, &frmHelpBrowser2::begin_search);
    shortcut(QKeySequence("F3"), this, &frmHelpBrowser2::cmdFindNext_Click);
    shortcut(QKeySequence("Shift+F3"), this, &frmHelpBrowser2::cmdFindPrevious_Click);
}

void frmHelpBrowser2::setVisible(bool visible) {
    if (visible && !isVisible()) {
        Form_Load();
    }
    QDialog::setVisible(visible);
}

std::string frmHelpBrowser2::help_file() const {
    return base::join_path(m_extension_folder, "help/is_index.html");
}

void frmHelpBrowser2::Form_Load() try {
    const std::string path = help_file();
    const bool exists = base::file_exists(path);
    brwHelp->setFocus();
    // Read anew, also when it was the page on view.
    brwHelp->setSource(QUrl());
    brwHelp->clear();
    if (exists) {
        brwHelp->setSource(QUrl::fromLocalFile(QString::fromStdString(path)));
    }
    brwHelp->clearHistory();
    txtFind->clear();
    show_title();
    if (!exists) {
        reporting::current_interaction().message_box(no_file(path));
    }
} catch (...) {
    report_current({"Form_Load", kModule});
}

void frmHelpBrowser2::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    Form_Resize();
}

/// The page takes what the bar above and the button below leave.
void frmHelpBrowser2::Form_Resize() try {
    const int gap = fontMetrics().lineSpacing() / 2;
    const QRect inner = rect().adjusted(gap, gap, -gap, -gap);
    const int bar_height = m_bar->sizeHint().height();
    const QSize button = cmdClose->sizeHint();
    m_bar->setGeometry(inner.left(), inner.top(), inner.width(), bar_height);
    cmdClose->setGeometry(QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignBottom, button, inner));
    brwHelp->setGeometry(inner.adjusted(0, bar_height + gap, 0, -button.height() - gap));
} catch (...) {
    report_current({"Form_Resize", kModule});
}

/// A link to a page that is not there is told: the browser would show an empty page without a word.
void frmHelpBrowser2::brwHelp_AnchorClicked(const QUrl& target) try {
    const std::string path = target.toLocalFile().toStdString();
    if (path.empty()) {
        QDesktopServices::openUrl(target);
    } else if (base::file_exists(path)) {
        brwHelp->setSource(target);
    } else {
        reporting::current_interaction().message_box(no_file(path));
    }
} catch (...) {
    report_current({"brwHelp_AnchorClicked", kModule});
}

/// Enter presses the button that has the focus. None is the default: elsewhere Enter belongs to page and search.
void frmHelpBrowser2::keyPressEvent(QKeyEvent* event) {
    auto* const button = qobject_cast<QAbstractButton*>(focusWidget());
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && button != nullptr) {
        button->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmHelpBrowser2::cmdClose_Click() try { reject(); } catch (...) {
    report_current({"cmdClose_Click", kModule});
}

void frmHelpBrowser2::cmdFindNext_Click() try { find({}); } catch (...) {
    report_current({"cmdFindNext_Click", kModule});
}

void frmHelpBrowser2::cmdFindPrevious_Click() try { find(QTextDocument::FindBackward); } catch (...) {
    report_current({"cmdFindPrevious_Click", kModule});
}

void frmHelpBrowser2::find(QTextDocument::FindFlags direction) {
    const QString text = txtFind->text();
    if (text.isEmpty()) {
        begin_search();
        return;
    }
    const FoundWords found = find_words(text, brwHelp->textCursor(), direction);
    if (!found.place.isNull()) {
        brwHelp->setTextCursor(found.place);
    }
    lblFound->setText(found.place.isNull() ? QStringLiteral("Not found") : QString());
}

void frmHelpBrowser2::begin_search() {
    txtFind->setFocus();
    txtFind->selectAll();
}

void frmHelpBrowser2::show_title() {
    lblFound->clear();
    const QString page = brwHelp->documentTitle();
    setWindowTitle(page.isEmpty() ? QStringLiteral("Kestrel Help") : page + " - Kestrel Help");
}

}  // namespace kestrel
