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
import shutil
import subprocess
import sys
import tempfile

TABLES = ("element.ini", "aa.ini", "modification.ini", "quant.ini")


def with_settings(text, settings):
    """A parameter file in which these settings replace those of the same keys."""
    by_section = {}
    for key, (section, value) in settings.items():
        by_section.setdefault(f"[{section}]", []).append(f"{key}={value}")
    result = []
    for line in text.splitlines():
        if line.partition("=")[0] not in settings:
            result += [line] + by_section.pop(line.strip(), [])
    for section, lines in by_section.items():
        result += [section] + lines
    return "\n".join(result) + "\n"


def job_settings(options):
    """What differs from job to job; everything else is the user's."""
    spectra = options.spectra.resolve() if options.spectra else "none.mgf"
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
        (folder / "none.mgf").touch()
    text = options.parameters.read_text(encoding="utf-8", errors="surrogateescape")
    (folder / "job.param").write_text(with_settings(text, job_settings(options)), encoding="utf-8",
                                      errors="surrogateescape")
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
