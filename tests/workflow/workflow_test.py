#!/usr/bin/env python3
"""Runs examples/workflow with the local executor on eight files made from the sample spectra, and the
parts of it on files written by hand.

usage: workflow_test.py CLOSED_SEARCH, beside which mgf_to_zb2 lies
"""

import collections
import os
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parent.parent.parent
WORKFLOW = SOURCE / "examples" / "workflow"
ECOLI = SOURCE / "examples" / "ecoli"
FILES = [f"part{number}" for number in range(1, 9)]
PROGRAM = pathlib.Path("closed_search")  # the argument

sys.dont_write_bytecode = True  # the source tree stays as it is
sys.path.insert(0, str(WORKFLOW))
import search  # noqa: E402

# Stands in for the search: notes every start, and at the first attempt of some files writes half a
# result and ends badly, once with the whole job.
FLAKY = """#!/bin/sh
spectra=$(sed -n 's/^msmspath1=//p' "$1")
name=$(basename "$spectra" .mgf)
echo "$name" >>{folder}/starts.txt
if [ "$name" = part3 ] || [ "$name" = part6 ]; then
    if [ ! -e "{folder}/$name.tried" ]; then
        touch "{folder}/$name.tried"
        echo "half a result" >out/job.final.txt
        [ "$name" = part3 ] && kill -KILL $PPID
        exit 1
    fi
fi
[ "$name" = "$(cat {folder}/broken.txt)" ] && exit 1
exec {program} "$@"
"""


def blocks_of_spectra():
    text = (ECOLI / "ecoli.mgf").read_text(encoding="ascii")
    return ["BEGIN IONS" + block for block in text.split("BEGIN IONS")[1:]]


