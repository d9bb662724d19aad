#!/usr/bin/env python3
"""Holds the floors of the sources: a file includes only what stands below it.

    check_includes.py ROOT      checks the tree, prints what is wrong, exit status 1 if anything is
    check_includes.py --test    checks the check

Rules:
  - a file of src stands on a floor (FLOORS below, from the ground up) and includes
    only files of its own folder or of lower floors;
  - the hall, frmMain.h, includes values alone: files that don't reach it themselves;
  - no two files include each other, directly or round about;
  - nothing of Qt outside the edge, and nothing of the edge included from elsewhere;
  - the simulators know nothing of the tool but its texts and its table of models.
"""

import os
import re
import sys

# Folders of src from the ground up. The hall includes the values of the folders
# above it (their files that don't reach the hall): that is how it holds them.
FLOORS = [
    ["text"],
    ["platform"],
    ["screen"],
    ["hall"],  # src/frmMain.h, src/plug.h
    ["waiting"],
    ["catalogue"],
    ["options"],
    ["increase"],
    ["image"],
    ["link"],
    ["selection"],  # choosing a model empties the images; a number is shown in them
    ["session"],
    ["monitor"],
    ["assistant"],
    ["board"],
    ["project"],
    ["window"],
    ["edge"],  # src/platform/qt and src/main.cpp
]
FLOOR = {name: level for level, row in enumerate(FLOORS) for name in row}

HALL = "src/frmMain.h"
BESIDE_HALL = "src/plug.h"
# Operations of a low folder that work with the images stand above them.
SELECTION = ("src/catalogue/model_selection.h", "src/catalogue/model_selection.cpp",
             "src/increase/number_sequence.h", "src/increase/number_sequence.cpp")
QT = re.compile(r"^(Q[A-Z]\w*|Qt\w*/.*)$")
SIMULATOR_MAY = ("tools/simulators/", "src/text/", "src/catalogue/")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def floor_name(path):
    """The floor that a file of src stands on; None when there is none for it."""
    if path in (HALL, BESIDE_HALL):
        return "hall"
    if path in SELECTION:
        return "selection"
    if path == "src/main.cpp" or path.startswith("src/platform/qt/"):
        return "edge"
    parts = path.split("/")
    name = parts[1] if len(parts) == 3 else None
    return name if name in FLOOR and name not in ("hall", "selection", "edge") else None


def resolved(name, files):
    for folder in ("src/", "tools/"):
        if folder + name in files:
            return folder + name
    return None


def graph_of(files, complaints):
    graph = {}
    for path, text in sorted(files.items()):
        graph[path] = []
        for kind, name in INCLUDE.findall(text):
            target = resolved(name, files)
            if target:
                graph[path].append(target)
            elif kind == '"' and not QT.match(name):
                complaints.append(f"{path}: \"{name}\" is no file, counted from src or tools")
            if QT.match(name) and not may_use_qt(path):
                complaints.append(f"{path}: <{name}> is Qt, which only the edge may use")
    return graph


def may_use_qt(path):
    return floor_name(path) == "edge"


def reaches(graph, start, goal):
    seen, open_paths = {start}, [start]
    while open_paths:
        for target in graph.get(open_paths.pop(), ()):
            if target == goal:
                return True
            if target not in seen:
                seen.add(target)
                open_paths.append(target)
    return False


def find_circle(graph):
    """One circle as the list of its files, or None."""
    done, path = set(), []

    def visit(file):
        if file in path:
            return path[path.index(file):] + [file]
        if file in done:
            return None
        path.append(file)
        for target in graph.get(file, ()):
            circle = visit(target)
            if circle:
                return circle
        path.pop()
        done.add(file)
        return None

    for file in sorted(graph):
        circle = visit(file)
        if circle:
            return circle
    return None


def may_include(source, target, is_value):
    """Whether a file of src may include another one of src, by their floors."""
    own, other = floor_name(source), floor_name(target)
    return own == other or FLOOR[other] < FLOOR[own] or (own == "hall" and is_value(target))


def check(files):
    """Complaints about a tree, given as a dictionary of paths and texts."""
    complaints = []
    graph = graph_of(files, complaints)

    circle = find_circle(graph)
    if circle:
        complaints.append("these include each other in a circle: " + " -> ".join(circle))

    def is_value(path):
        return path != HALL and not reaches(graph, path, HALL)

    for source, targets in graph.items():
        if source.startswith("src/") and not floor_name(source):
            complaints.append(f"{source}: its folder stands on no floor; give it one in {__file__}")
            continue
        for target in targets:
            if source.startswith("src/") and target.startswith("tools/"):
                complaints.append(f"{source}: includes {target}, which is no part of the program")
            elif source.startswith("tools/simulators/"):
                if not target.startswith(SIMULATOR_MAY) or not (target.startswith("tools/")
                                                                or is_value(target)):
                    complaints.append(f"{source}: a simulator must not know {target}")
            elif source.startswith("tools/") and floor_name(target) == "edge":
                complaints.append(f"{source}: includes {target}, which is the window's")
            elif source.startswith("src/") and floor_name(target):
                if not may_include(source, target, is_value):
                    complaints.append(f"{source}: includes {target}, which stands above it")
    return complaints


