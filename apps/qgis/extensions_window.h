// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

#include "apps/qgis/extension_list.h"

class QLabel;
class QListWidget;
class QListWidgetItem;

namespace kestrel::qgis {

/// Lists the extensions with a check box each. A click takes effect at once.
class ExtensionsWindow final : public QDialog {
    Q_OBJECT
  public:
    /// \param extensions outlives the window.
    explicit ExtensionsWindow(const ExtensionList& extensions, QWidget* parent = nullptr);

    /// Shows the states as they are now.
    void setVisible(bool visible) override;

  signals:
    void states_changed();

  private:
    void show_states();
    void item_changed(const QListWidgetItem* item);
    void describe(int row);

    const ExtensionList& m_extensions;
    QListWidget* m_list;
    QLabel* m_description;
};

}  // namespace kestrel::qgis
