// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <qgis.h>
#include <qgsfeaturerequest.h>
#include <qgsfield.h>
#include <qgsfields.h>
#include <qgsprocessing.h>
#include <qgsprocessingparameters.h>
#include <qgsunittypes.h>
#include <qgswkbtypes.h>

#include <QMetaType>

/// \file
/// What QGIS names differently from one long-term release to another. Everything else is the same for all that Kestrel
/// is built with.
namespace kestrel::qgis {

#if _QGIS_VERSION_INT >= 34000

inline constexpr auto kPolygonGeometry = Qgis::GeometryType::Polygon;
inline constexpr auto kUnknownShapes = Qgis::WkbType::Unknown;
inline constexpr auto kCollectionShapes = Qgis::WkbType::GeometryCollection;
inline constexpr auto kMapUnitsMeters = Qgis::DistanceUnit::Meters;
inline constexpr auto kMapUnitsFeet = Qgis::DistanceUnit::Feet;
/// The older release does not tell survey feet from others.
inline constexpr auto kMapUnitsSurveyFeet = Qgis::DistanceUnit::FeetUSSurvey;
inline constexpr auto kMapUnitsDegrees = Qgis::DistanceUnit::Degrees;
inline constexpr auto kFieldOfProvider = Qgis::FieldOrigin::Provider;
inline constexpr auto kWithoutGeometry = Qgis::FeatureRequestFlag::NoGeometry;
inline constexpr auto kPolygonSource = Qgis::ProcessingSourceType::VectorPolygon;
inline constexpr auto kNumericField = Qgis::ProcessingFieldParameterDataType::Numeric;
inline constexpr auto kOneFile = Qgis::ProcessingFileParameterBehavior::File;
inline constexpr auto kRealNumber = Qgis::ProcessingNumberParameterType::Double;
inline constexpr auto kAdvancedParameter = Qgis::ProcessingParameterFlag::Advanced;
using QgisFieldType = QMetaType::Type;

#else

inline constexpr auto kPolygonGeometry = QgsWkbTypes::PolygonGeometry;
inline constexpr auto kUnknownShapes = QgsWkbTypes::Unknown;
inline constexpr auto kCollectionShapes = QgsWkbTypes::GeometryCollection;
inline constexpr auto kMapUnitsMeters = QgsUnitTypes::DistanceMeters;
inline constexpr auto kMapUnitsFeet = QgsUnitTypes::DistanceFeet;
inline constexpr auto kMapUnitsSurveyFeet = QgsUnitTypes::DistanceFeet;
inline constexpr auto kMapUnitsDegrees = QgsUnitTypes::DistanceDegrees;
inline constexpr auto kFieldOfProvider = QgsFields::OriginProvider;
inline constexpr auto kWithoutGeometry = QgsFeatureRequest::NoGeometry;
inline constexpr auto kPolygonSource = QgsProcessing::TypeVectorPolygon;
inline constexpr auto kNumericField = QgsProcessingParameterField::Numeric;
inline constexpr auto kOneFile = QgsProcessingParameterFile::File;
inline constexpr auto kRealNumber = QgsProcessingParameterNumber::Double;
inline constexpr auto kAdvancedParameter = QgsProcessingParameterDefinition::FlagAdvanced;
using QgisFieldType = QVariant::Type;

#endif

inline QgsField field_of_type(const QString& name, QMetaType::Type type) {
    return QgsField(name, static_cast<QgisFieldType>(type));
}

}  // namespace kestrel::qgis
