#!/usr/bin/env python3
"""Checks that files include only what lies below them: the order of the folders is the order of the layers."""
import re
import subprocess
import sys

# For each folder of sources, the folders below it, whose headers it may include.
LAYERS = ["platform/object", "platform/graphics", "platform/windows", "platform/database", "core", "statistics", "scales", "series", "tools", "drawing", "layout", "graphs", "charts", "database", "views"]
ALLOWED = {folder: LAYERS[: i + 1] for i, folder in enumerate(LAYERS)}
ALLOWED["database"] = [f for f in LAYERS if f not in ("layout", "charts")]
# The folder that each public header of the library belongs to (include/zel/<name>.h): a new one is a word here.
OWNED = {
    "core": "DrawSymbolKind Error Mapping Mouse WorldFrame Zel2 Zel2Selection Zel2Set ZelRules",
    "statistics": "Statistics",
    "scales": "Scale SeriesPoints",
    "series": "Column",
    "tools": "DrawColor DrawFont DrawPen DrawSymbol DrawTool ToolEditors ToolOptions ToolTableOf",
    "drawing": "Zel2Main Zel2Tools ZelDocument ZelExport",
    "layout": "Zel2Column Zel2DataField Zel2Edit Zel2Rect Zel2Report Zel2Row Zel2TRect Zel2Table Zel2Text Zel2TextColumn Zel2TextTable ZelReportExport",
    "graphs": "Zel2Axis Zel2CoordSys Zel2Graph Zel2GraphTable Zel2HAxis Zel2PointRing Zel2PointSet Zel2PointView Zel2Pol Zel2StackGraph",
    "charts": "ChartAxis ChartBars ChartLayers ChartMaps ChartNotes ChartOptions ChartSpreads ColorKey ColorMap Zel2Chart Zel2Layer Zel2Pie",
    "database": "DBField Zel2DaoPointSet",
    "views": "ToolDialogs XColorDialog ZelView ZelViewer",
}
OWNER = {f"zel/{name}.h": folder for folder, names in OWNED.items() for name in names.split()}
WHOLE = "zel/zel.h"  # names all of them, for programs
# Groups of public headers that are checked as a whole, below.
GROUPS = ("zel/platform/", "zel/tables/", "zel/qt/", "zel/widgets/", "zel/sqlite/", "zel/odbc/")
ALLOWED["tables"] = ["tables"]
ALLOWED["backends/sqlite"] = ["backends/sqlite"]
ALLOWED["backends/odbc"] = ["backends/odbc"]
ALLOWED["backends/qt"] = ["platform/object", "platform/graphics", "backends/qt"]
ALLOWED["backends/widgets"] = ["backends/qt", "backends/widgets"]
ALLOWED["apps/zel"] = ["apps/zel"]
ALLOWED["apps/zelview"] = ["apps/zelview", "apps/zel"]
ALLOWED["examples"] = ["examples", "apps/zel"]
ALLOWED["tests/database"] = []
ALLOWED["bench"] = ["tests/database", "examples"]  # for its server; for drawings
# What public headers may be included: the framework sees no library, only programs see back ends.
FRAMEWORK = ("platform/", "include/zel/platform/")
BACKENDS = ("qt", "widgets", "sqlite", "odbc")
PROGRAMS = ("apps/", "examples/", "bench/", "tests/")
# Headers from outside that only one back end may see.
FOREIGN = {r"Q[A-Z]": ("backends/qt/", "backends/widgets/", "apps/zelview/"), r"sqlite3": ("backends/sqlite/",), r"(sql(ext|ucode|types)?|odbcinst)\.h": ("backends/odbc/",)}


def folder_of(path):
    if path.startswith("include/"):
        return OWNER.get(path.removeprefix("include/"))
    return max((f for f in ALLOWED if path.startswith(f + "/")), key=len, default=None)


def faults_in(path, text):
    folder = folder_of(path)
    public = path.removeprefix("include/")
    if path != public and not folder and public != WHOLE and not public.startswith(GROUPS):
        yield f"{path}: no folder owns this public header; name it in OWNED"
    for number, line in enumerate(text.splitlines(), 1):
        match = re.match(r'\s*#include ([<"])([^>"]+)[>"]', line)
        if not match:
            continue
        kind, name = match.groups()
        if kind == "<" and folder in LAYERS:
            target = "a program" if name == WHOLE else OWNER.get(name)
            if target and target not in ALLOWED[folder]:
                yield f"{path}:{number}: {folder} may not include {name}, which belongs to {target}"
        if kind == '"' and folder:
            target = folder_of(name)
            if target not in ALLOWED[folder]:
                yield f"{path}:{number}: {folder} may not include {name}"
        if name.startswith("zel/") and path.startswith(FRAMEWORK) and not name.startswith("zel/platform/"):
            yield f"{path}:{number}: the framework may not include the library's {name}"
        for backend in BACKENDS:
            own = (f"backends/{backend}/", f"include/zel/{backend}/")
            if backend == "qt":
                own += ("backends/widgets/",)  # windows are painted like images
            if name.startswith(f"zel/{backend}/") and not path.startswith(PROGRAMS + own):
                yield f"{path}:{number}: only programs may choose the back end {name}"
        for pattern, owners in FOREIGN.items():
            # A benchmark compares with the bare interface.
            if kind == "<" and re.match(pattern, name) and not path.startswith(owners + ("bench/",)):
                yield f"{path}:{number}: only {owners[0]} may include {name}"


def main():
    files = subprocess.run(["git", "ls-files", "*.h", "*.cpp"], check=True, capture_output=True, text=True).stdout.split()
    faults = [fault for path in files if not path.startswith("tests/") for fault in faults_in(path, open(path, encoding="utf-8").read())]
    print("\n".join(faults) or f"{len(files)} files, all includes point downwards.")
    return 1 if faults else 0


sys.exit(main())
