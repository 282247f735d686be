// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "forms/desktop/qt_interaction.h"
#include "hosting/headless_application.h"

namespace kestrel::test {

/// A host whose boxes and windows are Qt's, as a desktop's are: a run's progress is that of the waiting window. Map and
/// extensions are those of a headless one.
class DesktopHost final : public contracts::Application {
  public:
    DesktopHost(hosting::HeadlessApplication& rest, QtInteraction& user) : m_rest(rest), m_user(user) {}

    contracts::Document& document() override { return m_rest.document(); }
    contracts::IExtensionConfig* find_extension(std::string_view class_id) override {
        return m_rest.find_extension(class_id);
    }
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string& path,
                                                                const std::string& name) override {
        return m_rest.make_feature_layer(path, name);
    }
    reporting::Interaction& interaction() override { return m_user; }
    base::Progress& progress() override { return m_user.progress(); }
    void run_ended(contracts::RunResult result) override { results.push_back(std::move(result)); }

    std::vector<contracts::RunResult> results;

  private:
    hosting::HeadlessApplication& m_rest;
    QtInteraction& m_user;
};

}  // namespace kestrel::test
