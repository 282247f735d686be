# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""The check of includes passes on a correct tree, and fails on every kind of wrong one."""

import contextlib
import io
import tempfile
import unittest
from pathlib import Path

import check_includes


def including(*headers):
    return "".join(f"#include {header if header[0] == '<' else chr(34) + header + chr(34)}\n" for header in headers)


def correct_tree():
    """Path and text of every file of a small tree that has all listed headers, each used as it is meant."""
    files = {
        "base/files.h": including("<string>", "<cstdint>"),
        "base/files.cpp": including("base/files.h", "<fmt/format.h>", "<stdlib.h>", "<sys/stat.h>", "<unistd.h>"),
        "reporting/interaction.h": including("base/files.h"),
        "polygons/geos_support.h": including("polygons/polygons.h", "base/files.h"),
        "polygons/geos_support.cpp": including("polygons/geos_support.h", "<geos_c.h>"),
        "data/raster.cpp": including("data/raster.h", "polygons/polygons.h", "<gdal_priv.h>", "<cpl_error.h>"),
        "data/xml.cpp": including("data/xml.h", "<pugixml.hpp>", "<iconv.h>"),
        "counting/cell_runs.h": including("data/raster.h", "<emmintrin.h>"),
        "engine/model_run.cpp": including(*(h for headers in check_includes.PUBLIC.values() for h in headers)),
        "engine/model_run.h": including("reporting/interaction.h"),
        "forms/coefficients/grid.h": including("engine/model_run.h", "<QTableWidget>"),
        "forms/help/about.cpp": including("forms/coefficients/grid.h", "<QtWidgets/QDialog>"),
        "forms/desktop/qt_interaction.h": including("reporting/interaction.h", "<QString>"),
        "forms/desktop/qt_interaction.cpp": including("forms/desktop/qt_interaction.h", "<QMessageBox>"),
        "extension/windows.cpp": including("forms/coefficients/grid.h", "<dlfcn.h>"),
        "apps/cli/main.cpp": including("apps/cli/demo/demo_command.h", "<CLI/CLI.hpp>", "<nlohmann/json.hpp>"),
        "apps/cli/demo/demo_command.cpp": including("apps/cli/demo/demo_command.h", "data/raster_writer.h",
                                                    *check_includes.DOORS["apps/cli/demo", "apps/cli"]),
        "apps/qgis/plugin.cpp": including("forms/desktop/qt_interaction.h", "<qgisplugin.h>", "<QMessageBox>"),
        "tests/support/shapes.h": including("polygons/geos_support.h", "<gtest/gtest.h>"),
        "bench/units_bench.cpp": including("counting/cell_runs.h", "tests/support/shapes.h", "<benchmark/benchmark.h>"),
    }
    listed = [*check_includes.PUBLIC.values(), *check_includes.DOORS.values()]
    return {**{header: "#pragma once\n" for headers in listed for header in headers}, **files}


