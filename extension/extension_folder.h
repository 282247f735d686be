// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// \file
/// Which folder is the extension folder: the one with the store, the help, `temp` and `output`.
namespace kestrel {

/// The folder from which the library (or program) that holds this code was loaded, links resolved.
/// \throws RuntimeError 76 when the system does not tell.
std::string loaded_library_folder();

/// The folder for a user's data files by the desktop's rules.
/// \param xdg_data_home value of XDG_DATA_HOME; empty when it is not set. A relative one does not count.
/// \param home value of HOME, likewise.
/// \return empty when neither names one.
std::string user_data_folder(const std::string& xdg_data_home, const std::string& home);

/// The folder for a user's data files of the present process.
std::string user_data_folder();

/// `library_folder` if it can be written to, otherwise user_extension_folder().
std::string extension_folder(const std::string& library_folder, const std::string& data_folder);

/// The folder `kestrel` below `data_folder`, made on first use, with `etc` and `help` copied from `library_folder`.
/// What is there already is left as it is. \throws RuntimeError 76 when `data_folder` is empty, or the one that fits
/// when the folder cannot be made.
std::string user_extension_folder(const std::string& library_folder, const std::string& data_folder);

}  // namespace kestrel
