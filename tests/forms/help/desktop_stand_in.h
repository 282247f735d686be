// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QUrl>
#include <string>
#include <vector>

namespace kestrel::test {

/// Takes what would go to the desktop's browser.
class DesktopStandIn final : public QObject {
    Q_OBJECT
  public:
    DesktopStandIn() { QDesktopServices::setUrlHandler("https", this, "open"); }
    ~DesktopStandIn() override { QDesktopServices::unsetUrlHandler("https"); }

    std::vector<std::string> opened;

  public slots:
    void open(const QUrl& url) { opened.push_back(url.toString().toStdString()); }
};

}  // namespace kestrel::test
