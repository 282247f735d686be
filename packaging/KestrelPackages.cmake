# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
#
# The Debian packages, one for each install component: the command with its data, and what QGIS needs besides.
# packaging/build-deb makes them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrel)
set(CPACK_PACKAGE_CONTACT "The Kestrel developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL kestrel)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
# The libraries that are linked become dependencies by themselves.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_KESTREL_PACKAGE_NAME kestrel)
set(CPACK_COMPONENT_KESTREL_DESCRIPTION
"Kestrel estimates how much of each polygon of a map is covered by impervious
surface - roofs, roads, pavement - from a land-cover raster and a table of
coefficients, and what planned developments would change. It leaves records
that say how each figure was made.
.
This package holds the command kestrel, which needs no desktop.")

if(KESTREL_HAS_QGIS)
  list(APPEND CPACK_COMPONENTS_ALL qgis)
  set(CPACK_DEBIAN_QGIS_PACKAGE_NAME kestrel-qgis)
  set(CPACK_DEBIAN_QGIS_PACKAGE_DEPENDS "kestrel (= ${PROJECT_VERSION}), qgis")
  set(CPACK_COMPONENT_QGIS_DESCRIPTION
"Kestrel estimates how much of each polygon of a map is covered by impervious
surface - roofs, roads, pavement - from a land-cover raster and a table of
coefficients, and what planned developments would change.
.
This package adds the Kestrel Tools to QGIS: tick Kestrel in its plugin
manager.")
endif()

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrel RENAME copyright)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrel)
if(KESTREL_HAS_QGIS)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrel-qgis
          RENAME copyright COMPONENT qgis)
endif()

include(CPack)
