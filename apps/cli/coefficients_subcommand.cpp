// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/coefficients_subcommand.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <utility>

#include "apps/cli/chosen_store.h"
#include "apps/cli/console_interaction.h"
#include "apps/cli/user_files.h"
#include "reporting/forwarding_interaction.h"

namespace kestrel::cli {

namespace {

/// Tells what the routines say on standard error. Their input box, which asks for a name until it is a new one, gets
/// the name of the command line once and is then cancelled.
class CommandInteraction final : public reporting::ForwardingInteraction {
  public:
    CommandInteraction(reporting::Interaction& console, std::string name)
        : ForwardingInteraction(console), m_name(std::move(name)) {}

    /// Boxes about coefficients ask nothing, whatever their buttons: they are only closed.
    reporting::Answer message_box(const reporting::MessageBox& box) override {
        return ForwardingInteraction::message_box({box.text, box.title, box.icon, reporting::Buttons::ok});
    }
    std::string input_box(const reporting::InputBox&) override { return std::exchange(m_name, {}); }
    void beep() override {}

  private:
    std::string m_name;
};

}  // namespace

CLI::App* add_coefficients_subcommand(CLI::App& parent, const CoefficientsSubcommand& subcommand,
                                      const std::shared_ptr<CoefficientsOptions>& options, Action& action) {
    CLI::App* added = parent.add_subcommand(subcommand.name, subcommand.description);
    added->add_option("--store", options->store, "Coefficient store; by default your own")->type_name("FILE");
    added->footer(subcommand.example);
    added->callback([options, act = subcommand.act, &action] {
        action = [options, act] {
            ConsoleProgress progress(std::cerr, false);
            ConsoleInteraction console(std::cerr, progress, {});
            CommandInteraction interaction(console, options->name);
            const reporting::ScopedInteraction scope(interaction);
            return act(*options);
        };
    });
    return added;
}

void add_set_option(CLI::App& subcommand, CoefficientsOptions& options) {
    subcommand.add_option("--set", options.set, "Coefficient set")->type_name("NAME");
}

std::string load_chosen_store(const CoefficientsOptions& options, clsISModelProperties& store) {
    const std::string path = options.store.empty() ? user_store() : options.store;
    load_store(path, store);
    return path;
}

}  // namespace kestrel::cli
