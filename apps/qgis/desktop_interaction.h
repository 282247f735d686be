// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string_view>

#include "contracts/run_result.h"
#include "forms/desktop/qt_interaction.h"
#include "reporting/forwarding_interaction.h"

class QgisInterface;

namespace kestrel::qgis {

/// What the interaction forwards to, made before it.
struct DesktopBoxes {
    explicit DesktopBoxes(QgisInterface& iface);
    QtInteraction boxes;
};

/// How QGIS speaks with its user: boxes are those of Qt, warnings and the ends of runs stand in the message bar, and
/// their details in the log. While a waiting window is up, the status bar shows the progress, too, and the map is not
/// drawn: its files may change.
class DesktopInteraction final : private DesktopBoxes, public reporting::ForwardingInteraction {
  public:
    explicit DesktopInteraction(QgisInterface& iface);

    void show_call_stack(std::string_view text) override;
    void notice(std::string_view text) override;

    /// As QtInteraction::progress().
    base::Progress& progress() { return boxes.progress(); }
    /// Tells how a run ended.
    void run_ended(const contracts::RunResult& result);
    /// Tells of something that does not work, and why.
    void failure(std::string_view text);

  private:
    QgisInterface& m_iface;
};

}  // namespace kestrel::qgis
