#!/usr/bin/env python3
"""Tests of tools/unimod_to_ini, run as a program. Every test is a small Unimod file of its own."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

FOLDER = pathlib.Path(__file__).resolve().parent
PROGRAM = FOLDER.parent.parent / "tools" / "unimod_to_ini"


def run(*arguments):
    return subprocess.run([sys.executable, PROGRAM, *map(str, arguments)], capture_output=True,
                          text=True, check=False)


OXYGEN = '<delta mono_mass="15.994915" avge_mass="15.9994"><element symbol="O" number="1"/></delta>'
ON_M = '<specificity hidden="0" site="M" position="Anywhere"/>'


class UnimodToIni(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def convert(self, text, *options):
        path = self.folder / "unimod.xml"
        path.write_text(text, encoding="utf-8")
        return run(path, *options)

    def convert_mods(self, *mods, bricks=""):
        """Of modifications, the lines of the table and those about what was left out."""
        done = self.convert(f"<unimod><modifications>{''.join(mods)}</modifications>"
                            f"<mod_bricks>{bricks}</mod_bricks></unimod>")
        return done.stdout.splitlines()[1:], done.stderr.splitlines()[:-1]

    def test_excerpt_gives_the_table_worked_out_by_hand(self):
        done = run(FOLDER / "excerpt.xml")
        self.assertEqual(done.stdout, (FOLDER / "excerpt.expected.ini").read_text(encoding="ascii"))
        self.assertEqual(done.stderr, "11 definitions, 0 records left out\n")
        self.assertEqual(done.returncode, 0)

    def test_output_option_writes_the_same_with_single_line_feeds(self):
        target = self.folder / "table.ini"
        done = run(FOLDER / "excerpt.xml", "--output", target)
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        self.assertEqual(target.read_bytes(), (FOLDER / "excerpt.expected.ini").read_bytes())

    def test_a_record_that_cannot_be_used_is_named_and_left_out(self):
        delta = '<delta mono_mass="{}" avge_mass="1"><element symbol="{}" number="{}"/></delta>'
        for mod, fault in [
                (ON_M + delta.format("15.9", "O", 1), "its composition weighs 15.994915 Da, not 15.900000"),
                (ON_M + delta.format("1", "Qq", 1), "the element table lacks Qq"),
                (ON_M + delta.format("nan", "O", 1), 'mono_mass="nan" is no number'),
                (ON_M + delta.format("15.994915", "O", "one"), 'number="one" is no number'),
                (ON_M + delta.format("0", "O", 0), "no composition"),
                (ON_M + '<delta avge_mass="1"/>', "<delta> without mono_mass"),
                (ON_M, "0 deltas, not one"),
        ]:
            lines, left_out = self.convert_mods(f'<mod title="Bad" record_id="1">{mod}</mod>',
                                                f'<mod title="Good">{ON_M}{OXYGEN}</mod>')
            self.assertEqual(left_out, [f"left out: Bad: {fault}"])
            self.assertEqual(lines, ["name1=Good[M]\t1",
                                     "Good[M]=M NORMAL 15.994915 15.999400 0 O(1)"])

    def test_a_site_that_cannot_be_used_leaves_the_others(self):
        for site, position, fault in [("M", "Nowhere", "unknown position Nowhere"),
                                      ("MK", "Anywhere", "unknown site MK"),
                                      ("m", "Any N-term", "unknown site m"),
                                      ("N-term", "Any C-term", "site N-term with position Any C-term")]:
            bad = f'<specificity site="{site}" position="{position}"/>'
            lines, left_out = self.convert_mods(f'<mod title="Two">{bad}{ON_M}{OXYGEN}</mod>')
            self.assertEqual(left_out, [f"left out: Two at {site}: {fault}"])
            self.assertEqual(lines[0], "name1=Two[M]\t1")

    def test_a_terminus_anywhere_is_that_of_the_peptide(self):
        site = '<specificity site="C-term" position="Anywhere"/>'
        lines, _ = self.convert_mods(f'<mod title="End">{site}{OXYGEN}</mod>')
        self.assertEqual(lines[0], "name1=End[AnyC-term]\t0")
        self.assertIn("ABCDEFGHIJKLMNOPQRSTUVWXYZ PEP_C", lines[1])

    def test_names_hold_nothing_that_readers_take_for_something_else(self):
        for title, name in [("Xlink:DSS[156]", "Xlink:DSS-156"), ("a b", "a_b"), ("x=y;z#", "x-y-z-"),
                            ("Label_a", "x-Label_a"), ("@at", "x-@at"), ("naming", "naming"),
                            ("name", "x-name"), ("NULL", "x-NULL"), ("{a,b|c}", "-a-b-c-"),
                            ("Delta:H(-4)", "Delta:H-4"), ("\u00e9", "_"), ("(name)", "x-name")]:
            lines, _ = self.convert_mods(f'<mod title="{title}">{ON_M}{OXYGEN}</mod>')
            self.assertEqual(lines[0], f"name1={name}[M]\t1")

    def test_equal_definitions_of_one_name_become_one(self):
        lines, left_out = self.convert_mods(f'<mod title="Twice">{ON_M}{ON_M}{OXYGEN}</mod>')
        self.assertEqual((len(lines), left_out), (2, []))

    def test_element_table_decides_the_mass(self):
        table = self.folder / "element.ini"
        table.write_text("E1=O|15.995,17.0,|0.9,0.1,|\n", encoding="ascii")
        done = self.convert(f'<unimod><modifications><mod title="A">{ON_M}{OXYGEN}</mod>'
                            "</modifications></unimod>", "--elements", table)
        self.assertIn("A[M]=M NORMAL 15.995000 15.999400 0 O(1)\n", done.stdout)

    def test_what_cannot_be_read_at_all_gives_status_1_and_a_reason(self):
        for text, reason in [("", "no element found"), ("<unimod>", "no element found"),
                             ("<other/>", "<other> is no Unimod file"),
                             ("<unimod/>", "no modification could be converted"),
                             ("<unimod><mod_bricks><brick/></mod_bricks></unimod>",
                              "<brick> without title")]:
            done = self.convert(text)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn(reason, done.stderr)
        done = run(self.folder / "absent.xml")
        self.assertEqual(done.returncode, 1)
        self.assertIn("absent.xml", done.stderr)

    def test_a_bad_element_table_gives_status_1(self):
        table = self.folder / "element.ini"
        for text, reason in [("", "no elements"), ("E1=O|x|1|\n", "malformed record")]:
            table.write_text(text, encoding="ascii")
            done = run(FOLDER / "excerpt.xml", "--elements", table)
            self.assertEqual(done.returncode, 1)
            self.assertIn(reason, done.stderr)

    def test_nothing_is_written_when_nothing_could_be_converted(self):
        target = self.folder / "table.ini"
        self.assertEqual(self.convert("<unimod/>", "--output", target).returncode, 1)
        self.assertFalse(target.exists())

    def test_wrong_arguments_give_status_2(self):
        self.assertEqual(run().returncode, 2)
        self.assertEqual(run("a", "b").returncode, 2)


if __name__ == "__main__":
    unittest.main()
