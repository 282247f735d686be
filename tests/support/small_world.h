// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/field.h"
#include "engine/clsISExecuteModel.h"
#include "hosting/headless_application.h"
#include "polygons/polygons.h"
#include "tests/support/raster_analysis.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

/// \file
/// Everything that a run needs, made from literals: a land cover, polygon layers, a parameter file and a host.
namespace kestrel::test {

/// A rectangle in cells of the land cover, counted from its lower left corner.
struct Box {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;
};

/// A feature of rectangles that do not overlap, with its attributes; without rectangles it is an empty geometry.
struct Shape {
    std::vector<Box> boxes;
    std::vector<data::Value> values{};
};

data::Field integer_field(const std::string& name, int length = 9);
data::Field big_integer_field(const std::string& name, int length = 18);
data::Field text_field(const std::string& name, int length = 20);
data::Field real_field(const std::string& name);

/// Progress that is asked a number of times, by report() or cancelled(), before it answers "stop" for good.
class LimitedProgress final : public base::Progress {
  public:
    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override { return ++m_asked > allowed; }
    int asked() const { return m_asked; }

    int allowed = 1'000'000;
    std::vector<double> fractions;
    std::vector<std::string> texts;

  private:
    mutable int m_asked = 0;
};

/// What the parameter file of a run says; its classes are lines without their keyword.
struct WorldParameters {
    std::string units = "Meters";
    std::string analysis_layer = "sheds";
    std::string analysis_field = "ID";
    std::string option = "1";
    std::string density_layer{};
    std::string density_field{};
    std::string density_high{};
    std::string density_low{};
    std::vector<std::string> scenarios{};
    std::vector<std::string> classes{"2#Developed#90#80#70", "5#Grassland#3#2#1", "7#Roads#100#100#100"};
};

/// Cells are squares of 100 metres in UTM zone 12 (NAD83), so a cell is a hectare.
class SmallWorld {
  public:
    SmallWorld();

    /// The land cover "cover": class codes separated by blanks, rows by line ends, the northernmost first; "." is
    /// NODATA.
    void land_cover(const std::string& cells, const std::string& reference = "EPSG:26912");
    /// A polygon layer on a shapefile. `selected` are feature ids, counted from 0.
    void layer(const std::string& name, const std::vector<data::Field>& fields, const std::vector<Shape>& shapes,
               std::vector<std::int64_t> selected = {}, const std::string& reference = "EPSG:26912");
    /// A polygon layer on a GeoJSON file, for names and values that no shapefile takes. Attributes are JSON.
    void json_layer(const std::string& name, const std::vector<std::pair<Box, std::string>>& features,
                    std::vector<std::int64_t> selected = {});

    /// Carries the run out. \return whether there is a finished output.
    bool run(RunOptions options = {});
    /// Carries the run out in another host than `application`.
    void run_in(contracts::Application& host, RunOptions options = {});

    const contracts::RunResult& result() const { return *application.result(); }
    std::string output_path() const { return output / "out.shp"; }
    /// The output's features in order, as "value|total|impervious|percent|complete".
    std::vector<std::string> rows() const;
    /// Names of the output's attribute fields.
    std::vector<std::string> field_names() const;
    /// What stands in the extension folder's "temp".
    std::vector<std::string> temp() const { return names_in(extension / "temp"); }
    /// Names of the map's layers from the top.
    std::vector<std::string> layer_names();

    /// Size of a cell in metres; set before anything is made.
    double cell = 100;
    TemporaryFolder folder;
    TemporaryFolder extension;
    TemporaryFolder output;
    /// Where ExecuteModel() is told to write; the folder above unless a test says otherwise.
    std::string output_folder;
    ScriptedInteraction said;
    LimitedProgress progress;
    RasterAnalysis raster_analysis;
    hosting::HeadlessApplication application{progress};
    WorldParameters parameters;

  private:
    void write_parameters() const;
};

/// The rectangles in map units, a feature for each shape.
polygons::PolygonSet polygons_of(const std::vector<Shape>& shapes, double cell = 100);
/// The same, as a run holds them.
inline polygons::SharedPolygons shared_polygons_of(const std::vector<Shape>& shapes, double cell = 100) {
    return std::make_shared<const polygons::PolygonSet>(polygons_of(shapes, cell));
}

}  // namespace kestrel::test
