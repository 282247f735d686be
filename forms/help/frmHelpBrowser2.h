// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QTextBrowser>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace kestrel {

/// The help window: the pages in the extension folder's `help`, with a way back and forth and a search in the page.
/// Links between pages open here, others in the desktop's own programs.
class frmHelpBrowser2 final : public QDialog {
    Q_OBJECT
  public:
    explicit frmHelpBrowser2(std::string extension_folder, QWidget* parent = nullptr);

    /// A window that is not open begins at the first page when it is shown.
    void setVisible(bool visible) override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void build_controls();
    void build_bar();
    void connect_controls();
    void add_shortcuts();

    void Form_Load();
    void Form_Resize();
    void brwHelp_AnchorClicked(const QUrl& target);
    void cmdClose_Click();
    void cmdFindNext_Click();
    void cmdFindPrevious_Click();

    std::string help_file() const;
    void find(QTextDocument::FindFlags direction);
    void show_title();
    void begin_search();

    std::string m_extension_folder;
    QTextBrowser* brwHelp;
    QWidget* m_bar;
    QToolButton* cmdBack;
    QToolButton* cmdForward;
    QToolButton* cmdHome;
    QLineEdit* txtFind;
    QToolButton* cmdFindPrevious;
    QToolButton* cmdFindNext;
    QLabel* lblFound;
    QPushButton* cmdClose;
};

}  // namespace kestrel
