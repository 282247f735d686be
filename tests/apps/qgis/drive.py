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
from contextlib import contextmanager
from pathlib import Path

from qgis import utils
from qgis.PyQt import sip
from qgis.PyQt.QtCore import QCoreApplication, QPoint, Qt, QTimer
from qgis.PyQt.QtTest import QTest
from qgis.PyQt.QtWidgets import (QAbstractButton, QAction, QApplication, QDialog, QMenu, QMessageBox, QToolBar,
                                 QWidget)

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

# What marks a modal window that has been dealt with.
SEEN = "drive_seen"
# In milliseconds.
WAITED_FOR_A_WINDOW = 5000

# Boxes that were shown, as (title, text), in order.
boxes = []
# Object names of the modal windows that the script answers itself.
_expected = []
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
    return need(f"there is no action {name}", utils.iface.mainWindow().findChild(QAction, COMMANDS.get(name, name)))


def toolbar():
    return need("there is no toolbar", utils.iface.mainWindow().findChild(QToolBar, "Kestrel Tools"))


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


@contextmanager
def expecting(name):
    """While it lasts, the script itself sees to the modal window of that object name."""
    _expected.append(name)
    try:
        yield
    finally:
        _expected.remove(name)


def texts_of(widget):
    """What can be read in a window, from top to bottom."""
    readers = ("toPlainText", "text", "currentText")
    shown = [w for w in widget.findChildren(QWidget) if w.isVisible() and not isinstance(w, QAbstractButton)]
    shown.sort(key=lambda w: (w.mapTo(widget, QPoint()).y(), w.mapTo(widget, QPoint()).x()))
    texts = [next((getattr(w, reader)() for reader in readers if hasattr(w, reader)), "") for w in shown]
    return "\n".join(text for text in texts if text)


def _answer(box):
    boxes.append((box.windowTitle(), box.text()))
    tell(f"box  {box.windowTitle()}: {box.text()}")
    # From within the watch's slot the timer would not see the box that the answer opens.
    QTimer.singleShot(50, box.defaultButton().click if box.defaultButton() else box.buttons()[0].click)


def _refuse(window):
    """Tells of a modal window that nobody reckoned with, and closes it: it would hold up the script for ever."""
    kind = window.metaObject().className()
    check(f"there is no unexpected window ({kind} {window.objectName()!r})", False,
          f"{window.windowTitle()}\n{texts_of(window)}")
    QTimer.singleShot(50, lambda: _close(window))
    QTimer.singleShot(WAITED_FOR_A_WINDOW, lambda: _give_up_on(window))


def _close(window):
    if isinstance(window, QDialog):
        window.reject()
    else:
        window.close()
    if not window.isVisible():
        window.setProperty(SEEN, None)  # it may be shown again


def _give_up_on(window):
    if not sip.isdeleted(window) and window.isVisible() and window.property(SEEN):
        tell(f"FAIL {window.windowTitle()} cannot be closed")
        os._exit(1)  # leaving QGIS as a user does needs an event loop that this window does not let go on


def _look_at_modal_windows():
    window = QApplication.activeModalWidget()
    if window is None or window.property(SEEN) or window.objectName() in _expected:
        return
    window.setProperty(SEEN, True)
    if isinstance(window, QMessageBox):
        _answer(window)
    else:
        _refuse(window)


_watch = QTimer()


def watch():
    """From here on modal windows are seen to."""
    _watch.timeout.connect(_look_at_modal_windows)
    _watch.start(50)


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
    utils.iface.newProject(False)
    QCoreApplication.exit(status)


def run(body, at_end=None):
    """Runs a script once QGIS is up; ends QGIS whatever happens."""

    def go():
        try:
            utils.iface.mainWindow().setGeometry(0, 0, 1280, 900)
            need_the_built_libraries()
            body()
        except BaseException:
            tell("FAIL " + traceback.format_exc())
            tell(f"boxes: {boxes}")
            _failures.append("exception")
        tell(f"{len(_failures)} failures")
        (at_end or finish)(1 if _failures else 0)

    QTimer.singleShot(0, go)