class SmallTree(unittest.TestCase):
    def setUp(self):
        self.make_correct_tree()

    def make_correct_tree(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.names = []
        for name, text in correct_tree().items():
            self.write(name, text)

    def write(self, name, text=""):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        self.names = sorted({*self.names, name})

    def append(self, name, *headers):
        """Adds includes to a file of the tree; returns the line of the first."""
        text = (self.root / name).read_text(encoding="utf-8")
        self.write(name, text + including(*headers))
        return text.count("\n") + 1

    def remove(self, name):
        (self.root / name).unlink()
        self.names.remove(name)

    def findings(self):
        return check_includes.all_findings(self.root, self.names)

    def assert_finds(self, at, *words):
        """There is one finding, at this file and line, and it says these words."""
        findings = self.findings()
        self.assertEqual(len(findings), 1, findings)
        self.assertTrue(findings[0].startswith(at + ":"), findings)
        for word in words:
            self.assertIn(word, findings[0])

    def assert_refuses(self, name, header, *words):
        """An include added to a file of the tree, or to a new one, is the one finding there is."""
        if name not in self.names:
            self.write(name, "#pragma once\n")
        line = self.append(name, header)
        self.assert_finds(f"{name}:{line}", header, *words)

    def assert_takes(self, name, header):
        self.write(name, including(header))
        self.assertEqual(self.findings(), [])

    def line_of(self, header):
        """Where the lists of the check name a header."""
        lines = Path(check_includes.__file__).read_text(encoding="utf-8").splitlines()
        return next(number for number, line in enumerate(lines, 1)
                    if line.strip() == f'"{header}",' or f'["{header}"]' in line)


class Whole(SmallTree):
    def result(self):
        """What the check prints, and its exit status."""
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed), self.assertRaises(SystemExit) as end:
            check_includes.main(self.root, self.names)
        return printed.getvalue(), end.exception.code

    def test_passes_on_a_correct_tree(self):
        self.assertEqual(self.findings(), [])
        self.assertEqual(self.result(), ("", 0))

    def test_fails_and_prints_what_it_found(self):
        self.append("base/files.h", "engine/model_run.h")
        printed, status = self.result()
        self.assertIn("base/files.h:3: \"engine/model_run.h\": base/ comes before engine/", printed)
        self.assertTrue(status)


class Order(SmallTree):
    def test_upwards(self):
        self.assert_refuses("base/clock.h", "reporting/interaction.h", "base/ comes before reporting/", "ROOMS")

    def test_upwards_over_many_rooms(self):
        self.assert_refuses("polygons/geos_support.cpp", "engine/model_run.h", "polygons/ comes before engine/")

    def test_extension_from_below(self):
        self.write("extension/commands.h")
        self.assert_refuses("forms/help/about.cpp", "extension/commands.h", "forms/help/ comes before extension/")

    def test_rooms_to_come(self):
        self.write("outputs/layer.h")
        self.assert_takes("running/run.cpp", "outputs/layer.h")

    def test_rooms_to_come_upwards(self):
        self.write("running/run.h")
        self.assert_refuses("answer/areas.cpp", "running/run.h", "answer/ comes before running/")

    def test_forms_that_come_later(self):
        self.write("forms/help/about.h")
        self.assert_refuses("forms/records/viewer.cpp", "forms/help/about.h", "forms/records/ comes before forms/help/")

    def test_forms_of_the_desktop(self):
        self.assert_refuses("forms/desktop/processing.cpp", "forms/coefficients/grid.h",
                            "forms/desktop/ comes before forms/coefficients/")

    def test_the_command_knows_nothing_of_the_desktop(self):
        self.write("apps/qgis/plugin.h")
        self.assert_refuses("apps/cli/main.cpp", "apps/qgis/plugin.h", "know nothing of each other", "STRANGERS")

    def test_the_desktop_knows_nothing_of_the_command(self):
        self.assert_refuses("apps/qgis/plugin.cpp", "apps/cli/refusal.h", "know nothing of each other")

    def test_the_desktop_knows_nothing_of_the_demonstration(self):
        self.assert_refuses("apps/qgis/plugin.cpp", "apps/cli/demo/demo_command.h", "know nothing of each other")

    def test_the_demonstration_has_one_door(self):
        self.write("apps/cli/demo/demo_land.h")
        self.assert_refuses("apps/cli/main.cpp", "apps/cli/demo/demo_land.h",
                            "includes only apps/cli/demo/demo_command.h")

    def test_the_demonstration_uses_small_helpers_only(self):
        self.write("apps/cli/run_inputs.h")
        self.assert_refuses("apps/cli/demo/demo_command.cpp", "apps/cli/run_inputs.h", "DOORS")

    def test_tests_are_included_by_tests_only(self):
        for name in ("engine/model_run.cpp", "apps/cli/main.cpp"):
            with self.subTest(name):
                self.make_correct_tree()
                self.assert_refuses(name, "tests/support/shapes.h", "nothing outside of tests/ includes tests/")

    def test_of_tests_benchmarks_include_their_support_only(self):
        self.write("tests/engine/small_world.h")
        self.assert_refuses("bench/units_bench.cpp", "tests/engine/small_world.h", "nothing outside of tests/")

    def test_benchmarks_are_included_by_benchmarks_only(self):
        self.write("bench/floor.h")
        self.assert_refuses("tests/support/shapes.h", "bench/floor.h", "nothing outside of bench/ includes bench/")

    def test_a_folder_in_a_room_belongs_to_it(self):
        self.assert_refuses("base/text/utf8.h", "engine/model_run.h", "base/ comes before engine/")


