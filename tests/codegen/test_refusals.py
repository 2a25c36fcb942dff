"""Every schema that does not hold together is refused with file, line and reason.

Each file of cases/refused tells one rule. A line with "#!" behind it is wrong: it is tried without
the other wrong lines, and what follows the mark is the reason, "#!5" that of line 5. Without any of
them the file holds together.
"""

import re
import unittest

from support import CASES, SchemaCase

import check
import schema

WRONG = re.compile(r"(.*?) *#!(\d*) (.*)")


class Refusals(SchemaCase):
    def read(self):
        check.check_schema(schema.read_schema(self.schema))

    def assert_refused(self, place, reason, msg=None):
        with self.assertRaises(schema.SchemaError, msg=msg) as caught:
            self.read()
        self.assertEqual(str(caught.exception), f"{place}: {reason}", msg=msg)

    def test_each_rule(self):
        paths = sorted((CASES / "refused").glob("*.schema"))
        self.assertTrue(paths)
        for path in paths:
            lines = path.read_text(encoding="utf-8").splitlines()
            wrong = {number: WRONG.fullmatch(line) for number, line in enumerate(lines, 1)
                     if "#!" in line}
            self.assertTrue(wrong, msg=path.name)
            held = [("" if number in wrong else line) for number, line in enumerate(lines, 1)]
            self.write("\n".join(held))
            self.read()
            for number, (text, at, reason) in ((n, m.groups()) for n, m in wrong.items()):
                self.write("\n".join(held[:number - 1] + [text] + held[number:]))
                self.assert_refused(f"made.schema:{at or number}",
                                    reason.replace("{file}", "made.schema"),
                                    msg=f"{path.name}:{number}")

    def test_a_line_that_is_not_utf8(self):
        self.write(b"record Made 1\n    # caf\xe9")
        self.assert_refused("made.schema:2", "not UTF-8")

    def test_ids_are_unique_across_files(self):
        self.write("record Made 1")
        self.write("record Twin 1", "other.schema")
        self.assertEqual(
            self.generate(),
            (1, "schema error: other.schema:1: id 1 stands already at made.schema:1\n"))
        self.assertFalse(self.out.exists())

    def test_a_directory_without_a_schema(self):
        self.assertEqual(self.generate(), (1, f"schema error: {self.schema}: no schema files\n"))


if __name__ == "__main__":
    unittest.main()
