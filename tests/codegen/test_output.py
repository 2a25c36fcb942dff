"""What the generator writes for a schema that holds together."""

import filecmp
import os
import re
import shutil
import unittest
from html import unescape

from support import CASES, ROOT, SchemaCase

import check
import schema

DOORS = CASES / "doors"
# How the text of a page is parted.
MARKS = [(r"</dt><dd>", ": "), (r"</t[dh]><t[dh][^>]*>", " | "), (r"</code><code>", " "),
         (r'<span class="note">(.*?)</span>', r" (\1)"), (r"<summary>(.*?)</summary>", r"\1\n"),
         (r"<[^>]+>", ""), (r" +\n", "\n"), (r"\n\n+", "\n")]


def text_of(page):
    for mark, text in MARKS:
        page = re.sub(mark, text, page)
    return unescape(page)


class Output(SchemaCase):
    def make(self, source):
        shutil.copytree(source, self.schema, dirs_exist_ok=True)
        self.assertEqual(self.generate(), (0, ""))
        self.assertEqual(self.generate("--reference", self.place / "pages"), (0, ""))

    def test_files_hold_what_is_expected(self):
        self.make(DOORS)
        sections = (DOORS / "expected.txt").read_text().split("\n== ")[1:]
        self.assertGreater(len(sections), 1)
        for section in sections:
            name, *paragraphs = section.rstrip("\n").split("\n\n")
            text = (self.place / name).read_text()
            text = text_of(text) if name.endswith(".html") else text
            for paragraph in paragraphs:
                self.assertIn(paragraph + "\n", text, msg=name)

    def test_what_did_not_change_is_not_written_again(self):
        self.make(DOORS)
        paths = [path for path in self.out.rglob("*") if path.is_file()]
        for path in paths:
            os.utime(path, (1, 1))
        doors = (self.schema / "doors.schema").read_text()
        self.write(doors.replace("Time  double", "Time  int"), "doors.schema")
        self.assertEqual(self.generate(), (0, ""))
        changed = {path.name for path in paths if path.stat().st_mtime != 1}
        self.assertEqual(changed, {"DoorEvent.h", "DoorsRecords.cpp", "VocabularyEntries.cpp"})

    def test_what_is_no_more_is_removed(self):
        self.make(DOORS)
        foreign = self.out / "domain" / "Foreign.h"
        foreign.write_text("// Of somebody else.\n")
        for text in ("record Bell 1\n", ""):
            self.write(text, "bell.schema")
            self.assertEqual(self.generate(), (0, ""))
            self.assertEqual(any(self.out.rglob("Bell.h")), bool(text))
        self.assertTrue(foreign.exists())

    def test_the_whole_reference_is_linked_and_the_same_each_time(self):
        self.make(ROOT / "schema")
        first, again = self.place / "pages", self.place / "again"
        self.assertEqual(self.generate("--reference", again), (0, ""))
        names = sorted(path.name for path in first.iterdir())
        self.assertEqual(filecmp.cmpfiles(first, again, names, shallow=False), (names, [], []))

        pages = {path.name: path.read_text() for path in first.glob("*.html")}
        anchors = {f"{name}#{anchor}" for name, page in pages.items()
                   for anchor in re.findall(r' id="(\w+)"', page)}
        links = [(target if target[0] != "#" else name + target) for name, page in pages.items()
                 for target in re.findall(r'(?:href|src)="([^"]+)"', page)
                 if not target.startswith("../")]  # around the reference, and checked with it
        links += re.findall(r'^\["[^"]*", "[^"]*", "([^"]*)"',
                            (first / "search-index.js").read_text(), re.M)
        self.assertEqual(set(links) - anchors - set(names), set())
        real = schema.read_schema(ROOT / "schema")
        check.check_schema(real)
        for record in real.records.values():
            self.assertIn(f"{record.family}.html#{record.name}", links)
        rows = re.findall(r"<tr[^>]*><td>(\d+)</td>", pages["commands.html"])
        self.assertEqual(rows, [str(command.request) for command in real.commands])


if __name__ == "__main__":
    unittest.main()
