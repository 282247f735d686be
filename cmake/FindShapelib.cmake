# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
#
# Finds shapelib, which has no package file of its own. Makes the target Shapelib::shp.

find_path(SHAPELIB_INCLUDE_DIR shapefil.h)
find_library(SHAPELIB_LIBRARY shp)
mark_as_advanced(SHAPELIB_INCLUDE_DIR SHAPELIB_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Shapelib REQUIRED_VARS SHAPELIB_LIBRARY SHAPELIB_INCLUDE_DIR)
if(Shapelib_FOUND AND NOT TARGET Shapelib::shp)
  add_library(Shapelib::shp UNKNOWN IMPORTED)
  set_target_properties(Shapelib::shp PROPERTIES IMPORTED_LOCATION ${SHAPELIB_LIBRARY}
                                                 INTERFACE_INCLUDE_DIRECTORIES ${SHAPELIB_INCLUDE_DIR})
endif()
