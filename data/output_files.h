// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kestrel::data {

/// An older output that is out of the way while a run makes a new one of the same name.
///
/// Construction moves the shapefile at `path` with all its members, and the given records beside it, into a hidden
/// folder beside them. Unless discard() is called, destruction puts them back; what cannot be put back stays in that
/// folder, which is never deleted with files in it.
class SetAsideOutput {
  public:
    /// \param path of the .shp; nothing happens when no file of it exists.
    /// \param records further files in the same folder (run report, metadata, layer file, style); missing ones are
    ///        passed over.
    /// \throws RuntimeError 70 (or the one that fits) when a file cannot be moved; then all stand where they stood.
    SetAsideOutput(const std::string& path, const std::vector<std::string>& records);
    ~SetAsideOutput();
    SetAsideOutput(const SetAsideOutput&) = delete;
    SetAsideOutput& operator=(const SetAsideOutput&) = delete;

    /// Deletes what was set aside: the new output is there. When it throws, nothing is put back nevertheless.
    void discard();

  private:
    void put_back() noexcept;

    std::string m_folder;  // of the output
    std::string m_aside;   // empty when nothing was set aside
    std::vector<std::string> m_names;
};

/// A new output that is built in a hidden folder beside its place, and moved there when it is whole.
///
/// Unless publish() is called, destruction removes what was built. A process that dies leaves the hidden folder behind,
/// but no half-written .shp in its place.
class StagedOutput {
  public:
    /// \param folder in which the output will stand; it exists.
    /// \throws RuntimeError 70 (or the one that fits) when the folder cannot be written.
    explicit StagedOutput(const std::string& folder);
    ~StagedOutput();
    StagedOutput(const StagedOutput&) = delete;
    StagedOutput& operator=(const StagedOutput&) = delete;

    /// Where to build a file of this name.
    std::string path(const std::string& name) const;
    /// Moves everything to its place, the .shp last; files of these names are replaced.
    /// \return the paths, the .shp first. When it throws, nothing new is left in place, and what was to be replaced
    ///         stands there again.
    std::vector<std::string> publish();

  private:
    std::string m_folder;
    std::string m_stage;
};

}  // namespace kestrel::data
