#!/usr/bin/env python3
"""One job of the workflow: a search of one spectrum file, or of none to prepare the database.

The search runs in a folder of its own, which holds copies of the tables and a parameter file made
from the given one. Only a complete result leaves it, by one rename, so that a job which is killed at
any moment leaves nothing that another attempt, or another job, could take for its own.
"""

import argparse
import glob
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TABLES = ("element.ini", "aa.ini", "modification.ini", "quant.ini")


def lines_of(path):
    """The lines that the library reads: without a byte-order mark and carriage returns at their ends,
    and ended by line feeds alone."""
    text = path.read_bytes().decode("utf-8", "surrogateescape").removeprefix("\ufeff")
    return [line.removesuffix("\r") for line in text.removesuffix("\n").split("\n")]


def write_lines(path, lines):
    path.write_bytes("".join(f"{line}\n" for line in lines).encode("utf-8", "surrogateescape"))


def section_of(line):
    """The section that a line begins; text behind the header does not count."""
    header = re.match(r"\[[^]]*\]", line)
    return header[0][1:-1] if header else None


def setting(lines, section, key, missing):
    """The value of a key: the first one behind the header of its section."""
    behind = False
    for line in lines:
        if behind and line.startswith(f"{key}="):
            return line.partition("=")[2].rstrip("\r")
        behind = behind or section_of(line) == section
    return missing


def wants_decoys(lines):
    """Whether the user leaves it to the search to add decoys to the database."""
    number = re.match(r"[ \t\v\f\r]*([+-]?[0-9]+)", setting(lines, "file", "auto_rev", "") or "1")
    return number is not None and int(number[1]) != 0


def with_settings(lines, settings):
    """A parameter file in which these settings replace those of the same keys."""
    by_section = {}
    for key, (section, value) in settings.items():
        by_section.setdefault(section, []).append(f"{key}={value}")
    result = []
    for line in lines:
        if line.partition("=")[0] not in settings:
            result += [line] + by_section.pop(section_of(line), [])
    for section, added in by_section.items():
        result += [f"[{section}]"] + added
    return result


def spectra_of_job(options, lines, folder):
    """The path of the spectrum file. The paths in a ZBS list are relative to the folder in which the
    workflow is started, so the job has a copy in which they are not."""
    if options.prepare:
        (folder / "none.mgf").touch()
        return "none.mgf"
    if setting(lines, "datalist", "msmstype", "") != "ZBS":
        return options.spectra.resolve()
    # Backslashes part folders for the library on every system.
    listed = [path.replace("\\", "/") for path in lines_of(options.spectra)]
    write_lines(folder / "spectra.zbs", [path and os.path.join(os.getcwd(), path)
                                         for path in listed])
    return "spectra.zbs"


def job_settings(options, spectra):
    """What differs from job to job; everything else is the user's."""
    database = options.prepare or options.database
    settings = {
        "fastapath": ("file", database.resolve() if options.database else database.name),
        "auto_rev": ("file", 1 if options.prepare else 0),
        "outputpath": ("file", "out"),
        "outputname": ("file", "job"),
        "modpath": ("file", "modification.ini"),
        "aapath": ("file", "aa.ini"),
        "msmsfolder": ("datalist", 0),
        "msmsnum": ("datalist", 1),
        "msmspath1": ("datalist", spectra),
    }
    if options.prepare:
        settings["msmstype"] = ("datalist", "MGF")
    return settings


def run_search(options, folder):
    """Runs the search in its folder and gives the path of what is wanted from it."""
    for name in TABLES:
        shutil.copy(options.tables / name, folder)
    (folder / "out").mkdir()
    if options.prepare:
        (folder / options.prepare.name).symlink_to(options.prepare.resolve())
    lines = lines_of(options.parameters)
    settings = job_settings(options, spectra_of_job(options, lines, folder))
    write_lines(folder / "job.param", with_settings(lines, settings))
    program = shutil.which(options.program) or options.program
    status = subprocess.run([os.path.abspath(program), "job.param"], cwd=folder, check=False)
    if status.returncode != 0:
        raise RuntimeError(f"{options.program} ended with status {status.returncode}")
    return folder / (f"{options.prepare.name}_td.fasta" if options.prepare
                     else "out/job.final.txt")


def arguments():
    parser = argparse.ArgumentParser(description="One search of the workflow.")
    parser.add_argument("parameters", type=pathlib.Path, help="parameter file of all searches")
    parser.add_argument("--program", default="closed_search", help="the search program")
    parser.add_argument("--tables", type=pathlib.Path, required=True, help="folder of the tables")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="the file to be made")
    parser.add_argument("--spectra", type=pathlib.Path, help="spectrum file")
    parser.add_argument("--database", type=pathlib.Path, help="prepared target-decoy database")
    parser.add_argument("--prepare", type=pathlib.Path, metavar="FASTA",
                        help="make the target-decoy database of this one")
    options = parser.parse_args()
    if not options.prepare and not (options.spectra and options.database):
        parser.error("give --prepare, or --spectra and --database")
    return options


def main():
    options = arguments()
    place, prefix = options.output.parent, f".{options.output.name}-"
    place.mkdir(parents=True, exist_ok=True)
    # What a killed attempt left behind.
    for leftover in place.glob(f"{glob.escape(prefix)}*"):
        shutil.rmtree(leftover, ignore_errors=True)
    # Beside the output, because a rename cannot cross file systems.
    with tempfile.TemporaryDirectory(prefix=prefix, dir=place) as name:
        try:
            os.replace(run_search(options, pathlib.Path(name)), options.output)
        except (OSError, RuntimeError) as error:
            print(f"search.py: {error}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
