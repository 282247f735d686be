# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
#
# Finds QGIS, which has no package file of its own, and makes it a target. Sets KESTREL_HAS_QGIS.

# The versions that the plugin was built with, tested and looked at; QGIS renames and drops what plugins use.
set(tried_versions 3.22 3.40)
list(JOIN tried_versions " and " tried_versions_text)

set(KESTREL_QGIS AUTO CACHE STRING
    "Build the QGIS plugin: ON with any QGIS that is found, AUTO with QGIS ${tried_versions_text}, or OFF")
set_property(CACHE KESTREL_QGIS PROPERTY STRINGS AUTO ON OFF)

set(KESTREL_HAS_QGIS FALSE)
if(KESTREL_QGIS)
  find_path(QGIS_CMAKE_DIR FindQGIS.cmake PATH_SUFFIXES share/qgis)
  mark_as_advanced(QGIS_CMAKE_DIR)
  if(QGIS_CMAKE_DIR)
    list(APPEND CMAKE_MODULE_PATH ${QGIS_CMAKE_DIR})
    find_package(QGIS QUIET)
  endif()
  find_package(Qt5 5.15 QUIET COMPONENTS Xml)
  if(NOT QGIS_FOUND)
    set(missing "QGIS was not found: install libqgis-dev")
  elseif(NOT QT_VERSION_MAJOR EQUAL 5 OR NOT Qt5Xml_FOUND)
    set(missing "a QGIS plugin needs Qt 5.15 with its XML module: install qtbase5-dev")
  elseif(QGIS_VERSION VERSION_LESS 3.22)
    set(missing "QGIS ${QGIS_VERSION} is older than 3.22")
  else()
    string(REGEX MATCH "^[0-9]+[.][0-9]+" release "${QGIS_VERSION}")
    if(KESTREL_QGIS STREQUAL "AUTO" AND NOT release IN_LIST tried_versions)
      set(missing "it has been tried with QGIS ${tried_versions_text}, not with ${QGIS_VERSION}; -DKESTREL_QGIS=ON builds it")
    else()
      set(KESTREL_HAS_QGIS TRUE)
    endif()
  endif()
  if(NOT KESTREL_HAS_QGIS AND NOT KESTREL_QGIS STREQUAL "AUTO")
    message(FATAL_ERROR "KESTREL_QGIS is on, but ${missing}")
  endif()
else()
  set(missing "KESTREL_QGIS is off")
endif()

if(KESTREL_HAS_QGIS)
  message(STATUS "QGIS ${QGIS_VERSION}: the plugin is built")
  add_library(kestrel_qgis_core INTERFACE)
  # Their headers warn; and they include those of GDAL, which are found the same way.
  target_include_directories(kestrel_qgis_core SYSTEM INTERFACE ${QGIS_INCLUDE_DIR} ${GDAL_INCLUDE_DIRS})
  target_link_libraries(kestrel_qgis_core INTERFACE ${QGIS_CORE_LIBRARY} Qt5::Widgets Qt5::Xml)
  add_library(kestrel_qgis_gui INTERFACE)
  target_link_libraries(kestrel_qgis_gui INTERFACE kestrel_qgis_core ${QGIS_GUI_LIBRARY})
  # Where QGIS itself is installed, for tests that start it.
  get_filename_component(KESTREL_QGIS_PREFIX "${QGIS_INCLUDE_DIR}/../.." REALPATH)
else()
  message(STATUS "The QGIS plugin is not built: ${missing}")
endif()
