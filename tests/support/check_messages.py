#!/usr/bin/env python3
"""Compares the catalogue of messages with the texts in the library's sources.

Usage: check_messages.py [ROOT]

ROOT is the source tree; without it the tree that holds this script is taken. Every fault is
printed on a line of its own. The exit status is 0 when there is none, 1 when there is any and
2 when a file cannot be read.

A row of the catalogue gives a text with <...> for what varies; what stands between is a fragment.
- Every fragment is a string literal of the source files that the row names.
- Every literal of the sources that holds a blank, and every literal that is given to Message() or
  kept as a fault of a file, is a fragment of a row that names its file, or is listed below as no
  message.
- A literal given to Message() with a level stands in a row of that level.
- Each call of end_process() has a row under "Ends of the process", and each throw one under
  "Thrown".
"""

import collections
import re
import sys

from check_report import report

STRING = r'"(?:[^"\\\n]|\\.)*"'
LITERAL = re.compile(STRING + r"(?:\s*" + STRING + ")*")
LEVELS = {"LOG_ALERT": "alert", "LOG_WARNING": "warning", "LOG_INFO": "info",
          "LOG_DEBUG": "debug"}

# Literals with a blank that users never read as a message: heads of messages, files and commands.
NO_MESSAGES = {
    "condition/condition.cpp": {"Trypsin KR _ C", "[Tessel] ", "DEBUG: ", "WARNING: ", "ALERT: "},
    "chem/mod_selection.cpp": {"[----mod prob end----]", "[----cleave prob----]"},
    "database/fasta_parser.cpp": {" \t"},
    "database/index_files.cpp": {"Vantor.exe "},
    "param/condition_writer.cpp": {"\n[Version Info]"},
    "param/settings.h": {"Trypsin KR _ C", "no such key in a parameter file",
                         "no limits of this key's values"},
    "spectra/spectrum.cpp": {"BEGIN IONS\nTITLE=", "END IONS"},
    "space/ion_types.cpp": {"1 1 0", "0 1 18.0105647", "1 1 17.026549105", "1 1 16.01872407",
                            "0 1 1.99184063", "0 1 2.999665665"},
}


def literal_text(literal):
    """Adjacent literals as one text, without line ends behind it."""
    parts = (part[1:-1] for part in re.findall(STRING, literal))
    text = "".join(parts).replace(r"\n", "\n").replace(r"\t", "\t")
    return text.replace(r"\"", '"').replace(r"\\", "\\").rstrip("\n")


def literals_in(code):
    return [text for text in map(literal_text, LITERAL.findall(code)) if text]


def without_comments(code):
    def kept(match):
        return match.group() if match.group().startswith('"') else ""
    code = re.sub(STRING + r"|//[^\n]*|/\*.*?\*/", kept, code, flags=re.DOTALL)
    code = re.sub(r"^\s*#.*$", "", code, flags=re.MULTILINE)
    # What a written parameter file explains to its readers.
    return re.sub(r"\.Comment\(" + STRING + r"\)", "", code)


def calls_of(code, function):
    """The arguments of every call of a function, as one text each."""
    for match in re.finditer(function, code):
        depth, at = 1, match.end()
        while depth > 0 and at < len(code):
            skipped = re.compile(STRING + r"|'(?:[^'\\]|\\.)'").match(code, at)
            if skipped:
                at = skipped.end()
                continue
            depth += {"(": 1, ")": -1}.get(code[at], 0)
            at += 1
        yield code[match.end():at - 1]


def named_literals(code, expression):
    """The literals of an expression and of what its names were set to."""
    found = literals_in(expression)
    for name in set(re.findall(r"\b[a-z]\w*\b", LITERAL.sub("", expression))):
        for definition in re.findall(r"\b" + name + r" =([^;]*);", code):
            found += literals_in(definition)
    return found


class Catalogue:
    def __init__(self, page):
        self.rows = []  # texts, levels, files, section
        section = ""
        for line in page.splitlines():
            if line.startswith("#"):
                section = line.lstrip("# ")
            cells = [cell.strip() for cell in line.split("|")[1:-1]]
            if len(cells) != 5 or not cells[0].startswith("`"):
                continue
            texts = re.findall(r"`([^`]*)`", cells[0])
            self.rows.append((texts, cells[1], re.findall(r"`([^`]*)`", cells[2]), section))

    def fragments(self):
        """Yields fragment, levels, files."""
        for texts, levels, files, _ in self.rows:
            for text in texts:
                for fragment in re.split(r"<[^<>]*>", text):
                    if fragment:
                        yield fragment, levels, files


def check(root):
    faults = []
    library = root / "tessel"
    catalogue = Catalogue((root / "docs" / "messages.md").read_text(encoding="utf-8"))
    fragments = collections.defaultdict(set)  # by file
    levels_of = collections.defaultdict(set)  # by file and fragment
    for fragment, levels, files in catalogue.fragments():
        for name in files:
            fragments[name].add(fragment)
            levels_of[name, fragment].add(levels)

    sources = {}
    for path in sorted(library.rglob("*")):
        name = path.relative_to(library).as_posix()
        if path.suffix in (".h", ".cpp") and not name.startswith("platform/"):
            sources[name] = without_comments(path.read_text(encoding="utf-8"))

    for name, known in fragments.items():
        if name not in sources:
            faults.append(f"the catalogue names a file that is not there: {name}")
            continue
        literals = set(literals_in(sources[name]))
        for fragment in sorted(known - literals):
            faults.append(f'{name} no longer says "{fragment}"')

    ends, throws = [], []
    for name, code in sources.items():
        no_messages = NO_MESSAGES.get(name, set())
        literals = set(literals_in(code))
        for stale in sorted(no_messages - literals):
            faults.append(f'listed as no message, but gone from {name}: "{stale}"')
        said = {text for text in literals if " " in text}
        for function in (r"\bm_vFaults\.push_back\(", r"\bNoteFault\("):
            for arguments in calls_of(code, function):
                said.update(literals_in(arguments))
        for arguments in calls_of(code, r"\bMessage\("):
            text, _, level = arguments.rpartition(",")
            words = {LEVELS[word] for word in re.findall(r"\bLOG_[A-Z]+", level) if word in LEVELS}
            spoken = set(named_literals(code, text)) & (literals - no_messages)
            said.update(literals_in(text))
            for fragment in sorted(spoken & fragments[name]):
                if not any(words <= set(row.split(", ")) for row in levels_of[name, fragment]):
                    faults.append(f'{name}: "{fragment}" has level {", ".join(sorted(words))}')
        for text in sorted(said - no_messages - fragments[name]):
            faults.append(f'not in the catalogue, {name}: "{text}"')
        if name not in ("base/end_process.h", "base/end_process.cpp"):
            ends += [name] * len(re.findall(r"\bend_process\(", code))
        throws += [name] * len(re.findall(r"\bthrow std::", code))

    for section, calls in (("Ends of the process", ends), ("Thrown", throws)):
        listed = [name for _, _, files, where in catalogue.rows if where == section
                  for name in files]
        if collections.Counter(listed) != collections.Counter(calls):
            faults.append(f'under "{section}" stand rows of {sorted(listed)}, '
                          f"the sources do it in {sorted(calls)}")
    return faults


if __name__ == "__main__":
    sys.exit(report(check))
