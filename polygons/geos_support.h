// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "polygons/polygons.h"

struct GEOSContextHandle_HS;
struct GEOSGeom_t;
struct GEOSPrepGeom_t;

/// \file
/// Private to this room: GEOS with owners for what it allocates, and its errors as ours.
namespace kestrel::polygons {

/// A context of GEOS, used on one thread. What is made in it must not outlive it.
class Geos {
  public:
    struct Delete {
        GEOSContextHandle_HS* handle;
        void operator()(GEOSGeom_t* geometry) const;
        void operator()(const GEOSPrepGeom_t* prepared) const;
    };
    using Geometry = std::unique_ptr<GEOSGeom_t, Delete>;
    using Prepared = std::unique_ptr<const GEOSPrepGeom_t, Delete>;

    Geos();
    ~Geos();
    Geos(const Geos&) = delete;
    Geos& operator=(const Geos&) = delete;

    GEOSContextHandle_HS* handle() const noexcept { return m_handle; }

    /// Takes over what a call returned. \throws RuntimeError (library failure) when that is nothing.
    Geometry owned(GEOSGeom_t* geometry, const char* what) const;
    /// The answer of a predicate. \throws RuntimeError (library failure) when it could not tell.
    bool answer(char result, const char* what) const;

    bool valid(const Geometry& geometry) const;
    /// The polygons of these features as one multipolygon (valid or not); empty when they have none.
    Geometry multipolygon(const PolygonSet& set, std::span<const std::size_t> features) const;
    Geometry multipolygon(const PolygonSet& set, std::size_t feature) const { return multipolygon(set, {&feature, 1}); }
    Prepared prepare(const Geometry& geometry) const;

    /// Appends the polygons in `geometry` that have an area as a new feature; lines and points are dropped.
    void append(PolygonSet& set, const GEOSGeom_t* geometry) const;

  private:
    [[noreturn]] void fail(const char* what) const;
    Geometry ring(std::span<const Point> points) const;
    Geometry polygon(const PolygonSet& set, std::size_t polygon) const;
    void append_parts(PolygonSet& set, const GEOSGeom_t* geometry) const;
    void append_ring(PolygonSet& set, const GEOSGeom_t* ring) const;

    GEOSContextHandle_HS* m_handle;
    std::string m_message;  // of the last error
};

/// A context of GEOS for each thread, made when the thread first needs it.
class ThreadContexts {
  public:
    explicit ThreadContexts(int threads) : m_contexts(static_cast<std::size_t>(threads)) {}

    const Geos& of(int worker) {
        auto& context = m_contexts[static_cast<std::size_t>(worker)];
        if (!context) {
            context = std::make_unique<Geos>();
        }
        return *context;
    }

  private:
    std::vector<std::unique_ptr<Geos>> m_contexts;
};

}  // namespace kestrel::polygons
