#!/usr/bin/env python3
"""Checks that the library's includes point the way that docs/architecture.md states.

Usage: check_includes.py [ROOT]

ROOT is the source tree; without it the tree that holds this script is taken. Every fault is
printed on a line of its own. The exit status is 0 when there is none, 1 when there is any and
2 when a file cannot be read.
"""

import re
import sys

from check_report import report

PLATFORM, BASE, RECORD, DETAIL, CONDITION, SOURCE, PARAM, ALL = (
    "platform/", "base/", "record header", "internal header of a subject", "condition.h",
    "source of an operation", "param/", "tessel.h")

# What a file of each kind may include.
MAY_INCLUDE = {
    PLATFORM: {PLATFORM},
    BASE: {PLATFORM, BASE},
    RECORD: {RECORD},
    DETAIL: {PLATFORM, BASE, RECORD, DETAIL, CONDITION},
    CONDITION: {RECORD},
    SOURCE: {PLATFORM, BASE, RECORD, DETAIL, CONDITION},
    PARAM: {PLATFORM, BASE, RECORD, DETAIL, CONDITION, PARAM},
    ALL: {RECORD, CONDITION, PARAM},
}


def kind_of(name, public):
    folder = name.split("/")[0]
    if name == "tessel.h":
        return ALL
    if folder == "param":
        return PARAM
    if folder == "platform":
        return PLATFORM
    if folder == "base":
        return BASE
    if name == "condition/condition.h":
        return CONDITION
    if name.endswith(".cpp"):
        return SOURCE
    return RECORD if name in public else DETAIL


def may_include(name, kind, other, other_kind):
    # What the system offers is asked for by sources only; they may read it with base/.
    if kind == PLATFORM and name.endswith(".cpp") and other_kind == BASE:
        return True
    # Only the folder of the condition offers details to other subjects.
    if other_kind == DETAIL and not other.startswith("condition/"):
        if name.split("/")[0] != other.split("/")[0]:
            return False
    return other_kind in MAY_INCLUDE[kind]


def cycle_from(name, includes, path, done):
    if name in path:
        return path[path.index(name):] + [name]
    if name in done:
        return None
    done.add(name)
    for other in includes.get(name, ()):
        found = cycle_from(other, includes, path + [name], done)
        if found:
            return found
    return None


def check(root):
    library = root / "tessel"
    includes = {}
    for path in sorted(library.rglob("*")):
        if path.suffix in (".h", ".cpp"):
            text = path.read_text(encoding="utf-8")
            name = path.relative_to(library).as_posix()
            includes[name] = re.findall(r'^\s*#\s*include\s+"tessel/([^"]+)"', text, re.MULTILINE)
            for wrong in re.findall(r'^\s*#\s*include\s+"(?!tessel/)([^"]+)"', text, re.MULTILINE):
                yield f"{name} includes {wrong}, which does not begin with tessel/"
    public = {"export.h", *includes["tessel.h"]}
    for name, others in includes.items():
        kind = kind_of(name, public)
        for other in others:
            if other not in includes:
                yield f"{name} includes {other}, which is not there"
                continue
            other_kind = kind_of(other, public)
            if not may_include(name, kind, other, other_kind):
                yield f"{name} ({kind}) includes {other} ({other_kind})"
    done = set()
    for name in includes:
        cycle = cycle_from(name, includes, [], done)
        if cycle:
            yield "headers in a circle: " + " -> ".join(cycle)


if __name__ == "__main__":
    sys.exit(report(check))
