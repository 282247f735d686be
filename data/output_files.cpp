// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/output_files.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/errors.h"
#include "base/files.h"
#include "data/shapefile_members.h"

namespace kestrel::data {

namespace {

bool is_shapefile(const std::string& name) {
    return name.ends_with(".shp") || name.ends_with(".SHP");
}

/// Moves one file where nobody can be told of a failure any more. \return whether it is there now.
bool try_move(const std::string& from, const std::string& to) noexcept try {
    base::rename_file(from, to);
    return true;
} catch (...) {
    return false;
}

/// Removes a working folder at the end, when a failure must not hide what came before it: a hidden folder stays.
void try_remove(const std::string& folder) noexcept {
    try {
        base::remove_folder(folder);
    } catch (...) {
        return;
    }
}

std::vector<std::string> names_of_files_in(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    if (error) {
        throw base::system_error(error.value(), folder);
    }
    return names;
}

/// Files on their way from one folder to another. What stands at a place already is kept aside in `replaced`, and
/// unless commit() is called, destruction moves everything back.
class Move {
  public:
    Move(std::string from, std::string to, std::string replaced)
        : m_from(std::move(from)), m_to(std::move(to)), m_replaced(std::move(replaced)) {}
    ~Move() {
        for (auto name = m_moved.rbegin(); name != m_moved.rend(); ++name) {
            try_move(base::join_path(m_to, *name), base::join_path(m_from, *name));
        }
        for (const std::string& name : m_kept) {
            try_move(base::join_path(m_replaced, name), base::join_path(m_to, name));
        }
    }
    Move(const Move&) = delete;
    Move& operator=(const Move&) = delete;

    void file(const std::string& name) {
        const std::string place = base::join_path(m_to, name);
        m_moved.reserve(m_moved.size() + 1);  // so that nothing is moved without being noted
        m_kept.reserve(m_kept.size() + 1);
        std::string moved = name;
        std::string kept = name;
        if (base::file_exists(place)) {
            base::create_folder(m_replaced);
            base::rename_file(place, base::join_path(m_replaced, name));
            m_kept.push_back(std::move(kept));
        }
        base::rename_file(base::join_path(m_from, name), place);
        m_moved.push_back(std::move(moved));
    }

    void commit() noexcept {
        m_moved.clear();
        m_kept.clear();
    }

  private:
    std::string m_from;
    std::string m_to;
    std::string m_replaced;
    std::vector<std::string> m_moved;
    std::vector<std::string> m_kept;
};

}  // namespace

SetAsideOutput::SetAsideOutput(const std::string& path, const std::vector<std::string>& records)
    : m_folder(base::folder_of(path)) {
    for (const std::string& member : shapefile_members(path)) {
        m_names.push_back(base::file_name_of(member));
    }
    for (const std::string& record : records) {
        if (base::file_exists(record)) {
            m_names.push_back(base::file_name_of(record));
        }
    }
    if (m_names.empty()) {
        return;
    }
    // The .shp goes first and comes back last: wherever it stands, its members stand too.
    std::sort(m_names.begin(), m_names.end());
    m_names.erase(std::unique(m_names.begin(), m_names.end()), m_names.end());
    std::stable_partition(m_names.begin(), m_names.end(), is_shapefile);

    m_aside = base::make_unique_folder(m_folder, ".kestrel-old-");
    try {
        for (const std::string& name : m_names) {
            base::rename_file(base::join_path(m_folder, name), base::join_path(m_aside, name));
        }
    } catch (...) {
        put_back();
        throw;
    }
}

SetAsideOutput::~SetAsideOutput() {
    put_back();
}

void SetAsideOutput::put_back() noexcept {
    if (m_aside.empty()) {
        return;
    }
    bool whole = true;
    for (auto name = m_names.rbegin(); name != m_names.rend(); ++name) {
        const std::string kept = base::join_path(m_aside, *name);
        whole = (!base::file_exists(kept) || try_move(kept, base::join_path(m_folder, *name))) && whole;
    }
    if (whole) {
        try_remove(m_aside);
    }
    m_aside.clear();
}

void SetAsideOutput::discard() {
    const std::string aside = std::exchange(m_aside, {});
    if (!aside.empty()) {
        base::remove_folder(aside);
    }
}

StagedOutput::StagedOutput(const std::string& folder)
    : m_folder(folder), m_stage(base::make_unique_folder(folder, ".kestrel-new-")) {}

StagedOutput::~StagedOutput() {
    try_remove(m_stage);
}

std::string StagedOutput::path(const std::string& name) const {
    return base::join_path(m_stage, name);
}

std::vector<std::string> StagedOutput::publish() {
    std::vector<std::string> names = names_of_files_in(m_stage);
    std::sort(names.begin(), names.end());
    std::stable_partition(names.begin(), names.end(), is_shapefile);

    Move move(m_stage, m_folder, path(".replaced"));
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        move.file(*name);
    }
    std::vector<std::string> paths;
    paths.reserve(names.size());
    for (const std::string& name : names) {
        paths.push_back(base::join_path(m_folder, name));
    }
    move.commit();
    return paths;
}

}  // namespace kestrel::data