class UnknownRooms(SmallTree):
    def test_at_the_root(self):
        self.write("attic/clock.h")
        self.assert_finds("attic/clock.h:1", "attic/ is no room", "ROOMS")

    def test_is_told_once(self):
        self.write("attic/clock.h")
        self.write("attic/clock.cpp", including("attic/clock.h"))
        self.assert_finds("attic/clock.cpp:1", "attic/ is no room")

    def test_in_forms(self):
        self.write("forms/wizard/page.cpp")
        self.assert_finds("forms/wizard/page.cpp:1", "forms/wizard/ is no room")

    def test_beside_the_rooms_of_forms(self):
        self.write("forms/page.cpp")
        self.assert_finds("forms/page.cpp:1", "forms/ is no room")

    def test_in_apps(self):
        self.write("apps/web/main.cpp")
        self.assert_finds("apps/web/main.cpp:1", "apps/web/ is no room")

    def test_beside_the_rooms(self):
        self.write("main.cpp")
        self.assert_finds("main.cpp:1", "the root/ is no room")


class PrivateHeaders(SmallTree):
    def test_from_outside(self):
        for header in ("polygons/ring_assembly.h", "data/tile_lines.h", "counting/edge_sweep.h"):
            with self.subTest(header):
                self.make_correct_tree()
                self.write(header)
                self.assert_refuses("engine/model_run.cpp", header, f"a private header of {header.split('/')[0]}/")

    def test_between_rooms_that_have_some(self):
        self.assert_refuses("data/xml.cpp", "polygons/geos_support.h", "a private header of polygons/")

    def test_within_the_room(self):
        self.write("data/tile_lines.h")
        self.assert_takes("data/table.cpp", "data/tile_lines.h")

    def test_from_tests_and_benchmarks(self):
        self.assert_takes("tests/counting/cell_runs_test.cpp", "counting/cell_runs.h")
        self.assert_takes("bench/runs_bench.cpp", "counting/cell_runs.h")

    def test_listed_and_missing(self):
        line = self.line_of("data/raster_writer.h")
        self.remove("data/raster_writer.h")
        found = [finding for finding in self.findings() if finding.startswith(f"{check_includes.HERE}:{line}:")]
        self.assertEqual(found, [f"{check_includes.HERE}:{line}: data/raster_writer.h is listed and does not exist"])

    def test_listed_and_unused(self):
        self.leave_unused("counting/zone_counts.h")
        self.assert_finds(f"{check_includes.HERE}:{self.line_of('counting/zone_counts.h')}",
                          "counting/zone_counts.h is listed and no room uses it")

    def test_use_by_its_own_room_tests_and_benchmarks_does_not_count(self):
        self.leave_unused("counting/zone_counts.h")
        for name in ("counting/sweep.cpp", "tests/counting/zones_test.cpp", "bench/zones_bench.cpp"):
            self.write(name, including("counting/zone_counts.h"))
        self.assert_finds(f"{check_includes.HERE}:{self.line_of('counting/zone_counts.h')}",
                          "counting/zone_counts.h is listed and no room uses it")

    def test_a_door_that_nobody_uses(self):
        self.write("apps/cli/main.cpp")
        self.write("apps/cli/demo/other.cpp", including("apps/cli/demo/demo_command.h"))
        self.assert_finds(f"{check_includes.HERE}:{self.line_of('apps/cli/demo/demo_command.h')}",
                          "apps/cli/demo/demo_command.h is listed and no room uses it")

    def leave_unused(self, header):
        text = (self.root / "engine/model_run.cpp").read_text(encoding="utf-8")
        self.write("engine/model_run.cpp", text.replace(including(header), ""))


