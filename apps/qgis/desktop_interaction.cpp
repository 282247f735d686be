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

/// What QGIS shows and leaves off while a waiting window is up.
class ProgressInQgis final : public base::Progress {
  public:
    explicit ProgressInQgis(QgisInterface& iface) : m_iface(iface), m_bar(new QProgressBar) {
        m_bar->setObjectName("kestrelProgress");
        m_bar->setRange(0, kPercent);
        m_iface.statusBarIface()->addPermanentWidget(m_bar);
        m_iface.mapCanvas()->freeze(true);
    }
    ~ProgressInQgis() override {
        delete m_bar;
        m_iface.mapCanvas()->freeze(false);
        m_iface.mapCanvas()->refresh();
    }
    ProgressInQgis(const ProgressInQgis&) = delete;
    ProgressInQgis& operator=(const ProgressInQgis&) = delete;

    bool report(double fraction, std::string_view) override {
        if (m_bar) {
            m_bar->setValue(static_cast<int>(std::lround(fraction * kPercent)));
        }
        return true;
    }
    bool cancelled() const override { return false; }

  private:
    QgisInterface& m_iface;
    QPointer<QProgressBar> m_bar;
};

}  // namespace

DesktopBoxes::DesktopBoxes(QgisInterface& iface)
    : boxes({.beside_waiting_window = [&iface] { return std::make_unique<ProgressInQgis>(iface); }}) {}

DesktopInteraction::DesktopInteraction(QgisInterface& iface)
    : DesktopBoxes(iface), ForwardingInteraction(boxes), m_iface(iface) {}

void DesktopInteraction::show_call_stack(std::string_view text) {
    log(text, Qgis::MessageLevel::Critical);
    ForwardingInteraction::show_call_stack(text);
}

void DesktopInteraction::notice(std::string_view text) {
    log(text, Qgis::MessageLevel::Warning);
    m_iface.messageBar()->pushMessage(kTitle, qt_text(text), Qgis::MessageLevel::Warning, 0);
}

void DesktopInteraction::run_ended(const contracts::RunResult& result) {
    if (result.finished) {
        log(finished_details(result), Qgis::MessageLevel::Success);
        m_iface.messageBar()->pushMessage(kTitle, qt_text(finished_text(result)), Qgis::MessageLevel::Success, 0);
    } else {
        const std::string text = unfinished_text(result);
        log(text, result.cancelled ? Qgis::MessageLevel::Info : Qgis::MessageLevel::Warning);
        m_iface.messageBar()->pushMessage(kTitle, qt_text(text),
                                          result.cancelled ? Qgis::MessageLevel::Info : Qgis::MessageLevel::Warning, 0);
    }
}

void DesktopInteraction::failure(std::string_view text) {
    log(text, Qgis::MessageLevel::Critical);
    m_iface.messageBar()->pushMessage(kTitle, qt_text(text), Qgis::MessageLevel::Critical, 0);
}

}  // namespace kestrel::qgis
