// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "reporting/interaction.h"

class QgsProcessingFeedback;

namespace kestrel::qgis {

/// A run's progress as that of a Processing algorithm.
class FeedbackProgress final : public base::Progress {
  public:
    explicit FeedbackProgress(QgsProcessingFeedback& feedback) : m_feedback(feedback) {}
    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override;

  private:
    QgsProcessingFeedback& m_feedback;
    std::string m_text;
};

/// Speaks to whoever watches a Processing algorithm, and is never answered: no window opens.
class FeedbackInteraction final : public reporting::Interaction {
  public:
    /// \param feedback nothing: nobody watches.
    explicit FeedbackInteraction(QgsProcessingFeedback* feedback) : m_feedback(feedback) {}

    reporting::Answer message_box(const reporting::MessageBox& box) override;
    std::string input_box(const reporting::InputBox&) override { return {}; }
    std::optional<std::string> file_dialog(const reporting::FileDialog&) override { return std::nullopt; }
    void show_call_stack(std::string_view text) override;
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override;
    void show_help() override {}
    void notice(std::string_view text) override;
    void beep() override {}

    /// The last message, which says best why a run has failed; empty when nothing was said.
    const std::string& last_message() const noexcept { return m_last_message; }

  private:
    QgsProcessingFeedback* m_feedback;
    std::string m_last_message;
};

}  // namespace kestrel::qgis