def files_of(root):
    files = {}
    for top in ("src", "tools"):
        for folder, _, names in os.walk(os.path.join(root, top)):
            for name in names:
                if name.endswith((".h", ".cpp", ".def", ".inc")):
                    path = os.path.join(folder, name)
                    with open(path, encoding="utf-8") as file:
                        files[os.path.relpath(path, root).replace(os.sep, "/")] = file.read()
    return files


def lines(*names):
    return "".join(f'#include "{name}"\n' for name in names)


def test():
    good = {
        "src/text/numbers.h": "#include <string>\n",
        "src/platform/timers.h": "",
        "src/platform/qt/window.cpp": "#include <QWidget>\n" + lines("frmMain.h", "window/wiring.h"),
        "src/screen/screen.h": lines("text/numbers.h"),
        "src/catalogue/mcu_record.h": "",
        "src/catalogue/mcu_catalogue.h": lines("frmMain.h", "catalogue/mcu_record.h"),
        "src/catalogue/model_selection.cpp": lines("image/image_files.h"),
        "src/image/image_state.h": "",
        "src/image/image_files.h": lines("frmMain.h"),
        "src/link/link_state.h": "",
        "src/link/isp_link.h": lines("frmMain.h"),
        "src/session/session_state.h": lines("catalogue/mcu_record.h"),
        "src/session/driver.cpp": lines("link/isp_link.h", "image/image_files.h", "waiting/waiting.h"),
        "src/frmMain.h": lines("screen/screen.h", "link/link_state.h", "session/session_state.h"),
        "src/waiting/waiting.h": lines("frmMain.h"),
        "src/window/wiring.h": lines("frmMain.h"),
        "src/main.cpp": "#include <QApplication>\n",
        "tools/simulators/chip.h": lines("catalogue/mcu_record.h", "text/numbers.h"),
    }
    assert check(good) == [], check(good)

    # Each of these makes one thing wrong; what the complaint names stands behind it.
    bad = [
        ("src/text/numbers.h", lines("screen/screen.h"), "circle"),
        ("src/text/more.h", lines("platform/timers.h"), "src/platform/timers.h"),
        ("src/platform/timers.h", lines("frmMain.h"), "src/frmMain.h"),
        ("src/link/sending.cpp", lines("session/session_state.h"), "src/session/session_state.h"),
        ("src/link/sending.cpp", lines("image/image_files.h", "window/wiring.h"), "src/window/wiring.h"),
        ("src/catalogue/mcu_catalogue.cpp", lines("image/image_files.h"), "src/image/image_files.h"),
        ("src/link/link_state.h", lines("waiting/waiting.h"), "circle"),
        ("src/window/main_window.cpp", "#include <QString>\n", "QString"),
        ("src/session/driver.h", "#include <QtCore/QTimer>\n", "QtCore/QTimer"),
        ("src/session/driver.h", "# include \"QTimer\"\n", "QTimer"),
        ("tools/vkm_chip/main.cpp", "#include <QTimer>\n", "QTimer"),
        ("src/window/x.cpp", lines("simulators/chip.h"), "tools/simulators/chip.h"),
        ("tools/simulators/x.cpp", lines("link/isp_link.h"), "src/link/isp_link.h"),
        ("tools/simulators/x.cpp", lines("catalogue/mcu_catalogue.h"), "mcu_catalogue.h"),
        ("src/novelty/x.h", "", "src/novelty/x.h"),
        ("src/link/x.h", lines("isp_link.h"), "isp_link.h"),
        ("src/waiting/waiting.cpp", lines("link/isp_link.h"), "src/link/isp_link.h"),
        ("src/screen/x.cpp", lines("link/link_state.h"), "src/link/link_state.h"),
        ("src/frmMain.h", lines("link/isp_link.h"), "circle"),
        ("src/frmMain.h", lines("platform/qt/window.h"), "platform/qt/window.h"),
    ]
    for path, text, named in bad:
        found = check({**good, path: text})
        assert any(named in complaint for complaint in found), (path, text, found)
    print(f"{len(bad)} kinds of wrong includes are found")


def main():
    if sys.argv[1:] == ["--test"]:
        test()
        return 0
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    files = files_of(sys.argv[1])
    if not files:
        print(f"no sources below {sys.argv[1]}")
        return 1
    complaints = check(files)
    for complaint in complaints:
        print(complaint)
    print(f"{len(files)} files, {len(complaints)} complaints")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
