// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <string>

class QLabel;
class QPushButton;

namespace kestrel {

/// The about box: version, what the program is for, who made it, and whom to ask.
class frmISAbout final : public QDialog {
    Q_OBJECT
  public:
    /// \param extension_folder whose configured contact is shown.
    explicit frmISAbout(std::string extension_folder, QWidget* parent = nullptr);

    /// A window that is not open fills in its texts when it is shown.
    void setVisible(bool visible) override;

  private:
    void build_layout();
    void Form_Load();
    void cmdOK_Click();

    std::string m_extension_folder;
    QLabel* lblVersion;
    QLabel* lblDescription;
    QLabel* lblDisclaimer;
    QPushButton* cmdOK;
};

}  // namespace kestrel
