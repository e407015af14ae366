#!/usr/bin/env python3
"""Runs the programs of two builds on the same inputs; all files that they write must be alike.

    compare_systems.py HOST_BUILD CROSS_BUILD EMULATOR SOURCE_FOLDER WORK_FOLDER

What they write:

    closed_search        the target-decoy database and the final result
    labels               the temporary tables
    mgf_to_zb2           a ZB2 file
    rewrite_parameters   a parameter file; its version line tells the time of a local file and is
                         left out
"""

import pathlib
import shutil
import subprocess
import sys

TABLES = ("element.ini", "aa.ini", "modification.ini", "quant.ini")
SEARCH = ("ecoli.param", "ecoli.fasta", "ecoli.mgf")
LABELS = "2|None|SILAC-K8R10|"
# What the programs must have written, so that no comparison is of nothing.
EXPECTED = ("ecoli.fasta_td.fasta", "results/ecoli.final.txt", "1.aa", "1.mod", "2.aa", "2.mod",
            "ecoli.zb2", "rewritten.param")


def run(folder, *command):
    words = [str(word) for word in command if word]
    ended = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                           text=True)
    if ended.returncode != 0:
        sys.exit(f"{words} ended with {ended.returncode}:\n{ended.stdout}{ended.stderr}")


def with_settings(text, settings):
    lines = []
    for line in text.splitlines():
        key = line.split("=")[0]
        lines.append(f"{key}={settings[key]}" if key in settings else line)
    return "\n".join(lines) + "\n"


def written_files(build, suffix, emulator, source, folder):
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "results").mkdir(parents=True)
    for name in TABLES:
        shutil.copy(source / "data" / name, folder)
    for name in SEARCH:
        shutil.copy(source / "examples/ecoli" / name, folder)
    parameters = (folder / "ecoli.param").read_text()
    (folder / "labels.param").write_text(with_settings(
        parameters, {"quant": LABELS, "outputpath": ".", "selectmod": "Oxidation[M];Acetyl[K];"}))

    def program(name):
        return build / (name + suffix)

    run(folder, emulator, program("examples/closed_search"), "ecoli.param")
    run(folder, emulator, program("examples/labels"), "labels.param")
    run(folder, emulator, program("examples/mgf_to_zb2"), "ecoli.mgf", "ecoli.zb2")
    run(folder, emulator, program("examples/rewrite_parameters"), "ecoli.param", "rewritten.param")
    files = {str(path.relative_to(folder)): path.read_bytes()
             for path in folder.rglob("*") if path.is_file()}
    head, _ = files["rewritten.param"].split(b"[Version Info]\n")
    files["rewritten.param"] = head
    return files


def main(host_build, cross_build, emulator, source, work):
    source, work = pathlib.Path(source), pathlib.Path(work)
    host = written_files(pathlib.Path(host_build), "", "", source, work / "host")
    cross = written_files(pathlib.Path(cross_build), ".exe", emulator, source, work / "cross")
    different = sorted(name for name in host.keys() | cross.keys()
                       if host.get(name) != cross.get(name))
    missing = [name for name in EXPECTED if not host.get(name)]
    for name in different:
        print(f"different: {name}")
    for name in missing:
        print(f"not written, or empty: {name}")
    for name in EXPECTED:
        print(f"{len(host.get(name, b'')):9} bytes  {name}")
    return int(bool(different or missing))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
