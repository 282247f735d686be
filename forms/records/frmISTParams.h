// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QDateTime>
#include <QDialog>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <array>
#include <string>
#include <vector>

#include "contracts/application.h"
#include "forms/records/find_bar.h"

namespace kestrel {

/// The viewer: lists the map's layers that have a run report or a metadata file beside their data, and shows the file
/// of the one that is chosen.
///
/// The map is looked through whenever the window is opened or becomes the active one. As long as the same layers are
/// found, the choice stays, and so does the place in the text unless its file has changed. Ctrl+F finds words in it.
class frmISTParams final : public QDialog {
    Q_OBJECT
  public:
    /// A found layer: the name that its file has, and the folder with a separator at its end.
    using FoundLayer = std::array<std::string, 2>;

    explicit frmISTParams(QWidget* parent = nullptr);

    /// \param application whose map is looked through; it outlives the window's use of it.
    void Application(contracts::Application* application);
    /// \param file_type "prm" for run reports, "met" for metadata files.
    void FileType(std::string file_type);
    const std::string& FileType() const { return m_file_type; }

    /// What the last look through the map found, in the map's order.
    const std::vector<FoundLayer>& ParamLayers() const { return m_layers; }
    int FileCount() const { return static_cast<int>(m_layers.size()); }

    /// Showing a window that is not open looks through the map; it stays closed when no layer qualifies.
    void setVisible(bool visible) override;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// What was read last, to tell whether it has changed.
    struct ShownFile {
        QString path;
        QDateTime modified;
        qint64 size = 0;
        friend bool operator==(const ShownFile&, const ShownFile&) = default;
    };

    void build_layout();
    /// Form_Activate() as soon as the event in hand is dealt with, once for any number of requests.
    void activate_later();
    void activate_pending();
    void activate_now();
    void Form_Activate();
    /// The look through the map.
    std::vector<FoundLayer> scan_ParamLayers();
    /// The folder of a layer's data, with a separator at its end; empty when they are in no file.
    std::string GetPath(const contracts::FeatureLayer& layer);
    void cboSelLayers_Click();
    void cmdClose_Click();
    void list_layers();
    QString chosen_path() const;

    contracts::Application* m_application = nullptr;
    std::string m_file_type = "prm";
    std::vector<FoundLayer> m_layers;
    /// What the lists were filled for.
    std::string m_listed_type;
    ShownFile m_shown;
    bool m_activation_pending = false;
    bool m_activating = false;

    QComboBox* cboSelLayers;
    QListWidget* lstSelLayers;
    QPlainTextEdit* txtTParams;
    FindBar* m_find;
    QPushButton* cmdClose;
};

}  // namespace kestrel
