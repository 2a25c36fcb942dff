"""Does what docs/adding-a-record.md says, with its own lines, and runs its program."""

import argparse
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from snippets import snippets_of

ROOT = Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs" / "adding-a-record.md"
CLASS = "WiperParam"


class AddingARecord(unittest.TestCase):
    compiler = "c++"
    flags: list[str] = []
    libraries: list[str] = []

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = Path(directory.name)
        self.schema, self.out = self.place / "schema", self.place / "out"
        shutil.copytree(ROOT / "schema", self.schema)
        blocks = snippets_of(DOCUMENT)
        self.record, self.domain, self.command = (
            block.text for block in blocks if block.language == "schema")
        self.refusal = next(block.output for block in blocks if block.text == "./dev build\n")
        self.program = next(block for block in blocks if block.language == "cpp")

    def append(self, name, text):
        path = self.schema / name
        path.write_text(path.read_text() + "\n" + text)

    def run_codegen(self, *arguments):
        return subprocess.run(
            [sys.executable, "-B", ROOT / "codegen" / "fleetkit_codegen.py",
             "--schema", self.schema, *arguments],
            capture_output=True, text=True, check=False)

    def generate(self):
        self.append("image.schema", self.record)
        self.append("domains.schema", self.domain)
        self.append("commands.schema", self.command)
        done = self.run_codegen("--out", self.out)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_a_mistake_is_told_with_its_place(self):
        lines = (self.schema / "image.schema").read_text().count("\n") + 1
        wrong = self.record.replace("Interval    int ", "Interval    integer ")
        self.append("image.schema", wrong)
        done = self.run_codegen("--out", self.out)
        line = lines + 1 + wrong[:wrong.index("integer")].count("\n")
        expected = re.sub(r":\d+:", f":{line}:", self.refusal)
        self.assertEqual((done.returncode, done.stderr), (1, expected))

    def test_everything_appears_where_the_document_says(self):
        self.generate()
        table = [line.split("`")[1] for line in DOCUMENT.read_text().splitlines()
                 if line.startswith(("| `domain", "| `fleetctl"))]
        self.assertEqual(len(table), 5)
        for name in table:
            self.assertIn(CLASS, (self.out / name).read_text(), msg=name)
        done = self.run_codegen("--reference", self.place / "reference")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn(f'<article id="{CLASS}">', (self.place / "reference/image.html").read_text())
        self.assertIn('<tr id="c61001">', (self.place / "reference/commands.html").read_text())

    def test_the_program_prints_what_the_document_says(self):
        self.generate()
        sources = [self.out / "domain/ImageRecords.cpp", self.out / "domain/DomainTables.cpp",
                   self.place / "main.cpp"]
        sources[-1].write_text(self.program.text)
        objects = [source.with_suffix(".o") for source in sources]
        compilers = [subprocess.Popen(
            [self.compiler, "-std=c++20", "-fPIC", *self.flags, "-I", ROOT / "src",
             "-I", self.out, "-c", source, "-o", target])
            for source, target in zip(sources, objects)]
        self.assertEqual([compiler.wait() for compiler in compilers], [0] * len(sources))
        # What the document's lines have changed comes before the same of the library.
        subprocess.run([self.compiler, *self.flags, *objects, *self.libraries, "-pthread", "-ldl",
                        "-o", self.place / "program"], check=True)
        done = subprocess.run([self.place / "program"], stdout=subprocess.PIPE, text=True,
                              check=True)
        self.assertEqual(done.stdout, self.program.output)


def main():
    parser = argparse.ArgumentParser(description="Follows docs/adding-a-record.md.")
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flag", action="append", default=[], help="a flag for the compiler")
    parser.add_argument("--link", action="append", default=[], help="a library, in link order")
    arguments = parser.parse_args()
    AddingARecord.compiler, AddingARecord.flags = arguments.compiler, arguments.flag
    AddingARecord.libraries = arguments.link
    unittest.main(argv=[sys.argv[0]])


if __name__ == "__main__":
    main()
