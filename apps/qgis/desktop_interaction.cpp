// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_interaction.h"

#include <qgisinterface.h>
#include <qgsmapcanvas.h>
#include <qgsmessagebar.h>
#include <qgsmessagelog.h>
#include <qgsstatusbar.h>

#include <QPointer>
#include <QProgressBar>
#include <cmath>

#include "apps/qgis/run_texts.h"

namespace kestrel::qgis {

namespace {

constexpr const char* kTitle = "Kestrel";
constexpr int kPercent = 100;

QString qt_text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

void log(std::string_view text, Qgis::MessageLevel level) {
    QgsMessageLog::logMessage(qt_text(text), kTitle, level, false);
}

}  // namespace

/// The waiting window, with what QGIS shows and leaves off while it is up.
class DesktopInteraction::DesktopWaitingWindow final : public platform::WaitingWindow {
  public:
    DesktopWaitingWindow(DesktopInteraction& owner, std::unique_ptr<platform::WaitingWindow> window)
        : m_owner(owner), m_window(std::move(window)), m_bar(new QProgressBar) {
        m_bar->setObjectName("kestrelProgress");
        m_bar->setRange(0, kPercent);
        m_owner.m_iface.statusBarIface()->addPermanentWidget(m_bar);
        m_owner.m_iface.mapCanvas()->freeze(true);
        m_owner.m_waiting = this;
    }
    ~DesktopWaitingWindow() override {
        m_owner.m_waiting = nullptr;
        delete m_bar;
        m_owner.m_iface.mapCanvas()->freeze(false);
        m_owner.m_iface.mapCanvas()->refresh();
    }
    DesktopWaitingWindow(const DesktopWaitingWindow&) = delete;
    DesktopWaitingWindow& operator=(const DesktopWaitingWindow&) = delete;

    bool report(double fraction, std::string_view text) override {
        if (m_bar) {
            m_bar->setValue(static_cast<int>(std::lround(fraction * kPercent)));
        }
        return m_window->report(fraction, text);
    }
    bool cancelled() const override { return m_window->cancelled(); }

  private:
    DesktopInteraction& m_owner;
    std::unique_ptr<platform::WaitingWindow> m_window;
    QPointer<QProgressBar> m_bar;
};

DesktopInteraction::DesktopInteraction(QgisInterface& iface) : m_iface(iface) {}

DesktopInteraction::~DesktopInteraction() = default;

void DesktopInteraction::show_call_stack(std::string_view text) {
    log(text, Qgis::Critical);
    m_boxes.show_call_stack(text);
}

std::unique_ptr<platform::WaitingWindow> DesktopInteraction::waiting_window(std::string_view text) {
    return std::make_unique<DesktopWaitingWindow>(*this, m_boxes.waiting_window(text));
}

void DesktopInteraction::notice(std::string_view text) {
    log(text, Qgis::Warning);
    m_iface.messageBar()->pushMessage(kTitle, qt_text(text), Qgis::Warning, 0);
}

platform::Progress& DesktopInteraction::progress() {
    if (m_waiting != nullptr) {
        return *m_waiting;
    }
    return m_no_progress;
}

void DesktopInteraction::run_ended(const platform::RunResult& result) {
    if (result.finished) {
        log(finished_details(result), Qgis::Success);
        m_iface.messageBar()->pushMessage(kTitle, qt_text(finished_text(result)), Qgis::Success, 0);
    } else {
        const std::string text = unfinished_text(result);
        log(text, result.cancelled ? Qgis::Info : Qgis::Warning);
        m_iface.messageBar()->pushMessage(kTitle, qt_text(text), result.cancelled ? Qgis::Info : Qgis::Warning, 0);
    }
}

void DesktopInteraction::failure(std::string_view text) {
    log(text, Qgis::Critical);
    m_iface.messageBar()->pushMessage(kTitle, qt_text(text), Qgis::Critical, 0);
}

}  // namespace kestrel::qgis
