// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "hosting/headless_application.h"
#include "hosting/hosted_extension.h"
#include "tests/support/raster_analysis.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

class QWidget;

namespace kestrel::test {

/// A desktop host for tests: a headless map, boxes that are answered by a script, and the built extension library,
/// loaded as any host loads it. Windows are real ones, found by name.
///
///     TestHost host;
///     host.application.map().append_layer(...);
///     host.click("Change Coefficients...");
///     QWidget* editor = host.window("frmISModelProps");
class TestHost {
  public:
    enum class Raster { registered, missing };

    /// Copies library, `etc` and `help` into a folder of its own, which is the extension folder then, loads the library
    /// from there, starts it up, and switches it and the raster analysis on.
    explicit TestHost(Raster raster = Raster::registered);
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    const std::string& extension_folder() const noexcept { return m_folder.path(); }
    const std::string& library_path() const noexcept { return m_library_path; }
    hosting::HostedExtension& kestrel() noexcept { return *m_kestrel; }
    /// The extension's state, as its user sets it.
    void set_state(std::int32_t state) { m_kestrel->config().IExtensionConfig_State(state); }

    /// The menu on the toolbar.
    const hosting::HostedItem& menu() const { return m_kestrel->items().at(0); }
    /// The menu as its user sees it: captions from the top, "-" for a separator, those that are greyed in brackets.
    /// Asks every command whether it is enabled, as a host does before it shows a menu.
    std::vector<std::string> shown_menu() const;
    /// Chooses a command by its caption. One that is greyed cannot be chosen: that is an error of the test.
    void click(const std::string& caption);

    /// The visible window of that object name; nothing when there is none.
    QWidget* window(const std::string& name) const;
    /// Names of all visible windows, sorted.
    std::vector<std::string> windows() const;

    /// Shuts the extension down, as leaving the host does.
    void shut_down() { m_kestrel->stop(); }

  private:
    TemporaryFolder m_folder;
    std::string m_library_path;

  public:
    ScriptedInteraction said;
    base::NoProgress progress;
    RasterAnalysis raster_analysis;
    hosting::HeadlessApplication application{progress};

  private:
    std::unique_ptr<hosting::HostedExtension> m_kestrel;
};

}  // namespace kestrel::test
