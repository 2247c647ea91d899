#!/usr/bin/env python3
"""Checks that files include only what lies below them: the order of the folders is the order of the layers."""
import re
import subprocess
import sys

# For each folder of sources, the folders whose private headers it may include.
LAYERS = ["platform/object", "platform/graphics", "platform/windows", "core", "tools", "drawing", "graphs", "layout", "views"]
ALLOWED = {folder: LAYERS[: i + 1] for i, folder in enumerate(LAYERS)}
ALLOWED["layout"] = [f for f in LAYERS if f != "graphs"]
ALLOWED["backends/qt"] = ["platform/object", "platform/graphics", "backends/qt"]
ALLOWED["backends/widgets"] = ["backends/qt", "backends/widgets"]
ALLOWED["apps/zel"] = ["apps/zel"]
ALLOWED["examples"] = ["examples", "apps/zel"]
ALLOWED["bench"] = []
# What public headers may be included: the framework sees no library, only back ends and programs see Qt.
FRAMEWORK = ("platform/", "include/zel/platform/")
QT_USERS = ("backends/", "include/zel/qt/", "include/zel/widgets/", "apps/", "examples/", "bench/", "tests/")


def folder_of(path):
    return max((f for f in ALLOWED if path.startswith(f + "/")), key=len, default=None)


def faults_in(path, text):
    folder = folder_of(path)
    for number, line in enumerate(text.splitlines(), 1):
        match = re.match(r'\s*#include ([<"])([^>"]+)[>"]', line)
        if not match:
            continue
        kind, name = match.groups()
        if kind == '"' and folder:
            target = folder_of(name)
            if target not in ALLOWED[folder]:
                yield f"{path}:{number}: {folder} may not include {name}"
        if name.startswith("zel/") and path.startswith(FRAMEWORK) and not name.startswith("zel/platform/"):
            yield f"{path}:{number}: the framework may not include the library's {name}"
        if name.startswith(("zel/qt/", "zel/widgets/")) and not path.startswith(QT_USERS):
            yield f"{path}:{number}: only programs may choose the back end {name}"
        if kind == "<" and re.match(r"Q[A-Z]", name) and not path.startswith(("backends/qt/", "backends/widgets/")):
            yield f"{path}:{number}: only the Qt back ends may include {name}"


def main():
    files = subprocess.run(["git", "ls-files", "*.h", "*.cpp"], check=True, capture_output=True, text=True).stdout.split()
    faults = [fault for path in files if not path.startswith("tests/") for fault in faults_in(path, open(path, encoding="utf-8").read())]
    print("\n".join(faults) or f"{len(files)} files, all includes point downwards.")
    return 1 if faults else 0


sys.exit(main())
