# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Dependencies run one way, rooms keep their private headers, and libraries stay behind the rooms that wrap them."""

import posixpath
import re
from typing import NamedTuple

import tree

# The rooms from the ground up. A room includes itself and the rooms before it. A folder below a room belongs to it,
# unless it stands here as a room of its own.
ROOMS = [
    "base",
    "reporting",
    "polygons",
    "data",
    "counting",
    "contracts",
    "coefficients",
    "parameters",
    "records",
    "engine",
    "answer",  # planned: what a run means, as plain data
    "outputs",  # planned: writers of an answer
    "running",
    "forms/desktop",
    "forms/coefficients",
    "forms/analysis",
    "forms/records",
    "forms/help",
    "extension",
    "hosting",
    "apps/cli",
    "apps/cli/demo",
    "apps/qgis",
]

# These may include every room and every private header, and nothing outside of them includes them, but for benchmarks
# the makers of inputs in tests/support.
OUTSIDE = ["tests", "bench"]

# Rooms that know nothing of each other, whatever their order.
STRANGERS = [
    ("apps/qgis", "apps/cli"),
    ("apps/qgis", "apps/cli/demo"),
]

# Of the second room, the first includes these headers and no others, whatever their order.
DOORS = {
    ("apps/cli", "apps/cli/demo"): ["apps/cli/demo/demo_command.h"],
    ("apps/cli/demo", "apps/cli"): [
        "apps/cli/chosen_store.h",
        "apps/cli/console_interaction.h",
        "apps/cli/refusal.h",
        "apps/cli/run_command.h",
        "apps/cli/user_files.h",
    ],
}

# All that other rooms may include of these rooms. Their other headers are private.
PUBLIC = {
    "polygons": [
        "polygons/dissolve.h",
        "polygons/dissolved_polygons.h",
        "polygons/intersect.h",
        "polygons/orientation.h",
        "polygons/overlap.h",
        "polygons/polygons.h",
        "polygons/repair.h",
    ],
    "data": [
        "data/class_breaks.h",
        "data/feature_class.h",
        "data/field.h",
        "data/layer_file.h",
        "data/output_files.h",
        "data/raster.h",
        "data/raster_writer.h",
        "data/shapefile_members.h",
        "data/shapefile_writer.h",
        "data/spatial_reference.h",
        "data/table.h",
        "data/xml.h",
    ],
    "counting": [
        "counting/zonal_tabulation.h",
        "counting/zone_counts.h",
    ],
}


class Library(NamedTuple):
    name: str
    headers: str  # a pattern for the whole name of a header
    rooms: list
    sources_only: bool = False  # not in headers, so that users of the room do without the library


# Every library that is neither the language's nor the system's, and the rooms that may include its headers.
LIBRARIES = [
    # Joins, intersects and repairs polygons.
    Library("GEOS", r"geos_c\.h|geos/.+", ["polygons"], sources_only=True),
    # Reads rasters and layers of any format, and projects them.
    Library("GDAL", r"(gdal|ogr|cpl_|vrt)\w*\.h", ["data"], sources_only=True),
    Library("PROJ", r"proj\.h|proj/.+", ["data"], sources_only=True),
    # Writes the records of shapefiles without an object for each.
    Library("shapelib", r"shapefil\.h", ["data"], sources_only=True),
    # The XML tree behind data/xml.h.
    Library("pugixml", r"pugi\w*\.hpp", ["data"], sources_only=True),
    # Text from numbers, independent of the locale. Wraps nothing, so a room that needs it is added here.
    Library("fmt", r"fmt/.+", ["base", "reporting", "polygons", "data", "coefficients", "parameters", "engine",
                               "running", "forms/coefficients", "apps/cli", "apps/qgis"]),
    # Windows. What stands before the forms, and the extension after them, does without a screen.
    Library("Qt", r"Q\w+(/\w+)?", ["forms/coefficients", "forms/analysis", "forms/records", "forms/help",
                                   "forms/desktop", "apps/qgis"]),
    # The desktop that hosts the extension.
    Library("QGIS", r"(qgs|qgis)\w*\.h", ["apps/qgis"]),
    # The command line with its help texts.
    Library("CLI11", r"CLI/.+", ["apps/cli", "apps/cli/demo"]),
    # The JSON output.
    Library("nlohmann-json", r"nlohmann/.+", ["apps/cli"]),
]

