"""The tables of the documentation say what the headers say, and its links lead somewhere."""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "codegen"))

from operations import function_list
from schema import read_schema

SCHEMA = read_schema(ROOT / "schema")
DOCUMENTS = [*sorted(ROOT.glob("*.md")), *sorted((ROOT / "docs").glob("*.md"))]


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


def rows_of(text):
    """The rows of the tables in a text, without their heads."""
    rows = re.findall(r"^\|(.*)\|$", text, re.M)
    return [[cell.strip() for cell in row.split("|")] for row in rows]


class ErrorCodes(unittest.TestCase):
    def test_the_table_is_that_of_the_library(self):
        expected = [(str(code.number), f"`{code.name}`", code.meaning) for code in SCHEMA.codes]
        rows = [tuple(row[:3]) for row in rows_of(read("docs/error-codes.md"))
                if re.fullmatch(r"-?\d+", row[0])]
        self.assertEqual(rows, expected)

    def test_the_header_tells_them_by_their_numbers(self):
        told = re.findall(r"\b([A-Z]\w+) \((-?\d+)\)",
                          read("src/device/FleetKit.h") + read("src/device/Login.h"))
        self.assertGreater(len(told), 20)
        self.assertLessEqual(set(told), {(code.name, str(code.number)) for code in SCHEMA.codes})


class Functions(unittest.TestCase):
    def test_the_header_declares_those_of_the_table(self):
        declared = re.findall(r"^    static int (\w+)\(", read("src/device/FleetKit.h"), re.M)
        self.assertEqual(sorted(f"FleetKit::{name}" for name in declared),
                         function_list(SCHEMA).split())


class DeviceTypes(unittest.TestCase):
    def test_the_header_tells_their_numbers(self):
        told = re.search(r"`deviceType` is (.*?) for an IP camera, (.*?) for a recorder",
                         re.sub(r"\s*//\s*", " ", read("src/device/FleetKit.h")))
        numbers = [[int(number) for number in re.findall(r"\d+", part)] for part in told.groups()]
        self.assertEqual(numbers, list(SCHEMA.device_types.values()))


class Structures(unittest.TestCase):
    HEADER = read("src/device/TarnStruct.h")
    PAGE = read("docs/exported-structures.md")

    def test_layouts(self):
        layouts = re.findall(r"^## (tag\w+)\n(.*?)(?=^## |\Z)", self.PAGE, re.M | re.S)
        self.assertEqual(len(layouts), 5)
        for structure, section in layouts:
            body = re.search(rf"struct {structure} \{{\n(.*?)\n\}};", self.HEADER, re.S)[1]
            fields = re.findall(r"^    ([\w:]+) (\w+)(\[\w+\])?;", body, re.M)
            offsets = dict(re.findall(rf"offsetof\({structure}, (\w+)\) == (\d+)", self.HEADER))
            self.assertEqual(
                [row[:3] for row in rows_of(section) if row[0].isdigit()],
                [[offsets[name], kind.replace("std::int32_t", "i32") + size, f"`{name}`"]
                 for kind, name, size in fields], msg=structure)

    def test_capacities(self):
        capacities = dict(re.findall(r"constexpr std::int32_t (Max\w+) = (\d+);", self.HEADER))
        sizes = dict(re.findall(r"sizeof\((\w+)\) == (\d+)\)", self.HEADER))
        rows = [row for row in rows_of(self.PAGE) if row[0].startswith("`tag")]
        self.assertEqual(len(rows), len(capacities))
        for outer, element, capacity, size in rows:
            inner, inner_size = re.fullmatch(r"`(\w+)`, (\d+) bytes", element).groups()
            name = re.search(rf"{inner} \w+\[(\w+)\];", self.HEADER)[1]
            count = capacity.split(",")[0]
            whole = str(4 + int(count) * int(inner_size))
            self.assertEqual(
                (inner_size, count, size),
                (sizes[inner], capacities[name], sizes.get(outer.strip("`"), whole)), msg=outer)


class Links(unittest.TestCase):
    def test_every_link_leads_to_a_page_and_a_heading(self):
        found = 0
        for document in DOCUMENTS:
            for target in re.findall(r"\]\(([^)]+)\)", document.read_text(encoding="utf-8")):
                found += 1
                name, _, heading = target.partition("#")
                path = document.parent / name if name else document
                self.assertTrue(path.is_file(), msg=f"{document.name}: {target}")
                if heading:
                    text = path.read_text(encoding="utf-8")
                    headings = [re.sub(r"[^\w -]", "", line).strip().lower().replace(" ", "-")
                                for line in re.findall(r"^#+ (.*)$", text, re.M)]
                    self.assertIn(heading, headings, msg=f"{document.name}: {target}")
        self.assertGreater(found, 5)


if __name__ == "__main__":
    unittest.main()
