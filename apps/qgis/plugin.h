// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <qgisplugin.h>

#include <QObject>
#include <memory>

class QgisInterface;

namespace kestrel::qgis {

/// The plugin that QGIS loads: makes QGIS a host of the extension library that lies beside it.
class KestrelPlugin final : public QObject, public QgisPlugin {
    Q_OBJECT
  public:
    explicit KestrelPlugin(QgisInterface& iface);
    ~KestrelPlugin() override;

    void initGui() override;
    void unload() override;

  private:
    struct Running;

    void show_extensions();

    QgisInterface& m_iface;
    /// Everything that lives while the plugin is loaded.
    std::unique_ptr<Running> m_running;
};

}  // namespace kestrel::qgis
