#!/usr/bin/env python3
"""Shows that the checks of the source tree find what they are there for: a copy with a fault gives
status 1 and a line that names it, an unchanged copy status 0 and no line.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parent.parent
COPIED = ("tessel", "docs")
BUILDS = ("build", ".git")


class Checks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for entry in SOURCE.iterdir():
            if entry.name in COPIED:
                shutil.copytree(entry, self.root / entry.name)
            elif entry.name not in BUILDS:
                (self.root / entry.name).symlink_to(entry)

    def replace(self, name, before, after):
        path = self.root / name
        text = path.read_text(encoding="utf-8")
        self.assertEqual(text.count(before), 1, f"{before} in {name}")
        path.write_text(text.replace(before, after), encoding="utf-8")

    def faults(self, script):
        done = subprocess.run([sys.executable, HERE / f"{script}.py", self.root], text=True,
                              capture_output=True, check=False)
        self.assertEqual(done.stderr, "")
        self.assertEqual(done.returncode, 1 if done.stdout else 0)
        return done.stdout.splitlines()

    def test_tree_without_a_fault_passes(self):
        for script in ("check_messages", "check_includes", "check_documents"):
            self.assertEqual(self.faults(script), [])

    def test_message_that_is_worded_anew_is_found(self):
        self.replace("tessel/result/merge_results.cpp", '"Failed to write the result file: "',
                     '"Cannot write the result file: "')
        self.assertEqual(self.faults("check_messages"), [
            'result/merge_results.cpp no longer says "Failed to write the result file: "',
            'not in the catalogue, result/merge_results.cpp: "Cannot write the result file: "'])

    def test_end_of_the_process_without_a_row_is_found(self):
        with open(self.root / "tessel/result/merge_results.cpp", "a", encoding="utf-8") as file:
            file.write("void end() { tessel::end_process(1); }\n")
        faults = self.faults("check_messages")
        self.assertEqual(len(faults), 1)
        self.assertIn('under "Ends of the process" stand rows of', faults[0])

    def test_include_against_the_direction_is_found(self):
        self.replace("tessel/chem/labels.cpp", '#include "tessel/base/end_process.h"\n',
                     '#include "tessel/base/end_process.h"\n'
                     '#include "tessel/param/condition_reader.h"\n')
        self.assertEqual(self.faults("check_includes"), [
            "chem/labels.cpp (source of an operation) includes param/condition_reader.h (param/)"])

    def test_headers_in_a_circle_are_found(self):
        for name, other in (("number", "line_reader"), ("line_reader", "number")):
            with open(self.root / f"tessel/base/{name}.h", "a", encoding="utf-8") as file:
                file.write(f'#include "tessel/base/{other}.h"\n')
        self.assertEqual(self.faults("check_includes"), [
            "headers in a circle: base/number.h -> base/line_reader.h -> base/number.h"])

    def test_link_that_leads_nowhere_is_found(self):
        self.replace("docs/messages.md", "](tessel_check.md)", "](tessel_chek.md)")
        self.assertEqual(self.faults("check_documents"),
                         ["docs/messages.md: not there: link to tessel_chek.md"])

    def test_heading_field_and_file_that_are_not_there_are_found(self):
        with open(self.root / "docs/messages.md", "a", encoding="utf-8") as page:
            page.write("[a](architecture.md#nowhere) `m_nNothing` `base/nothing.h`\n")
        self.assertEqual(self.faults("check_documents"), [
            "docs/messages.md: not there: link to architecture.md#nowhere",
            "docs/messages.md: not there: file base/nothing.h",
            "docs/messages.md: not there: name m_nNothing"])


if __name__ == "__main__":
    unittest.main()
