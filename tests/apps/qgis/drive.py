# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""What the scripts share that drive the desktop: finding, clicking, answering boxes, telling, and ending.

A script is the body of a function:

    import drive

    def body():
        drive.check("the menu has six entries", len(drive.menu().actions()) == 6)

    drive.run(body)
"""

import os
import traceback
from pathlib import Path

from qgis.PyQt.QtCore import QCoreApplication, Qt, QTimer
from qgis.PyQt.QtTest import QTest
from qgis.PyQt.QtWidgets import QAction, QApplication, QDialog, QMenu, QMessageBox, QToolBar, QWidget
from qgis.utils import iface

FOLDER = Path(os.environ["KESTREL_DRIVE_FOLDER"]).resolve()
WORK = FOLDER / "work"
EXTENSION = FOLDER / "kestrel"
COMMANDS = {
    "run": "KESTREL_EXT.clsCommands.1",
    "parameters": "KESTREL_EXT.clsCommands.2",
    "metadata": "KESTREL_EXT.clsCommands.3",
    "coefficients": "KESTREL_EXT.clsCommands.4",
    "help": "KESTREL_EXT.clsCommands.5",
    "about": "KESTREL_EXT.clsCommands.6",
}

# Boxes that were shown, as (title, text), in order.
boxes = []
_failures = []
_lines = []


def tell(text):
    _lines.append(str(text))
    (FOLDER / "report.txt").write_text("\n".join(_lines) + "\n")


def check(what, holds, seen=""):
    """Writes down whether something holds that should."""
    tell(f"{'ok  ' if holds else 'FAIL'} {what}{'' if holds else ': ' + str(seen)}")
    if not holds:
        _failures.append(what)


def check_equal(what, seen, expected):
    check(what, seen == expected, f"{seen!r}, not {expected!r}")


def need(what, found):
    """The same for what nothing can go on without."""
    if found is None or found is False:
        raise AssertionError(what)
    return found


def wait(milliseconds=100):
    QTest.qWait(milliseconds)


def wait_until(holds, seconds=20):
    for _ in range(seconds * 20):
        if holds():
            return True
        wait(50)
    return False


def action(name):
    return need(f"there is no action {name}", iface.mainWindow().findChild(QAction, COMMANDS.get(name, name)))


def toolbar():
    return need("there is no toolbar", iface.mainWindow().findChild(QToolBar, "Kestrel Tools"))


def menu():
    return need("the toolbar has no menu", toolbar().findChild(QMenu, "Kestrel"))


def window(name):
    """The visible window of that object name."""
    found = [w for w in QApplication.topLevelWidgets() if w.objectName() == name and w.isVisible()]
    return found[0] if found else None


def open_window(command, name):
    """Opens a window by its command, and makes it the active one."""
    action(command).trigger()
    wait_until(lambda: window(name) is not None, 5)
    found = need(f"{command} opens no {name}", window(name))
    found.activateWindow()
    wait(200)
    return found


def child(widget, name, kind=QWidget):
    return need(f"{widget.objectName()} has no {name}", widget.findChild(kind, name))


def entries(combo):
    return [combo.itemText(i) for i in range(combo.count())]


def choose(combo, text):
    """Picks an entry by keys, as a user does."""
    need(f"{combo.objectName()} has no entry {text!r}: {entries(combo)}", text in entries(combo))
    combo.setFocus()
    wanted = combo.findText(text)
    for _ in range(2 * combo.count() + 2):
        if combo.currentIndex() == wanted:
            return
        QTest.keyClick(combo, Qt.Key_Down if combo.currentIndex() < wanted else Qt.Key_Up)
    raise AssertionError(f"{text!r} cannot be reached in {combo.objectName()}")


def click(button):
    QTest.mouseClick(button, Qt.LeftButton)


def type_into(edit, text):
    edit.setFocus()
    edit.selectAll()
    QTest.keyClicks(edit, text)


def picture(widget, name):
    folder = os.environ.get("KESTREL_DRIVE_PICTURES")
    if folder:
        widget.grab().save(str(Path(folder) / f"{name}.png"))


def screen(name):
    if os.environ.get("KESTREL_DRIVE_PICTURES"):
        wait(1500)
        screen_now(name)


def screen_now(name):
    folder = os.environ.get("KESTREL_DRIVE_PICTURES")
    if folder:
        QApplication.primaryScreen().grabWindow(0).save(str(Path(folder) / f"{name}.png"))


def _answer_boxes():
    box = QApplication.activeModalWidget()
    if isinstance(box, QMessageBox) and not box.property("drive_seen"):
        box.setProperty("drive_seen", True)
        boxes.append((box.windowTitle(), box.text()))
        # From within this slot the timer would not see the box that the answer opens.
        QTimer.singleShot(50, box.defaultButton().click if box.defaultButton() else box.buttons()[0].click)
    elif isinstance(box, QDialog) and box.objectName() == "kestrelCallStack":
        boxes.append(("call stack", str([w.toPlainText() for w in box.findChildren(QWidget)
                                         if hasattr(w, "toPlainText")])))
        QTimer.singleShot(50, box.reject)


_watch = QTimer()


def libraries_of_kestrel():
    """Paths of those that this process has loaded."""
    mapped = {line.split(maxsplit=5)[-1] for line in Path("/proc/self/maps").read_text().splitlines()}
    return sorted(Path(path) for path in mapped if Path(path).name.startswith("libkestrel"))


def need_the_built_libraries():
    """Refuses to test another Kestrel than the one that was put into the folder of this test."""
    loaded = libraries_of_kestrel()
    for path in loaded:
        need(f"QGIS has loaded {path}, which is not the Kestrel that was built but one installed on this machine. "
             "Uninstall that, or mend qgis_without_kestrel() of run_desktop.py, which is to hide it.",
             path.is_relative_to(FOLDER))
    for name in ("libkestrel_qgis.so", "libkestrel_ext.so"):
        need(f"QGIS has not loaded {name}, but {list(map(str, loaded))}", name in [path.name for path in loaded])


def finish(status):
    """Ends QGIS as leaving it does, so that the plugin is unloaded."""
    _watch.stop()
    iface.newProject(False)
    QCoreApplication.exit(status)


def run(body, at_end=None):
    """Runs a script once QGIS is up; ends QGIS whatever happens."""

    def go():
        try:
            iface.mainWindow().setGeometry(0, 0, 1280, 900)
            need_the_built_libraries()
            body()
        except BaseException:
            tell("FAIL " + traceback.format_exc())
            tell(f"boxes: {boxes}")
            _failures.append("exception")
        tell(f"{len(_failures)} failures")
        (at_end or finish)(1 if _failures else 0)

    _watch.timeout.connect(_answer_boxes)
    _watch.start(50)
    QTimer.singleShot(0, go)
