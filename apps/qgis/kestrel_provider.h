// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <qgsprocessingprovider.h>

#include <string>

namespace kestrel::qgis {

/// Kestrel in the Processing toolbox, in batches and in models.
class KestrelProvider final : public QgsProcessingProvider {
    Q_OBJECT
  public:
    /// \param extension_folder holds the coefficient store and the contact values in `etc`.
    explicit KestrelProvider(std::string extension_folder, QObject* parent = nullptr);

    QString id() const override { return QStringLiteral("kestrel"); }
    QString name() const override { return QStringLiteral("Kestrel"); }
    void loadAlgorithms() override;

    // The engine writes shapefiles only.
    QStringList supportedOutputVectorLayerExtensions() const override { return {QStringLiteral("shp")}; }
    QString defaultVectorFileExtension(bool) const override { return QStringLiteral("shp"); }
    bool supportsNonFileBasedOutput() const override { return false; }

  private:
    std::string m_extension_folder;
};

}  // namespace kestrel::qgis
