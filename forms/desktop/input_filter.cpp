// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/input_filter.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace kestrel {

namespace {

bool is_input(const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::NonClientAreaMouseButtonPress:
        case QEvent::NonClientAreaMouseButtonRelease:
        case QEvent::NonClientAreaMouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TouchCancel:
        case QEvent::NativeGesture:
        case QEvent::Gesture:
        case QEvent::GestureOverride:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::EnterWhatsThisMode:
        case QEvent::QueryWhatsThis:
        case QEvent::WhatsThis:
            return true;
        case QEvent::Close:
            // A window that closes itself is none of the user's doing.
            return event.spontaneous();
        default:
            return false;
    }
}

/// The widget that stands for what an event is sent to: a native window's, or that of whoever owns an action or a
/// shortcut. Nothing when there is none.
const QWidget* widget_of(const QObject& watched) {
    for (const QObject* object = &watched; object != nullptr; object = object->parent()) {
        if (const auto* widget = qobject_cast<const QWidget*>(object)) {
            return widget;
        }
        if (object->isWindowType()) {
            for (const QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->windowHandle() == object) {
                    return widget;
                }
            }
        }
    }
    return nullptr;
}

bool belongs_to(const QWidget& window, const QWidget* owner) {
    for (const QWidget* widget = &window; widget != nullptr && owner != nullptr; widget = widget->parentWidget()) {
        if (widget == owner) {
            return true;
        }
    }
    return false;
}

}  // namespace

InputFilter::InputFilter(QWidget& window) : m_window(&window), m_modal_before(QApplication::activeModalWidget()) {
    qApp->installEventFilter(this);
}

InputFilter::~InputFilter() {
    qApp->removeEventFilter(this);
}

bool InputFilter::eventFilter(QObject* watched, QEvent* event) {
    if (m_window == nullptr || !is_input(*event) || admits(*watched)) {
        return false;
    }
    event->ignore();
    return true;
}

bool InputFilter::admits(const QObject& watched) const {
    if (const QWidget* widget = widget_of(watched)) {
        return admits_window(*widget);
    }
    return false;
}

bool InputFilter::admits_window(const QWidget& window) const {
    return belongs_to(window, m_window) || belongs_to(window, later_modal_window());
}

QWidget* InputFilter::later_modal_window() const {
    QWidget* const modal = QApplication::activeModalWidget();
    return modal == m_window || modal == m_modal_before ? nullptr : modal;
}

}  // namespace kestrel
