// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "contracts/application.h"
#include "hosting/headless_map.h"

namespace kestrel::hosting {

class HeadlessDocument final : public contracts::Document {
  public:
    HeadlessMap& focus_map() override { return m_map; }

  private:
    HeadlessMap m_map;
};

/// The host that has no desktop: the command, worker threads and tests run on it.
class HeadlessApplication final : public contracts::Application {
  public:
    /// \param progress hears of the run, and may stop it; it outlives the application.
    explicit HeadlessApplication(base::Progress& progress) : m_progress(progress) {}

    HeadlessDocument& document() override { return m_document; }
    HeadlessMap& map() { return m_document.focus_map(); }
    contracts::IExtensionConfig* find_extension(std::string_view class_id) override;
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string& path,
                                                                const std::string& name) override;
    /// The calling thread's own, which whoever runs the engine has set.
    reporting::Interaction& interaction() override { return reporting::current_interaction(); }
    base::Progress& progress() override { return m_progress; }
    void run_ended(contracts::RunResult result) override { m_result = std::move(result); }

    /// Makes an extension findable; it outlives the application.
    void register_extension(std::string class_id, contracts::IExtensionConfig& extension);
    /// What the last run made; nothing before one ended.
    const std::optional<contracts::RunResult>& result() const noexcept { return m_result; }
    /// Hands that over: it may be large.
    std::optional<contracts::RunResult> take_result() noexcept { return std::exchange(m_result, std::nullopt); }

  private:
    HeadlessDocument m_document;
    base::Progress& m_progress;
    std::map<std::string, contracts::IExtensionConfig*, std::less<>> m_extensions;
    std::optional<contracts::RunResult> m_result;
};

}  // namespace kestrel::hosting
