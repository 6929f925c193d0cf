#!/usr/bin/python3
"""Adds the EPSG code and the datum shift to WGS 84 to every definition of the
shipped catalogue files that names its EPSG system.

    tools/make_catalogue_shifts.py data/map_projection.gxr \
        data/state_plane_nad83.gxr data/state_plane_nad27.gxr

Each SECTION whose comment block names its system ("# EPSG:27700 ...", or
"# ESRI:102005 ..." for a system of Esri's registry) gets, before END_SECTION:

    EPSG_Code           27700          (EPSG systems only)
    TOWGS84             dx dy dz [rx ry rz ds]
    TOWGS84_Code        1314           # the transformation's name, and a better one
    TOWGS84_Accuracy    2

The shift is the one the EPSG registry of the library uses for the system,
chosen by tools/epsg_shifts.py (best_helmert): the Helmert that PROJ ranks
first from the system's geodetic CRS to WGS 84 for the system's area of use,
in position-vector arc-seconds and ppm; where PROJ ranks a grid first (NADCON
for NAD27, OSTN15 for OSGB 1936), the best Helmert, with its accuracy and the
grid named in the comment. A system on WGS 84 gets "TOWGS84 0 0 0" without a
code: its shift is known to be none. A datum PROJ knows no Helmert for gets
no TOWGS84 (its shift stays unknown, and the library warns when it is used
against another datum).

The files are rewritten in place and keep everything else byte for byte; the
keywords this tool writes are replaced, so running it again changes nothing.
Run it again after tools/make_state_planes.py has regenerated a state plane
file. Needs /usr/bin/python3 with pyproj (Debian's python3-pyproj).
"""
import os
import re
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from epsg_shifts import best_helmert  # noqa: E402

KEYWORDS = ("EPSG_Code", "TOWGS84", "TOWGS84_Code", "TOWGS84_Accuracy")
CODE = re.compile(r"^\s*#\s*(EPSG|ESRI):(\d+)\b")
NOTE = "# EPSG_Code and the datum shift (TOWGS84) are added by tools/make_catalogue_shifts.py.\n"


def num(value):
    """The shortest text that reads back to the same double; no negative zero."""
    value = float(value) + 0.0
    if value == 0.0:
        return "0"
    text = repr(value)
    return text[:-2] if text.endswith(".0") else text


def keyword_lines(authority, code, column):
    """The lines to add for a system, each ending with a newline."""
    def line(keyword, values, comment=""):
        text = "    " + keyword.ljust(column - 1) + " " + values
        return text + ("  # " + comment if comment else "") + "\n"

    lines = []
    if authority == "EPSG":
        lines.append(line("EPSG_Code", str(code)))
    shift = best_helmert(code, authority)
    if shift is None:
        return lines, None
    params = shift["params"]
    count = 7 if shift["nparams"] == 7 else 3
    lines.append(line("TOWGS84", " ".join(num(v) for v in params[:count])))
    if shift["code"]:
        comment = shift["name"]
        if shift["convention"] == "coordinate-frame":
            comment += " (coordinate frame, rotations negated)"
        if shift["better"] is not None:
            name, accuracy = shift["better"]
            comment += "; PROJ ranks %s%s higher" % (name, " (%s m)" % num(accuracy) if accuracy is not None else "")
        lines.append(line("TOWGS84_Code", shift["code"].split(":")[1], comment))
        if shift["accuracy"] is not None:
            lines.append(line("TOWGS84_Accuracy", num(shift["accuracy"])))
    return lines, shift


def rewrite(path):
    with open(path, encoding="utf-8") as f:
        lines = f.readlines()
    out = []
    pending = None      # (authority, code) of the comment block before a section
    comment_block = False
    column = 20
    section = None
    counts = {"sections": 0, "coded": 0, "shifted": 0, "unknown": []}
    for text in lines:
        stripped = text.strip()
        if stripped.startswith("#"):
            m = CODE.match(text)
            if not comment_block:
                pending = None
            if m and pending is None:
                pending = (m.group(1), int(m.group(2)))
            comment_block = True
            out.append(text)
            continue
        comment_block = False
        if stripped.startswith("SECTION "):
            counts["sections"] += 1
            section = pending
            pending = None
            out.append(text)
            continue
        if stripped.startswith("Projection_Name"):
            # The files' own column: where the value of the first keyword starts.
            column = len(text) - len(text.lstrip()[len("Projection_Name"):].lstrip()) - 4
            out.append(text)
            continue
        if stripped.split(" ")[0] in KEYWORDS:
            continue
        if stripped == "END_SECTION" and section is not None:
            added, shift = keyword_lines(section[0], section[1], column)
            out.extend(added)
            counts["coded"] += 1 if section[0] == "EPSG" else 0
            if shift is None:
                counts["unknown"].append("%s:%d" % section)
            else:
                counts["shifted"] += 1
            section = None
        if stripped == "":
            pending = None
        out.append(text)
    # The note on the tool goes after the file's opening comment.
    if NOTE not in out:
        first = next(i for i, t in enumerate(out) if not t.startswith("#"))
        out.insert(first, NOTE)
    with open(path, "w", encoding="utf-8") as f:
        f.writelines(out)
    sys.stderr.write("%s: %d sections, %d EPSG codes, %d shifts; no Helmert known for %s\n" %
                     (path, counts["sections"], counts["coded"], counts["shifted"],
                      ", ".join(counts["unknown"]) or "none"))


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    for path in sys.argv[1:]:
        rewrite(path)


if __name__ == "__main__":
    main()
