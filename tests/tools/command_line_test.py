#!/usr/bin/env python3
"""command_line_test.py TESSEL_CHECK SOURCE_FOLDER: the program as a user starts it, and its page."""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, SOURCES = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
INPUTS = os.path.join(SOURCES, "tests", "tools", "faulty_inputs")


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        os.mkdir(os.path.join(self.folder, "results"))
        self.lay("none")

    def lay(self, name):
        shutil.copytree(os.path.join(INPUTS, name), self.folder, dirs_exist_ok=True)

    def run_check(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, capture_output=True,
                              check=False, **options)

    def test_faultless_run_has_notes_alone(self):
        ended = self.run_check("run.param")
        self.assertEqual(ended.returncode, 0)
        self.assertEqual(ended.stderr, b"")
        for line in ended.stdout.splitlines():
            self.assertTrue(line.startswith(b"note: "), line)

    def test_demonstration_has_notes_alone(self):
        shutil.copytree(os.path.join(SOURCES, "data"), self.folder, dirs_exist_ok=True)
        shutil.copytree(os.path.join(SOURCES, "examples", "ecoli"), self.folder, dirs_exist_ok=True)
        ended = self.run_check("ecoli.param")
        self.assertEqual(ended.returncode, 0, ended.stdout)
        self.assertIn(b"139 spectra, 0 of them dropped", ended.stdout)

    def test_warning_is_status_1_and_error_2(self):
        self.lay("param_misspelt_key")
        self.assertEqual(self.run_check("run.param").returncode, 1)
        self.lay("param_no_such_database")
        self.assertEqual(self.run_check("run.param").returncode, 2)

    def test_usage_is_status_3(self):
        for arguments in ([], ["a", "b"], ["--jsn", "run.param"], ["-x"], ["-", "run.param"]):
            ended = self.run_check(*arguments)
            self.assertEqual(ended.returncode, 3)
            self.assertEqual(ended.stdout, b"")
            self.assertIn(b"tessel-check [--json] PARAMETER_FILE", ended.stderr)
        self.assertIn(b"unknown option --jsn", self.run_check("--jsn", "run.param").stderr)
        self.assertIn(b"unknown option -x", self.run_check("-x").stderr)

    def test_help_is_no_error(self):
        for option in ("--help", "-h"):
            ended = self.run_check(option)
            self.assertEqual(ended.returncode, 0)
            self.assertIn(b"Exit status: 0 ", ended.stdout)

    def test_name_may_begin_with_dashes_behind_two(self):
        for name in ("--run", "-h"):
            shutil.copy(os.path.join(self.folder, "run.param"), os.path.join(self.folder, name))
            self.assertEqual(self.run_check("--", name).returncode, 0)

    def test_what_was_found_is_told_when_memory_ends(self):
        try:
            import resource
        except ImportError:
            self.skipTest("no limit of address space on this system")
        limit = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_AS, (400 << 20,) * 2)}
        if self.run_check("--help", **limit).returncode != 0:
            self.skipTest("the program needs more memory to start, as under a sanitizer")
        path = os.path.join(self.folder, "run.param")
        with open(path, encoding="utf-8") as file:
            text = file.read()
        with open(path, "w", encoding="utf-8") as file:
            file.write(text.replace("maxdelta=10.0", "maxdelta=49000").replace("maxmod=3",
                                                                              "maxmod=25"))
        ended = self.run_check("run.param", **limit)
        self.assertEqual(ended.returncode, 2, ended.stderr)
        self.assertIn(b'"maxmod" cannot be 25', ended.stdout)
        self.assertRegex(ended.stdout.splitlines()[-1], rb"error: run.param: .*\[out-of-memory\]$")

    def test_json_is_one_document_of_the_same_findings(self):
        self.lay("mgf_title_twice")
        lines = self.run_check("run.param").stdout.splitlines()
        document = json.loads(self.run_check("--json", "run.param").stdout)
        self.assertEqual(document["parameter_file"], "run.param")
        self.assertEqual(document["counts"], {"note": len(lines) - 1, "warning": 1, "error": 0})
        self.assertEqual(len(document["findings"]), len(lines))
        for finding in document["findings"]:
            self.assertEqual(sorted(finding),
                             ["advice", "code", "file", "level", "line", "message"])
        worst = [f for f in document["findings"] if f["level"] != "note"]
        self.assertEqual([(f["code"], f["file"], f["line"]) for f in worst],
                         [("duplicate-title", "spectra.mgf", 9)])

    def test_json_is_valid_whatever_the_files_hold(self):
        every_byte = bytes(b for b in range(256) if b != 10)
        with open(os.path.join(self.folder, "run.param"), "ab") as file:
            file.write(every_byte + b"\n" + every_byte.replace(b"=", b"") + b"\n")
        with open(os.path.join(self.folder, "spectra.mgf"), "ab") as file:
            file.write(b"BEGIN IONS\nTITLE=" + every_byte + b"\nCHARGE=" + every_byte + b"\n")
        document = json.loads(self.run_check("--json", "run.param").stdout.decode("utf-8"))
        self.assertGreater(document["counts"]["warning"], 2)

    def test_full_disk_is_no_success(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full here")
        with open("/dev/full", "wb") as full:
            ended = subprocess.run([PROGRAM, "run.param"], cwd=self.folder, stdout=full,
                                   stderr=subprocess.PIPE, check=False)
        self.assertEqual(ended.returncode, 3)
        self.assertIn(b"cannot be written", ended.stderr)

    def test_every_kind_of_finding_is_documented(self):
        codes = set()
        folder = os.path.join(SOURCES, "tools", "tessel_check")
        for name in os.listdir(folder):
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                text = file.read()
            codes.update(re.findall(r'"([a-z]+(?:-[a-z]+)+|spectra|combinations|database)"', text))
        with open(os.path.join(SOURCES, "docs", "tessel_check.md"), encoding="utf-8") as file:
            rows = [line for line in file if line.startswith("| `") and line.count("|") == 4]
        kinds = [row for row in rows if re.search(r"\| (note|warning|error) \|", row)]
        documented = {code for row in kinds for code in re.findall(r"`([a-z-]+)`", row.split("|")[1])}
        self.assertEqual(documented, codes)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
