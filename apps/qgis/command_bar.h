// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "hosting/hosted_extension.h"

class QAction;
class QMenu;
class QMainWindow;
class QToolBar;
class QgisInterface;

namespace kestrel::qgis {

/// An extension's toolbar, menus and commands as QGIS shows them, in a toolbar and below the Plugins menu. Commands are
/// asked again and again whether they are enabled.
class CommandBar final : public QObject {
    Q_OBJECT
  public:
    using Report = std::function<void(const std::string& failure)>;

    /// \param extension started, and outlives this.
    /// \param report takes what goes wrong in a command; it is told once.
    CommandBar(QgisInterface& iface, const hosting::HostedExtension& extension, Report report);
    ~CommandBar() override;

    /// Adds an action of the host's own below the extension's in the Plugins menu.
    QAction& add_plugins_entry(const QString& text);
    /// Enables and disables the actions as their commands say.
    void poll();

  private:
    struct Entry {
        contracts::ICommand* command;
        QAction* action;
    };

    void show_items(const contracts::IToolBarDef& toolbar, const std::vector<hosting::HostedItem>& items);
    void add_to_plugins_menu(QAction& action);
    QMenu* menu_of(const hosting::HostedItem& item);
    QAction* action_of(const hosting::HostedItem& item);
    void triggered();
    bool enabled(contracts::ICommand& command);
    void report(const std::string& failure);

    QgisInterface& m_iface;
    Report m_report;
    std::string m_reported;
    QPointer<QToolBar> m_toolbar;
    std::vector<Entry> m_entries;
    std::vector<QPointer<QAction>> m_plugin_actions;
    QString m_plugin_menu;
    QTimer m_timer;
};

}  // namespace kestrel::qgis