class Workflow(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        blocks = blocks_of_spectra()
        for index, name in enumerate(FILES):
            self.write(f"{name}.mgf", "".join(blocks[index::len(FILES)]))
        shutil.copy(ECOLI / "ecoli.fasta", self.folder)
        shutil.copy(ECOLI / "ecoli.param", self.folder)
        self.write("broken.txt", "")
        self.write("flaky", FLAKY.format(folder=self.folder, program=PROGRAM))
        (self.folder / "flaky").chmod(stat.S_IRWXU)

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="ascii")

    def change_parameters(self, before, after):
        text = (self.folder / "ecoli.param").read_text(encoding="ascii")
        self.assertIn(before, text)
        self.write("ecoli.param", text.replace(before, after))

    def run_workflow(self, program=None, spectra=None, workflow=WORKFLOW):
        names = spectra or [f"{name}.mgf" for name in FILES]
        return subprocess.run(
            ["snakemake", "--snakefile", workflow / "Snakefile", "--cores", "2", "--keep-going",
             "--config", f"program={program or PROGRAM}", "parameters=ecoli.param",
             "database=ecoli.fasta", f"spectra=[{','.join(names)}]", f"tables={SOURCE / 'data'}"],
            cwd=self.folder, capture_output=True, text=True, check=False)

    def result(self, name):
        return (self.folder / "results" / f"{name}.final.txt").read_bytes()

    def table(self):
        """The rows of the table without the name of the file."""
        lines = (self.folder / "matches.tsv").read_text(encoding="ascii").splitlines()
        return lines[0].split("\t"), [tuple(line.split("\t")[1:]) for line in lines[1:]]

    def starts(self):
        return collections.Counter((self.folder / "starts.txt").read_text().split())

    def single_run(self, spectra):
        """One process for all files, in a folder of its own, which it gives."""
        folder = self.folder / "single"
        (folder / "results").mkdir(parents=True)
        for table in (SOURCE / "data").glob("*.ini"):
            shutil.copy(table, folder)
        shutil.copy(self.folder / "ecoli.fasta", folder)
        text = (self.folder / "ecoli.param").read_text(encoding="ascii")
        paths = "\n".join(f"msmspath{number}=../{name}.mgf"
                          for number, name in enumerate(spectra, 1))
        text = text.replace("msmsnum=1", f"msmsnum={len(spectra)}")
        text = text.replace("msmspath1=ecoli.mgf", paths)
        (folder / "ecoli.param").write_text(text, encoding="ascii")
        subprocess.run([PROGRAM, "ecoli.param"], cwd=folder, check=True, capture_output=True)
        return folder / "results"

    def test_results_are_those_of_a_single_run_over_all_files(self):
        done = self.run_workflow()
        self.assertEqual(done.returncode, 0, done.stderr)
        single = self.single_run(FILES)
        for number, name in enumerate(FILES, 1):
            self.assertEqual(self.result(name), (single / f"ecoli_{number}.final.txt").read_bytes())

    def test_table_is_that_of_a_single_file_with_all_spectra(self):
        done = self.run_workflow()
        self.assertEqual(done.returncode, 0, done.stderr)
        header, rows = self.table()
        self.write("all.mgf", "".join(blocks_of_spectra()))
        self.single_run(["all"])
        wanted = rows_of_result(self.folder / "single" / "results" / "ecoli.final.txt")
        self.assertEqual(header[1:], ["title", "charge", "precursor_mass", "rank", "sequence",
                                      "peptide_mass", "score", "q_value", "modifications", "decoy",
                                      "proteins"])
        self.assertGreater(len(rows), 1000)
        self.assertEqual(sorted(rows), sorted(wanted))
        # The known result of these spectra, see examples/ecoli/README.md.
        best = [row for row in rows if row[3] == "1" and row[9] == "0" and float(row[7]) <= 0.01]
        self.assertEqual(len({row[0] for row in best}), 82)

    def test_failed_and_killed_jobs_are_retried_without_harm_to_the_others(self):
        done = self.run_workflow(self.folder / "flaky")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.starts(), {"none": 1, **{name: 1 for name in FILES}, "part3": 2,
                                         "part6": 2})
        retried = {name: self.result(name) for name in FILES}
        table = (self.folder / "matches.tsv").read_bytes()
        hidden = [path.name for path in (self.folder / "results").iterdir()
                  if path.name.startswith(".")]
        self.assertEqual(hidden, [])
        shutil.rmtree(self.folder / "results")
        (self.folder / "matches.tsv").unlink()
        self.assertEqual(self.run_workflow().returncode, 0)
        self.assertEqual({name: self.result(name) for name in FILES}, retried)
        self.assertEqual((self.folder / "matches.tsv").read_bytes(), table)

    def test_a_job_that_never_succeeds_costs_itself_and_the_table_alone(self):
        self.write("broken.txt", "part5")
        self.assertNotEqual(self.run_workflow(self.folder / "flaky").returncode, 0)
        self.assertEqual(self.starts()["part5"], 3)
        self.assertFalse((self.folder / "results" / "part5.final.txt").exists())
        self.assertFalse((self.folder / "matches.tsv").exists())
        for name in set(FILES) - {"part5"}:
            self.assertGreater(len(self.result(name)), 0)
        # Once the fault is mended, nothing but what is missing is done.
        self.write("broken.txt", "")
        self.assertEqual(self.run_workflow(self.folder / "flaky").returncode, 0)
        self.assertEqual(self.starts(), {"none": 1, **{name: 1 for name in FILES}, "part3": 2,
                                         "part6": 2, "part5": 4})

    def test_database_with_decoys_of_its_own_is_searched_as_it_is(self):
        self.change_parameters("auto_rev=1", "auto_rev=0")
        entries = (self.folder / "ecoli.fasta").read_text(encoding="ascii").split(">")[1:]
        with open(self.folder / "ecoli.fasta", "a", encoding="ascii") as database:
            for head, _, sequence in (entry.partition("\n") for entry in entries):
                database.write(f">REV_{head}\n{''.join(sequence.split())[::-1]}\n")
        done = self.run_workflow(spectra=["part1.mgf", "part2.mgf"])
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertFalse((self.folder / "database").exists())
        single = self.single_run(["part1", "part2"])
        for number in (1, 2):
            self.assertEqual(self.result(f"part{number}"),
                             (single / f"ecoli_{number}.final.txt").read_bytes())
        self.assertEqual({row[9] for row in self.table()[1]}, {"0", "1"})

    def test_list_of_files_gives_the_rows_of_the_files(self):
        (self.folder / "spectra").mkdir()
        for name in ("part1", "spectra/part2"):
            subprocess.run([PROGRAM.with_name("mgf_to_zb2"), f"{pathlib.Path(name).name}.mgf",
                            f"{name}.zb2"], cwd=self.folder, check=True, capture_output=True)
        self.change_parameters("msmstype=MGF", "msmstype=ZB2")
        done = self.run_workflow(spectra=["part1.zb2", "spectra/part2.zb2"])
        self.assertEqual(done.returncode, 0, done.stderr)
        header, rows = self.table()
        self.assertGreater(len(rows), 100)
        # Its paths are relative to the working folder, not to its own.
        (self.folder / "lists").mkdir()
        self.write("lists/both.zbs", "part1.zb2\nspectra\\part2.zb2\n")
        self.change_parameters("msmstype=ZB2", "msmstype=ZBS")
        done = self.run_workflow(spectra=["lists/both.zbs"])
        self.assertEqual(done.returncode, 0, done.stderr)
        again, rows_of_list = self.table()
        self.assertEqual((again, sorted(rows_of_list)), (header, sorted(rows)))

    def test_folder_of_the_workflow_may_have_a_blank_in_its_name(self):
        folder = self.folder / "work flow"
        shutil.copytree(WORKFLOW, folder)
        done = self.run_workflow(spectra=["part1.mgf"], workflow=folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertGreater(len(self.table()[1]), 0)

    def test_two_files_of_one_name_are_refused(self):
        (self.folder / "more").mkdir()
        shutil.copy(self.folder / "part1.mgf", self.folder / "more")
        done = self.run_workflow(spectra=["part1.mgf", "more/part1.mgf"])
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("Two spectrum files have one name", done.stderr)


class Collect(unittest.TestCase):
    """The table alone, on results written by hand."""

    def collect(self, *texts):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            paths = [folder / f"{number}.txt" for number in range(len(texts))]
            for path, text in zip(paths, texts):
                path.write_text(text, encoding="ascii")
            (folder / "list").write_text("".join(f"{path}\n" for path in paths))
            done = subprocess.run([sys.executable, WORKFLOW / "collect.py", "--output",
                                   folder / "table", folder / "list"], capture_output=True,
                                  text=True, check=False)
            table = folder / "table"
            lines = table.read_text().splitlines()[1:] if table.exists() else None
            self.assertEqual({path.name for path in folder.iterdir()} - {"table", "list"},
                             {path.name for path in paths})
            return lines, done

    @staticmethod
    def spectrum(title, *candidates):
        """A spectrum with candidates of a score and a decoy flag each."""
        lines = [f"S\t1000.5\t2\n{title}\n"]
        for rank, (score, decoy) in enumerate(candidates, 1):
            lines.append(f"{rank}\tPEPTIDE\t800.0\t{score}\t-1\t1024\t1\t3\tOxidation[M]\t0\t{decoy}"
                         "\t0\t2\t4;0;-;K\t9;7;R;A\t0" + 5 * "\t0.0" + 8 * "\t0" + "\n")
        return "".join(lines)

    def test_q_values_are_those_over_all_files(self):
        # By falling score: target 9, decoy 8, target 7, decoy 6, target 5: rates 0, 1, 1/2, 1, 2/3.
        lines, _ = self.collect(self.spectrum("a", (9, 0), (4, 0)) + self.spectrum("b", (7, 0)),
                                self.spectrum("c", (8, 1)) + self.spectrum("d", (6, 1), (6, 0)),
                                self.spectrum("e", (5, 0)))
        self.assertEqual([tuple(line.split("\t")[i] for i in (0, 1, 8)) for line in lines],
                         [("0.txt", "a", "0"), ("0.txt", "a", "1024"), ("0.txt", "b", "0.5"),
                          ("1.txt", "c", "0.5"), ("1.txt", "d", "0.666667"),
                          ("1.txt", "d", "0.666667"), ("2.txt", "e", "0.666667")])

    def test_a_row_holds_what_the_result_says(self):
        lines, _ = self.collect(self.spectrum("a", (9.5, 0)))
        self.assertEqual(lines, ["0.txt\ta\t2\t1000.5\t1\tPEPTIDE\t800.0\t9.5\t0\t3,Oxidation[M]\t0\t"
                                 "4;0;-;K|9;7;R;A"])

    def test_tab_in_a_title_does_not_shift_the_columns(self):
        lines, _ = self.collect(self.spectrum("a\tb\t", (9.5, 0)))
        self.assertEqual(lines[0].split("\t")[1:4], ["a b ", "2", "1000.5"])

    def test_spectra_without_candidates_and_empty_files_give_no_rows(self):
        self.assertEqual(self.collect(self.spectrum("a"), "")[0], [])

    def test_what_is_no_result_file_gives_status_1_and_no_table(self):
        for text in ("nonsense\n", "S\t1.0\t2\n", self.spectrum("a", (9, 0))[:-9],
                     self.spectrum("a", ("x", 0))):
            lines, done = self.collect(text)
            self.assertEqual((lines, done.returncode), (None, 1), text)
            self.assertIn("collect.py: ", done.stderr)


class Settings(unittest.TestCase):
    """The parameter file of a job, from the user's."""

    SETTINGS = {"fastapath": ("file", "/db"), "auto_rev": ("file", 0), "msmsnum": ("datalist", 1),
                "msmspath1": ("datalist", "/a")}

    def lines_of(self, content):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "file"
            path.write_bytes(content)
            return search.lines_of(path)

    def settings_of(self, content):
        return search.with_settings(self.lines_of(content), self.SETTINGS)

    def test_settings_stand_behind_their_headers_and_the_users_are_gone(self):
        self.assertEqual(
            self.settings_of(b"[param]\nthread=1\n[file]\nauto_rev=1\nfastapath=x\n[datalist]\n"
                             b"msmsnum=2\nmsmspath1=a\nmsmspath2=b\nmsmstype=MGF\n"),
            # What is left of a second file is behind the number of files and never read.
            ["[param]", "thread=1", "[file]", "fastapath=/db", "auto_rev=0", "[datalist]",
             "msmsnum=1", "msmspath1=/a", "msmspath2=b", "msmstype=MGF"])

    def test_section_that_is_missing_is_added(self):
        self.assertEqual(self.settings_of(b"[file]\nfastapath=x\n[param]\nthread=1"),
                         ["[file]", "fastapath=/db", "auto_rev=0", "[param]", "thread=1",
                          "[datalist]", "msmsnum=1", "msmspath1=/a"])

    def test_headers_are_those_that_the_library_sees(self):
        self.assertEqual(self.settings_of(b" [file]\n[file] of all\n[datalist]\n[file]\n"),
                         [" [file]", "[file] of all", "fastapath=/db", "auto_rev=0", "[datalist]",
                          "msmsnum=1", "msmspath1=/a", "[file]"])

    def test_key_in_another_section_is_replaced_too(self):
        self.assertEqual(self.settings_of(b"[file]\nmsmsnum=3\n[datalist]\nauto_rev=1\n"),
                         ["[file]", "fastapath=/db", "auto_rev=0", "[datalist]", "msmsnum=1",
                          "msmspath1=/a"])

    def test_byte_order_mark_and_carriage_returns_are_no_text(self):
        self.assertEqual(self.settings_of(b"\xef\xbb\xbf[file]\r\nfastapath=x\r\n[datalist]\r\n"),
                         ["[file]", "fastapath=/db", "auto_rev=0", "[datalist]", "msmsnum=1",
                          "msmspath1=/a"])

    def test_lines_end_at_line_feeds_alone(self):
        for between in (b"\f", b"\xc2\x85", b"\x1c", b"\r", b"\xff"):
            line = b"outputname=a" + between + b"fastapath=x"
            self.assertEqual(self.lines_of(line + b"\n\n"),
                             [line.decode("utf-8", "surrogateescape"), ""])

    def test_bytes_that_are_no_text_stay(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "file"
            path.write_bytes(b"a=\xff\xc3\xa9\f\n")
            search.write_lines(path, search.lines_of(path))
            self.assertEqual(path.read_bytes(), b"a=\xff\xc3\xa9\f\n")

    def test_decoys_are_wanted_as_the_library_reads_it(self):
        for text, wanted in (("[file]\nauto_rev=1", True), ("[file]\nauto_rev=0", False),
                             ("[file]", True), ("", True), ("[file]\nauto_rev=", True),
                             ("[file]\nauto_rev=no", False), ("[file]\nauto_rev= 0x", False),
                             ("[file]\nauto_rev=-1", True),
                             ("[file]\nauto_rev=0\nauto_rev=1", False),
                             ("auto_rev=0\n[file]\nthread=1", True),
                             ("[file]\n[engine]\nauto_rev=0", False)):
            self.assertEqual(search.wants_decoys(text.split("\n")), wanted, text)


class SlurmStatus(unittest.TestCase):
    """The profile's report, with a controller and an accounting that are scripts."""

    def status(self, controller, accounting="exit 1"):
        with tempfile.TemporaryDirectory() as name:
            for program, script in (("scontrol", controller), ("sacct", accounting)):
                path = pathlib.Path(name) / program
                path.write_text(f"#!/bin/sh\n{script}\n", encoding="ascii")
                path.chmod(stat.S_IRWXU)
            done = subprocess.run([sys.executable, WORKFLOW / "slurm" / "slurm_status.py",
                                   "7;cluster"], capture_output=True, text=True, check=True,
                                  env={**os.environ, "PATH": f"{name}:{os.environ['PATH']}"})
            return done.stdout

    FORGOTTEN = "echo 'slurm_load_jobs error: Invalid job id specified' >&2; exit 1"
    BUSY = "echo 'slurm_load_jobs error: Unable to contact slurm controller' >&2; exit 1"

    def test_state_is_that_of_the_controller(self):
        for state, status in (("COMPLETED", "success"), ("PENDING", "running"),
                              ("TIMEOUT", "failed")):
            self.assertEqual(self.status(f'[ "$4" = 7 ] && echo "JobId=7 JobState={state} Reason=None"',
                                         "echo CANCELLED"), status + "\n")

    def test_accounting_knows_what_the_controller_has_forgotten(self):
        self.assertEqual(self.status(self.FORGOTTEN, "echo COMPLETED"), "success\n")
        self.assertEqual(self.status(self.BUSY, "echo 'CANCELLED by 0'"), "failed\n")

    def test_job_that_nobody_knows_is_not_waited_for(self):
        self.assertEqual(self.status(self.FORGOTTEN), "failed\n")

    def test_busy_controller_is_asked_again(self):
        self.assertEqual(self.status(self.BUSY), "running\n")


def rows_of_result(path):
    """A result file as rows of the table, read in a way of its own."""
    rows, lines = [], iter(path.read_text(encoding="ascii").splitlines())
    for line in lines:
        if line.startswith("S\t"):
            _, mass, charge = line.split("\t")
            title = next(lines)
            continue
        rank, sequence, peptide_mass, score, _, q_value, sites, *rest = line.split("\t")
        mods = []
        for _ in range(int(sites)):
            mods.append(f"{rest.pop(0)},{rest.pop(0)}")
        _, decoy, _, hits = [rest.pop(0) for _ in range(4)]
        rows.append((title, charge, mass, rank, sequence, peptide_mass, score, q_value,
                     ";".join(mods), decoy, "|".join(rest[:int(hits)])))
    return rows


if __name__ == "__main__":
    PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
    if shutil.which("snakemake"):
        unittest.main()
    del Workflow
    if not unittest.main(exit=False).result.wasSuccessful():
        sys.exit(1)
    print("SKIPPED: snakemake is not installed; the rest is tested")