# The headers of C++20, of C, and of the system, which every room may include.
CPP_HEADERS = set("""
    algorithm any array atomic barrier bit bitset charconv chrono compare complex concepts condition_variable coroutine
    deque exception execution filesystem format forward_list fstream functional future initializer_list iomanip ios
    iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new numbers numeric
    optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span
    sstream stack stdexcept stop_token streambuf string string_view strstream syncstream system_error thread tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
    cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef cstdint cstdio
    cstdlib cstring ctime cuchar cwchar cwctype
""".split())
C_HEADERS = set("""
    assert.h complex.h ctype.h errno.h fenv.h float.h inttypes.h iso646.h limits.h locale.h math.h setjmp.h signal.h
    stdalign.h stdarg.h stdatomic.h stdbool.h stddef.h stdint.h stdio.h stdlib.h stdnoreturn.h string.h tgmath.h
    threads.h time.h uchar.h wchar.h wctype.h
""".split())
POSIX_HEADERS = set("""
    aio.h arpa/inet.h cpio.h dirent.h dlfcn.h fcntl.h fmtmsg.h fnmatch.h ftw.h glob.h grp.h iconv.h langinfo.h libgen.h
    monetary.h mqueue.h ndbm.h net/if.h netdb.h netinet/in.h netinet/tcp.h nl_types.h poll.h pthread.h pwd.h regex.h
    sched.h search.h semaphore.h spawn.h strings.h stropts.h syslog.h tar.h termios.h trace.h ulimit.h unistd.h utime.h
    utmpx.h wordexp.h
""".split())
# The system's sys/, and the compiler's own headers of the processor's instructions.
SYSTEM_PATTERN = re.compile(r"sys/\w+\.h|\w+intrin\.h")

# The names of boxes and dialogs, and where they may be written.
BOXES = re.compile(r"\b(QMessageBox|QInputDialog|QFileDialog)\b")
BOX_PLACES = ("forms/desktop/qt_interaction.cpp", "apps/")

HERE = "tests/checks/check_includes.py"


class Include(NamedTuple):
    name: str  # of the file it stands in
    line: int
    header: str
    quoted: bool

    def at(self):
        return f"{self.name}:{self.line}"


def parse(root, names):
    return [Include(name, *include) for name in names for include in tree.includes(name, root)]


def room_of(name):
    """The innermost room around a file, or one of OUTSIDE; empty for a file in none."""
    steps = name.split("/")[:-1]
    while steps and "/".join(steps) not in ROOMS + OUTSIDE:
        steps.pop()
    return "/".join(steps)


def unknown_rooms(names):
    strays = {}
    for name in names:
        if not room_of(name):
            strays.setdefault(posixpath.dirname(name), name)
    return [f"{name}:1: {folder or 'the root'}/ is no room: give it its place in ROOMS of {HERE}"
            for folder, name in strays.items()]


def wrong_paths(root, includes):
    return [f"{include.at()}: \"{include.header}\" is no path from the root to a file" for include in includes
            if include.quoted and (posixpath.normpath(include.header) != include.header or include.header[0] == "/"
                                   or not (root / include.header).is_file())]


def objection(user, header):
    """Why a file of the room `user` may not include a header of the project; empty when it may."""
    used = room_of(header)
    if user == used:
        return ""
    if user == "bench" and header.startswith("tests/support/"):
        return ""  # benchmarks are given the inputs that tests make
    if used in OUTSIDE:
        return f"nothing outside of {used}/ includes {used}/"
    if user in OUTSIDE:
        return ""
    if (user, used) in STRANGERS or (used, user) in STRANGERS:
        return f"{user}/ and {used}/ know nothing of each other (STRANGERS)"
    if (user, used) in DOORS:
        through = ", ".join(DOORS[user, used])
        return "" if header in DOORS[user, used] else f"of {used}/, {user}/ includes only {through} (DOORS)"
    if ROOMS.index(used) > ROOMS.index(user):
        return f"{user}/ comes before {used}/ and must not depend on it (ROOMS)"
    if used in PUBLIC and header not in PUBLIC[used]:
        return f"a private header of {used}/, whose public ones are in PUBLIC"
    return ""


