// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/feedback.h"

#include <qgsprocessingfeedback.h>

namespace kestrel::qgis {

using reporting::Answer;
using reporting::Buttons;

namespace {

constexpr double kPercent = 100;

QString qt_text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size())).replace("\r\n", "\n").replace('\r', '\n');
}

/// Nobody sees it: the algorithm's own progress is there all the time.
class NoWindow final : public reporting::WaitingWindow {
  public:
    bool report(double, std::string_view) override { return true; }
    bool cancelled() const override { return false; }
};

}  // namespace

bool FeedbackProgress::report(double fraction, std::string_view text) {
    m_feedback.setProgress(fraction * kPercent);
    if (text != m_text) {
        m_text = text;
        m_feedback.setProgressText(qt_text(text));
    }
    return !m_feedback.isCanceled();
}

bool FeedbackProgress::cancelled() const {
    return m_feedback.isCanceled();
}

Answer FeedbackInteraction::message_box(const reporting::MessageBox& box) {
    m_last_message = box.text;
    if (m_feedback != nullptr) {
        m_feedback->pushWarning(qt_text(box.title.empty() ? box.text : box.title + ": " + box.text));
    }
    switch (box.buttons) {
        case Buttons::yes_no:
        case Buttons::yes_no_cancel:
            return Answer::no;
        case Buttons::ok_cancel:
            return Answer::cancel;
        case Buttons::ok:
            break;
    }
    return Answer::ok;
}

void FeedbackInteraction::show_call_stack(std::string_view text) {
    m_last_message = "There was an unexpected error; the log tells where.";
    if (m_feedback != nullptr) {
        m_feedback->reportError(qt_text(text));
    }
}

std::unique_ptr<reporting::WaitingWindow> FeedbackInteraction::waiting_window(std::string_view) {
    return std::make_unique<NoWindow>();
}

void FeedbackInteraction::notice(std::string_view text) {
    if (m_feedback != nullptr) {
        m_feedback->pushWarning(qt_text(text));
    }
}

}  // namespace kestrel::qgis
