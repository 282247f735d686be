// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/kestrel_provider.h"

#include "apps/qgis/impervious_algorithm.h"

namespace kestrel::qgis {

KestrelProvider::KestrelProvider(std::string extension_folder, QObject* parent)
    : QgsProcessingProvider(parent), m_extension_folder(std::move(extension_folder)) {}

void KestrelProvider::loadAlgorithms() {
    addAlgorithm(new ImperviousAlgorithm(m_extension_folder));
}

}  // namespace kestrel::qgis
