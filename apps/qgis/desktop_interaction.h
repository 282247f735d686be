// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string_view>

#include "contracts/run_result.h"
#include "forms/desktop/qt_interaction.h"
#include "reporting/interaction.h"

class QgisInterface;

namespace kestrel::qgis {

/// How QGIS speaks with its user: boxes are those of Qt, warnings and the ends of runs stand in the message bar, and
/// their details in the log.
class DesktopInteraction final : public reporting::Interaction {
  public:
    explicit DesktopInteraction(QgisInterface& iface);

    reporting::Answer message_box(const reporting::MessageBox& box) override { return m_boxes.message_box(box); }
    std::string input_box(const reporting::InputBox& box) override { return m_boxes.input_box(box); }
    std::optional<std::string> file_dialog(const reporting::FileDialog& dialog) override {
        return m_boxes.file_dialog(dialog);
    }
    void show_call_stack(std::string_view text) override;
    /// While the window is up, the status bar shows the progress, too, and the map is not drawn: its files may change.
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override {
        return m_boxes.waiting_window(text);
    }
    void show_help() override { m_boxes.show_help(); }
    void notice(std::string_view text) override;
    void beep() override { m_boxes.beep(); }

    /// As QtInteraction::progress().
    base::Progress& progress() { return m_boxes.progress(); }
    /// Tells how a run ended.
    void run_ended(const contracts::RunResult& result);
    /// Tells of something that does not work, and why.
    void failure(std::string_view text);

  private:
    QgisInterface& m_iface;
    QtInteraction m_boxes;
};

}  // namespace kestrel::qgis
