# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
#
# The one folder in which an installation keeps the extension library with etc and help beside it. The command finds it
# by its way from the command's own folder, which is the same in a build tree.

set(KESTREL_INSTALLED_FOLDER ${CMAKE_INSTALL_LIBDIR}/kestrel)
file(RELATIVE_PATH KESTREL_FOLDER_FROM_COMMAND ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/kestrel)
cmake_path(SET KESTREL_BUILT_FOLDER NORMALIZE ${PROJECT_BINARY_DIR}/apps/cli/${KESTREL_FOLDER_FROM_COMMAND})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/etc ${PROJECT_SOURCE_DIR}/help DESTINATION ${KESTREL_INSTALLED_FOLDER})

# Copies, because what runs in the build tree may change them.
file(GLOB_RECURSE installed_data CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/etc/* ${PROJECT_SOURCE_DIR}/help/*)
set(stamp ${PROJECT_BINARY_DIR}/installed_data.stamp)
add_custom_command(
  OUTPUT ${stamp}
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/etc ${KESTREL_BUILT_FOLDER}/etc
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/help ${KESTREL_BUILT_FOLDER}/help
  COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
  DEPENDS ${installed_data}
  COMMENT "Copying etc and help beside the extension library"
  VERBATIM)
add_custom_target(kestrel_installed_data DEPENDS ${stamp})
