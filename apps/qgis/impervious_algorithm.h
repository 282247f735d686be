// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <qgsprocessingalgorithm.h>

#include <memory>
#include <string>

class QgsVectorLayer;

namespace kestrel::qgis {

/// The analysis as a Processing algorithm: the same run without a form, in the algorithm's own thread. It touches
/// neither the project nor any window.
class ImperviousAlgorithm final : public QgsProcessingAlgorithm {
  public:
    /// \param extension_folder holds the coefficient store and the contact values in `etc`.
    explicit ImperviousAlgorithm(std::string extension_folder);
    ~ImperviousAlgorithm() override;

    QString name() const override { return QStringLiteral("impervioussurface"); }
    QString displayName() const override { return QStringLiteral("Impervious surface analysis"); }
    QString shortDescription() const override;
    QString shortHelpString() const override;
    QStringList tags() const override;
    QgsProcessingAlgorithm* createInstance() const override;
    void initAlgorithm(const QVariantMap& configuration = QVariantMap()) override;
    bool checkParameterValues(const QVariantMap& parameters, QgsProcessingContext& context,
                              QString* message = nullptr) const override;

  protected:
    bool prepareAlgorithm(const QVariantMap& parameters, QgsProcessingContext& context,
                          QgsProcessingFeedback* feedback) override;
    QVariantMap processAlgorithm(const QVariantMap& parameters, QgsProcessingContext& context,
                                 QgsProcessingFeedback* feedback) override;

  private:
    struct Prepared;

    void add_inputs();
    void add_density_and_scenarios();
    /// Layer and code of each scenario, in turn; empty cells where a row was left empty.
    QStringList scenario_cells(const QVariantMap& parameters, QgsProcessingContext& context) const;
    std::string store_path(const QVariantMap& parameters, const QgsProcessingContext& context) const;
    void prepare_land_cover(const QVariantMap& parameters, QgsProcessingContext& context);
    void prepare_coefficients(const QVariantMap& parameters, const QgsProcessingContext& context);
    void prepare_zones(const QVariantMap& parameters, QgsProcessingContext& context);
    void prepare_density(const QVariantMap& parameters, QgsProcessingContext& context);
    void prepare_scenarios(const QVariantMap& parameters, QgsProcessingContext& context);
    QgsVectorLayer& polygons(const QVariantMap& parameters, const QString& name, QgsProcessingContext& context,
                             bool& selected_only) const;
    /// \return the name that the layer has in the run.
    std::string add_polygons(QgsVectorLayer& layer, bool selected_only);

    std::string m_extension_folder;
    /// Between prepareAlgorithm() and the end of processAlgorithm().
    std::unique_ptr<Prepared> m_prepared;
};

}  // namespace kestrel::qgis