class Libraries(SmallTree):
    def test_in_a_wrong_room(self):
        for name, header, library in (
                ("data/feature_class.cpp", "<geos_c.h>", "GEOS belongs into polygons only"),
                ("engine/zones.cpp", "<ogrsf_frmts.h>", "GDAL belongs into data only"),
                ("polygons/check.cpp", "<cpl_conv.h>", "GDAL belongs into data only"),
                ("apps/cli/where.cpp", "<proj.h>", "PROJ belongs into data only"),
                ("engine/writer.cpp", "<shapefil.h>", "shapelib belongs into data only"),
                ("coefficients/store.cpp", "<pugixml.hpp>", "pugixml belongs into data only"),
                ("counting/sweep.cpp", "<fmt/format.h>", "fmt belongs into"),
                ("hosting/run.cpp", "<QString>", "Qt belongs into"),
                ("apps/cli/window.cpp", "<QApplication>", "Qt belongs into"),
                ("extension/commands.cpp", "<QString>", "Qt belongs into"),
                ("extension/toolbar.cpp", "<QtWidgets/QToolBar>", "Qt belongs into"),
                ("forms/desktop/canvas.cpp", "<qgsmapcanvas.h>", "QGIS belongs into apps/qgis only"),
                ("hosting/options.cpp", "<CLI/App.hpp>", "CLI11 belongs into"),
                ("engine/result.cpp", "<nlohmann/json.hpp>", "nlohmann-json belongs into apps/cli only")):
            with self.subTest(name):
                self.make_correct_tree()
                self.write(name)
                self.assert_refuses(name, header, library)

    def test_in_a_header_of_the_right_room(self):
        for name, header in (("polygons/geos_calls.h", "<geos_c.h>"), ("data/gdal_support.h", "<gdal.h>"),
                             ("data/crs.h", "<proj.h>"), ("data/shape_records.h", "<shapefil.h>"),
                             ("data/xml_node.h", "<pugixml.hpp>")):
            with self.subTest(name):
                self.make_correct_tree()
                self.assert_refuses(name, header, "belongs into sources only")

    def test_unknown(self):
        self.assert_refuses("engine/model_run.h", "<boost/geometry.hpp>", "no library known here", "LIBRARIES",
                            "the reason")

    def test_project_headers_in_angle_brackets(self):
        self.assert_refuses("engine/model_run.h", "<base/files.h>", "stand in quotation marks")

    def test_a_name_that_only_looks_like_the_systems(self):
        self.assert_refuses("base/files.h", "<sysinfo.h>", "no library known here")


