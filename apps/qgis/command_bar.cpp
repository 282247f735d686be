// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/command_bar.h"

#include <qgisinterface.h>

#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <exception>

namespace kestrel::qgis {

using contracts::ICommand;
using hosting::HostedItem;

namespace {

constexpr int kPollMilliseconds = 1000;

QString qt(const std::string& text) {
    return QString::fromStdString(text);
}

/// A caption as Qt shows it letter by letter.
QString caption(const std::string& text) {
    return qt(text).replace("&", "&&");
}

}  // namespace

CommandBar::CommandBar(QgisInterface& iface, const hosting::HostedExtension& extension, Report report)
    : m_iface(iface), m_report(std::move(report)) {
    show_items(extension.toolbar(), extension.items());
    connect(&m_timer, &QTimer::timeout, this, &CommandBar::poll);
    m_timer.start(kPollMilliseconds);
    poll();
}

CommandBar::~CommandBar() {
    for (const QPointer<QAction>& action : m_plugin_actions) {
        if (action) {
            m_iface.removePluginMenu(m_plugin_menu, action);
        }
    }
    // Its menus and actions go with it.
    delete m_toolbar;
}

void CommandBar::show_items(const contracts::IToolBarDef& toolbar, const std::vector<HostedItem>& items) {
    m_plugin_menu = QStringLiteral("Kestrel");
    m_toolbar = m_iface.addToolBar(qt(toolbar.IToolBarDef_Caption()));
    // QGIS keeps the toolbar's place by this name.
    m_toolbar->setObjectName(qt(toolbar.IToolBarDef_Name()));
    for (const HostedItem& item : items) {
        if (item.def.Group) {
            m_toolbar->addSeparator();
        }
        if (item.menu == nullptr) {
            m_toolbar->addAction(action_of(item));
            continue;
        }
        auto* button = new QToolButton(m_toolbar);
        button->setObjectName(qt(item.def.ID));
        button->setText(caption(item.menu->IMenuDef_Caption()));
        button->setToolTip(qt(item.menu->IMenuDef_Caption()));
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setPopupMode(QToolButton::InstantPopup);
        button->setMenu(menu_of(item));
        m_toolbar->addWidget(button);
    }
    for (const Entry& entry : m_entries) {
        add_to_plugins_menu(*entry.action);
    }
}

QMenu* CommandBar::menu_of(const HostedItem& item) {
    auto* menu = new QMenu(caption(item.menu->IMenuDef_Caption()), m_toolbar);
    menu->setObjectName(qt(item.menu->IMenuDef_Name()));
    connect(menu, &QMenu::aboutToShow, this, &CommandBar::poll);
    for (const HostedItem& entry : item.items) {
        if (entry.def.Group) {
            menu->addSeparator();
        }
        if (entry.menu != nullptr) {
            menu->addMenu(menu_of(entry));
        } else {
            menu->addAction(action_of(entry));
        }
    }
    return menu;
}

QAction* CommandBar::action_of(const HostedItem& item) {
    const ICommand& command = *item.command;
    auto* action = new QAction(caption(command.ICommand_Caption()), m_toolbar);
    action->setObjectName(QStringLiteral("%1.%2").arg(qt(item.def.ID)).arg(item.def.SubType));
    action->setToolTip(qt(command.ICommand_Tooltip()));
    action->setStatusTip(qt(command.ICommand_Message()));
    action->setMenuRole(QAction::NoRole);  // a menu bar of the system would move "About" elsewhere
    connect(action, &QAction::triggered, this, &CommandBar::triggered);
    m_entries.push_back({item.command, action});
    return action;
}

QAction& CommandBar::add_plugins_entry(const QString& text) {
    auto* action = new QAction(text, m_toolbar);
    add_to_plugins_menu(*action);
    return *action;
}

void CommandBar::add_to_plugins_menu(QAction& action) {
    m_iface.addPluginToMenu(m_plugin_menu, &action);
    m_plugin_actions.emplace_back(&action);
}

void CommandBar::poll() {
    for (const Entry& entry : m_entries) {
        entry.action->setEnabled(enabled(*entry.command));
        const bool checked = entry.command->ICommand_Checked();
        entry.action->setCheckable(checked);
        entry.action->setChecked(checked);
    }
}

bool CommandBar::enabled(ICommand& command) try { return command.ICommand_Enabled(); } catch (const std::exception& e) {
    // Such as a working folder that cannot be made.
    report(e.what());
    return false;
}

void CommandBar::triggered() {
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [this](const Entry& known) { return known.action == sender(); });
    if (entry == m_entries.end()) {
        return;
    }
    try {
        entry->command->ICommand_OnClick();
    } catch (const std::exception& error) {
        report(error.what());
    }
    poll();
}

void CommandBar::report(const std::string& failure) {
    if (failure != m_reported) {
        m_reported = failure;
        m_report(failure);
    }
}

}  // namespace kestrel::qgis
