// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <string>

#include "platform/contracts/application.h"

namespace kestrel {

/// The analysis parameter form: where the user sets up a run, and starts it. Loads the coefficient store and lists the
/// map's layers when it is opened; follows the map until it is quit.
class frmISParams final : public QDialog {
    Q_OBJECT
  public:
    /// \param extension_folder holds the store, and `temp` and `output`.
    explicit frmISParams(std::string extension_folder, QWidget* parent = nullptr);

    /// The host; set before the form is shown for the first time. It outlives the form.
    void Application(platform::Application* app) { m_app = app; }

  private:
    std::string m_extension_folder;
    platform::Application* m_app = nullptr;
};

}  // namespace kestrel