def wrong_rooms(includes):
    findings = []
    for include in includes:
        user = room_of(include.name)
        if include.quoted and user and room_of(include.header):
            reason = objection(user, include.header)
            if reason:
                findings.append(f"{include.at()}: \"{include.header}\": {reason}")
    return findings


def stale_entries(root, includes):
    """Headers in PUBLIC and DOORS that do not exist, or that no file uses of those they are listed for."""
    listed = [(header, set(ROOMS) - {room}) for room, headers in PUBLIC.items() for header in headers]
    listed += [(header, {user}) for (user, _), headers in DOORS.items() for header in headers]
    users = {}
    for include in includes:
        if include.quoted:
            users.setdefault(include.header, set()).add(room_of(include.name))
    own_lines = tree.text(HERE).splitlines()
    findings = []
    for header, rooms in listed:
        line = next(number for number, content in enumerate(own_lines, 1) if f'"{header}"' in content)
        if not (root / header).is_file():
            findings.append(f"{HERE}:{line}: {header} is listed and does not exist")
        elif not users.get(header, set()) & rooms:
            findings.append(f"{HERE}:{line}: {header} is listed and no room uses it that it is listed for")
    return findings


def is_of_system(header):
    return header in CPP_HEADERS | C_HEADERS | POSIX_HEADERS or SYSTEM_PATTERN.fullmatch(header) is not None


def wrong_libraries(includes):
    findings = []
    for include in includes:
        room = room_of(include.name)
        if include.quoted or room in OUTSIDE or is_of_system(include.header):
            continue
        said = f"{include.at()}: <{include.header}>"
        library = next((one for one in LIBRARIES if re.fullmatch(one.headers, include.header)), None)
        if library is None:
            findings.append(f"{said} is of no library known here: headers of the project stand in quotation marks; a "
                            f"new library goes into LIBRARIES of {HERE}, with its rooms and the reason")
        elif room not in library.rooms:
            findings.append(f"{said}: {library.name} belongs into {', '.join(library.rooms)} only (LIBRARIES)")
        elif library.sources_only and not include.name.endswith(".cpp"):
            findings.append(f"{said}: {library.name} belongs into sources only, not into headers (LIBRARIES)")
    return findings


def misplaced_boxes(root, names):
    return [f"{name}:{number}: boxes and dialogs are shown through reporting::current_interaction()"
            for name in names if not name.startswith(BOX_PLACES) and room_of(name) not in OUTSIDE
            for number, content in enumerate(tree.text(name, root).splitlines(), 1) if BOXES.search(content)]


def circles(includes):
    """Every set of files that reach each other; a source and the header of its name are one file."""
    uses = {}
    for include in includes:
        user, used = posixpath.splitext(include.name)[0], posixpath.splitext(include.header)[0]
        if include.quoted and user != used:
            uses.setdefault(user, {}).setdefault(used, []).append(include)

    def reached_from(start):
        reached, ahead = set(), [start]
        while ahead:
            new = uses.get(ahead.pop(), {}).keys() - reached
            reached |= new
            ahead += new
        return reached

    reached = {file: reached_from(file) for file in uses}
    findings, told = [], set()
    for file in sorted(uses):
        if file in reached[file] and file not in told:
            circle = sorted(other for other in reached[file] if file in reached.get(other, ()))
            told.update(circle)
            links = [link for one in circle for other in circle for link in uses[one].get(other, [])]
            findings.append(f"{links[0].at()}: a circle of {len(circle)} files: {', '.join(circle)}" +
                            "".join(f"\n    {link.at()}: \"{link.header}\"" for link in links))
    return findings


def all_findings(root, names):
    includes = parse(root, names)
    return [*unknown_rooms(names), *wrong_paths(root, includes), *wrong_rooms(includes), *stale_entries(root, includes),
            *wrong_libraries(includes), *misplaced_boxes(root, names), *circles(includes)]


def main(root, names):
    tree.finish(all_findings(root, names))


if __name__ == "__main__":
    main(tree.ROOT, tree.sources())