class Circles(SmallTree):
    def test_of_two(self):
        self.write("engine/a.h", including("engine/b.h"))
        self.write("engine/b.h", including("<string>", "engine/a.h"))
        self.assert_finds("engine/a.h:1", "a circle of 2 files: engine/a, engine/b", "engine/a.h:1: \"engine/b.h\"",
                          "engine/b.h:2: \"engine/a.h\"")

    def test_of_three(self):
        self.write("engine/a.h", including("engine/b.h"))
        self.write("engine/b.h", including("engine/c.h"))
        self.write("engine/c.h", including("engine/a.h"))
        self.assert_finds("engine/a.h:1", "a circle of 3 files: engine/a, engine/b, engine/c",
                          "engine/a.h:1: \"engine/b.h\"", "engine/b.h:1: \"engine/c.h\"",
                          "engine/c.h:1: \"engine/a.h\"")

    def test_through_sources_and_their_headers(self):
        self.write("engine/a.h")
        self.write("engine/a.cpp", including("engine/a.h", "engine/b.h"))
        self.write("engine/b.h")
        self.write("engine/b.cpp", including("engine/b.h", "engine/a.h"))
        self.assert_finds("engine/a.cpp:2", "a circle of 2 files: engine/a, engine/b", "engine/a.cpp:2: \"engine/b.h\"",
                          "engine/b.cpp:2: \"engine/a.h\"")

    def test_of_three_through_a_source(self):
        self.write("engine/a.h", including("engine/b.h"))
        self.write("engine/b.h")
        self.write("engine/b.cpp", including("engine/b.h", "engine/c.h"))
        self.write("engine/c.h", including("engine/a.h"))
        self.assert_finds("engine/a.h:1", "a circle of 3 files", "engine/b.cpp:2: \"engine/c.h\"")

    def test_in_tests(self):
        self.write("tests/support/a.h", including("tests/support/b.h"))
        self.write("tests/support/b.h", including("tests/support/a.h"))
        self.assert_finds("tests/support/a.h:1", "a circle of 2 files")

    def test_two_apart_are_told_apart(self):
        for one, other in (("engine/a", "engine/b"), ("records/a", "records/b")):
            self.write(f"{one}.h", including(f"{other}.h"))
            self.write(f"{other}.h", including(f"{one}.h"))
        self.assertEqual([finding.splitlines()[0] for finding in self.findings()],
                         ["engine/a.h:1: a circle of 2 files: engine/a, engine/b",
                          "records/a.h:1: a circle of 2 files: records/a, records/b"])

    def test_what_leads_into_a_circle_is_not_of_it(self):
        self.write("engine/a.h", including("engine/b.h"))
        self.write("engine/b.h", including("engine/a.h", "base/files.h"))
        self.write("engine/aa.h", including("engine/a.h"))
        self.assert_finds("engine/a.h:1", "a circle of 2 files: engine/a, engine/b\n")

    def test_two_ways_to_one_file_are_none(self):
        self.write("engine/a.h", including("engine/b.h", "engine/c.h"))
        self.write("engine/b.h", including("engine/d.h"))
        self.write("engine/c.h", including("engine/d.h"))
        self.write("engine/d.h")
        self.assertEqual(self.findings(), [])


class Paths(SmallTree):
    def test_missing(self):
        self.assert_refuses("engine/model_run.h", "base/gone.h", "no path from the root")

    def test_from_its_own_folder(self):
        self.assert_refuses("engine/model_run.cpp", "model_run.h", "no path from the root")

    def test_by_way_of_another_folder(self):
        self.assert_refuses("engine/model_run.cpp", "engine/../base/files.h", "no path from the root")

    def test_from_the_root_of_the_machine(self):
        self.assert_refuses("engine/model_run.cpp", str(self.root / "base/files.h"), "no path from the root")

    def test_library_in_quotation_marks(self):
        self.assert_refuses("engine/model_run.cpp", "geos_c.h", "no path from the root")


class Boxes(SmallTree):
    def test_outside_their_place(self):
        for name in ("forms/help/about.cpp", "forms/desktop/processing.cpp", "forms/desktop/qt_interaction.h"):
            for box in ("QMessageBox::warning(this, {}, {});", "QInputDialog::getText(this, {}, {});",
                        "QFileDialog window(this);"):
                with self.subTest(f"{name} {box}"):
                    self.make_correct_tree()
                    self.write(name, f"#pragma once\n{box}\n")
                    self.assert_finds(f"{name}:2", "shown through reporting::current_interaction()")

    def test_in_apps_and_tests(self):
        self.write("apps/qgis/window.cpp", "QFileDialog window(this);\n")
        self.write("tests/forms/desktop/qt_interaction_test.cpp", "QMessageBox* box = open_box();\n")
        self.assertEqual(self.findings(), [])


if __name__ == "__main__":
    unittest.main()
