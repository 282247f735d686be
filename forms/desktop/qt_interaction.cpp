// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/qt_interaction.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <cstdio>

#include "forms/desktop/call_stack_window.h"
#include "forms/desktop/frmISProcessing.h"

namespace kestrel {

namespace {

QString qt_text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

/// The title of a box that has none of its own.
QString title_of(const std::string& title) {
    return title.empty() ? QStringLiteral("Kestrel") : qt_text(title);
}

QMessageBox::Icon qt_icon(reporting::Icon icon) {
    switch (icon) {
        case reporting::Icon::critical:
            return QMessageBox::Critical;
        case reporting::Icon::question:
            return QMessageBox::Question;
        case reporting::Icon::exclamation:
            return QMessageBox::Warning;
        case reporting::Icon::information:
            return QMessageBox::Information;
        case reporting::Icon::none:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons qt_buttons(reporting::Buttons buttons) {
    switch (buttons) {
        case reporting::Buttons::ok_cancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case reporting::Buttons::yes_no:
            return QMessageBox::Yes | QMessageBox::No;
        case reporting::Buttons::yes_no_cancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case reporting::Buttons::ok:
            break;
    }
    return QMessageBox::Ok;
}

reporting::Answer answer_of(int button) {
    switch (button) {
        case QMessageBox::Yes:
            return reporting::Answer::yes;
        case QMessageBox::No:
            return reporting::Answer::no;
        case QMessageBox::Ok:
            return reporting::Answer::ok;
        default:
            return reporting::Answer::cancel;
    }
}

}  // namespace

QString qt_name_filter(std::string_view filter) {
    const QString text = qt_text(filter);
    const QString patterns = text.section('|', 1, 1).replace(';', ' ');
    // Descriptions bring their patterns along in brackets; Qt would read those instead of the ones behind the bar.
    const QString description = text.section('|', 0, 0).section('(', 0, 0).trimmed();
    return patterns.isEmpty() ? description : QStringLiteral("%1 (%2)").arg(description, patterns);
}

reporting::Answer QtInteraction::message_box(const reporting::MessageBox& box) {
    // Texts break their lines with CR LF or CR, which a label does not know.
    const QString text = qt_text(box.text).replace("\r\n", "\n").replace('\r', '\n');
    QMessageBox window(qt_icon(box.icon), title_of(box.title), text, qt_buttons(box.buttons),
                       QApplication::activeWindow());
    window.setTextFormat(Qt::PlainText);  // names of layers and sets may look like markup
    return answer_of(window.exec());
}

std::string QtInteraction::input_box(const reporting::InputBox& box) {
    bool accepted = false;
    const QString typed = QInputDialog::getText(QApplication::activeWindow(), title_of(box.title), qt_text(box.prompt),
                                                QLineEdit::Normal, QString(), &accepted);
    return accepted ? typed.toStdString() : std::string();
}

std::optional<std::string> QtInteraction::file_dialog(const reporting::FileDialog& dialog) {
    QFileDialog window(QApplication::activeWindow(), title_of(dialog.title));
    window.setNameFilter(qt_name_filter(dialog.filter));
    if (dialog.kind == reporting::FileDialog::Kind::save) {
        window.setAcceptMode(QFileDialog::AcceptSave);
        window.setDefaultSuffix(qt_text(dialog.default_extension));
    } else {
        window.setFileMode(QFileDialog::ExistingFile);
    }
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return QDir::toNativeSeparators(window.selectedFiles().front()).toStdString();
}

void QtInteraction::show_call_stack(std::string_view text) {
    CallStackWindow(qt_text(text), QApplication::activeWindow()).exec();
}

std::unique_ptr<reporting::WaitingWindow> QtInteraction::waiting_window(std::string_view text) {
    auto window = std::make_unique<ProcessingWindow>(qt_text(text));
    if (m_hooks.beside_waiting_window) {
        window->show_beside(m_hooks.beside_waiting_window());
    }
    base::Progress* const progress = window.get();
    m_waiting->push_back(progress);
    window->when_closed([waiting = m_waiting, progress] { std::erase(*waiting, progress); });
    return window;
}

base::Progress& QtInteraction::progress() {
    return m_waiting->empty() ? m_no_progress : *m_waiting->back();
}

void QtInteraction::show_help() {
    if (m_hooks.show_help) {
        m_hooks.show_help();
    } else {
        notice("There is no help window here.");
    }
}

void QtInteraction::notice(std::string_view text) {
    if (m_hooks.notice) {
        m_hooks.notice(text);
    } else {
        std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
    }
}

void QtInteraction::beep() {
    QApplication::beep();
}

}  // namespace kestrel
