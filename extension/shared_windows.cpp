// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/shared_windows.h"

#include "base/errors.h"
#include "forms/analysis/frmISParams.h"
#include "forms/coefficients/frmISModelProps.h"
#include "forms/help/frmHelpBrowser2.h"
#include "forms/help/frmISAbout.h"
#include "forms/records/frmISTParams.h"
#include "reporting/forwarding_interaction.h"

namespace kestrel {

namespace {

/// The window in `form`, made on first use.
template <typename Form, typename... Arguments>
Form& shared(std::unique_ptr<Form>& form, Arguments&&... arguments) {
    if (!form) {
        form = std::make_unique<Form>(std::forward<Arguments>(arguments)...);
    }
    return *form;
}

void bring_to_front(QWidget& form) {
    form.setWindowState(form.windowState() & ~Qt::WindowMinimized);
    form.show();
    // A window that had nothing to show has stayed closed.
    if (form.isVisible()) {
        form.raise();
        form.activateWindow();
    }
}

}  // namespace

struct SharedWindows::Forms {
    std::unique_ptr<frmISParams> parameters;
    std::unique_ptr<frmISTParams> viewer;
    std::unique_ptr<frmISModelProps> editor;
    std::unique_ptr<frmHelpBrowser2> help;
    std::unique_ptr<frmISAbout> about;
};

/// The host's interaction, with the help window of this extension.
class SharedWindows::HostInteraction final : public reporting::ForwardingInteraction {
  public:
    HostInteraction(reporting::Interaction& host, SharedWindows& windows)
        : ForwardingInteraction(host), m_windows(windows) {}

    void show_help() override { m_windows.show_help(); }

  private:
    SharedWindows& m_windows;
};

SharedWindows::SharedWindows(std::string extension_folder)
    : m_extension_folder(std::move(extension_folder)), m_forms(std::make_unique<Forms>()) {}

SharedWindows::~SharedWindows() = default;

void SharedWindows::start(contracts::Application& application) {
    stop();
    m_interaction = std::make_unique<HostInteraction>(application.interaction(), *this);
    m_scope = std::make_unique<reporting::ScopedInteraction>(*m_interaction);
}

void SharedWindows::stop() {
    if (m_forms->editor) {
        m_forms->editor->Form_QueryUnload();
    }
    m_forms = std::make_unique<Forms>();  // the old ones go while they can still speak
    m_scope.reset();
    m_interaction.reset();
}

void SharedWindows::open(CommandKind command, contracts::Application& application) {
    bring_to_front(form_of(command, application));
}

void SharedWindows::show_help() {
    bring_to_front(shared(m_forms->help, m_extension_folder));
}

QWidget& SharedWindows::form_of(CommandKind command, contracts::Application& application) {
    switch (command) {
        case CommandKind::run_analysis: {
            frmISParams& form = shared(m_forms->parameters, m_extension_folder);
            form.Application(&application);
            return form;
        }
        case CommandKind::view_parameters:
            return viewer_of("prm", application);
        case CommandKind::view_metadata:
            return viewer_of("met", application);
        case CommandKind::change_coefficients:
            return shared(m_forms->editor, CoefficientStore::in_extension_folder(m_extension_folder));
        case CommandKind::help:
            return shared(m_forms->help, m_extension_folder);
        case CommandKind::about:
            return shared(m_forms->about, m_extension_folder);
    }
    throw base::RuntimeError(base::kInvalidProcedureCall, "There is no window of this command");
}

QWidget& SharedWindows::viewer_of(const char* file_type, contracts::Application& application) {
    frmISTParams& form = shared(m_forms->viewer);
    form.Application(&application);
    form.FileType(file_type);
    return form;
}

}  // namespace kestrel
