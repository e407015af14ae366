#!/usr/bin/env python3
"""Checks that what the documents name is there.

Usage: check_documents.py [ROOT]

ROOT is the source tree; without it the tree that holds this script is taken. In the Markdown files
of its root and of docs/, examples/ and data/ these must exist:
- files and headings that links lead to;
- files that are named in code marks, from the root or from tessel/;
- fields (m_...) and qualified names (tessel::...) in some header of the library.

Every fault is printed on a line of its own. The exit status is 0 when there is none, 1 when there
is any and 2 when a file cannot be read.
"""

import re
import sys

from check_report import report

FILE_NAME = re.compile(r"[\w./-]+/[\w.-]+\.(?:h|cpp|py|sh|md|cmake|txt|baseline)")


def documents(root):
    for place in ("*.md", "docs/**/*.md", "examples/**/*.md", "data/**/*.md"):
        yield from sorted(root.glob(place))


def heading_names(text):
    """The names by which links reach the headings of a page."""
    for heading in re.findall(r"^#+ (.*)$", text, re.MULTILINE):
        yield re.sub(r"[^\w -]", "", heading.lower()).strip().replace(" ", "-")


def faults_of(path, root, words):
    text = path.read_text(encoding="utf-8")
    prose = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
    for target in re.findall(r"\]\(([^)\s]+)\)", prose):
        if re.match(r"\w+:", target):
            continue
        name, _, heading = target.partition("#")
        file = path.parent / name if name else path
        if not file.exists():
            yield f"link to {target}"
        elif heading and heading not in heading_names(file.read_text(encoding="utf-8")):
            yield f"link to {target}"
    for code in re.findall(r"`([^`\n]+)`", prose):
        for name in FILE_NAME.findall(code):
            if not any((base / name).exists() for base in (root, root / "tessel", path.parent)):
                yield f"file {name}"
    names = set(re.findall(r"\bm_[A-Za-z]\w*", prose))
    for qualified in re.findall(r"\btessel::([\w:]*\w)", prose):
        names.update(qualified.split("::"))
    for name in sorted(names - words):
        yield f"name {name}"


def check(root):
    words = {"tessel"}
    for header in (root / "tessel").rglob("*.h"):
        words.update(re.findall(r"\w+", header.read_text(encoding="utf-8")))
    for path in documents(root):
        for fault in faults_of(path, root, words):
            yield f"{path.relative_to(root)}: not there: {fault}"


if __name__ == "__main__":
    sys.exit(report(check))
