#!/usr/bin/env python3
"""Collects result files in one table, with q-values over all their spectra.

usage: collect.py --output TABLE LIST

LIST holds the path of a result file on every line.

The q-values in a result file are those of its own spectra. Estimated anew over all of them, they are
what one search of all spectra together would give: at a score, decoys over targets among the first
candidates with this score or a higher one, and the least of that at this score or a lower one.

Files are read twice, spectrum by spectrum; what is kept is the number of targets and decoys at every
score that occurs. Scores have few decimals, so that number does not grow with that of the spectra.
"""

import argparse
import collections
import os
import pathlib
import sys

HEADER = ("file", "title", "charge", "precursor_mass", "rank", "sequence", "peptide_mass", "score",
          "q_value", "modifications", "decoy", "proteins")
NO_Q_VALUE = 1024.0


class Fault(Exception):
    """A line that is none of a result file."""


def spectra(path):
    """The spectra of a file: precursor mass, charge, title, and the fields of each candidate."""
    head, title, candidates = None, None, []
    with open(path, encoding="utf-8", errors="surrogateescape", newline="\n") as lines:
        for number, line in enumerate(lines, 1):
            fields = line.rstrip("\n").split("\t")
            if head and title is None:
                title = line.rstrip("\n")
            elif fields[0] == "S" and len(fields) == 3:
                if head:
                    yield head[1], head[2], title, candidates
                head, title, candidates = fields, None, []
            elif head and len(fields) > 15 and line.endswith("\n"):
                candidates.append(fields)
            else:
                raise Fault(f"{path}:{number}: not a line of a result file")
    if head:
        if title is None:
            raise Fault(f"{path}: ends within a spectrum")
        yield head[1], head[2], title, candidates


def after_sites(fields):
    """Where the fields behind the modifications begin: auxiliary value, decoy, another, hits."""
    return 7 + 2 * int(fields[6])


def is_decoy(fields):
    return fields[after_sites(fields) + 1] != "0"


def count_matches(paths):
    """How many of the first candidates are targets and how many are decoys, each by score."""
    targets, decoys = collections.Counter(), collections.Counter()
    for path in paths:
        for _, _, _, candidates in spectra(path):
            if candidates:
                counter = decoys if is_decoy(candidates[0]) else targets
                counter[float(candidates[0][3])] += 1
    return targets, decoys


def q_values(targets, decoys):
    """The q-value by score."""
    scores = sorted(targets.keys() | decoys.keys())
    # From the lowest score upwards, so that the least rate so far is the q-value.
    targets_above, decoys_above = targets.total(), decoys.total()
    values, least = {}, 1.0
    for score in scores:
        if targets_above:
            least = min(least, decoys_above / targets_above)
        values[score] = least
        targets_above -= targets[score]
        decoys_above -= decoys[score]
    return values


def row(path, spectrum, fields, values):
    mass, charge, title, candidates = spectrum
    # A tab in a title would shift the columns.
    title = title.replace("\t", " ")
    score = float(fields[3])
    value = values[score] if score == float(candidates[0][3]) else NO_Q_VALUE
    behind = after_sites(fields)
    sites = fields[7:behind]
    hits = fields[behind + 4:behind + 4 + int(fields[behind + 3])]
    mods = ";".join(f"{place},{name}" for place, name in zip(sites[::2], sites[1::2]))
    return (path.name, title, charge, mass, *fields[:3], fields[3], f"{value:.6g}", mods,
            fields[behind + 1], "|".join(hits))


def write_table(paths, values, table):
    print(*HEADER, sep="\t", file=table)
    for path in paths:
        for spectrum in spectra(path):
            for fields in spectrum[3]:
                print(*row(path, spectrum, fields, values), sep="\t", file=table)


def main():
    parser = argparse.ArgumentParser(description="Collects result files in one table.")
    parser.add_argument("--output", type=pathlib.Path, required=True, metavar="TABLE")
    parser.add_argument("list", type=pathlib.Path, metavar="LIST")
    options = parser.parse_args()
    # Complete or not there at all.
    unfinished = options.output.with_name(f".{options.output.name}.{os.getpid()}")
    try:
        results = [pathlib.Path(line) for line in options.list.read_text().split("\n") if line]
        values = q_values(*count_matches(results))
        with open(unfinished, "w", encoding="utf-8", errors="surrogateescape",
                  newline="\n") as table:
            write_table(results, values, table)
        os.replace(unfinished, options.output)
    except (OSError, Fault, ValueError, IndexError) as error:
        unfinished.unlink(missing_ok=True)
        print(f"collect.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
