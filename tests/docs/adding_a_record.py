"""Does what docs/adding-a-record.md says, with its own lines, and runs its program."""

import re
import shutil
import subprocess

from harness import ROOT, PageCase, run, snippets_of

DOCUMENT = ROOT / "docs" / "adding-a-record.md"
CLASS = "WiperParam"


class AddingARecord(PageCase):
    def setUp(self):
        super().setUp()
        self.schema, self.out = self.place / "schema", self.place / "out"
        shutil.copytree(ROOT / "schema", self.schema)
        blocks = snippets_of(DOCUMENT)
        self.record, self.domain, self.command = (
            block.text for block in blocks if block.language == "schema")
        self.refusal = next(block.output for block in blocks if block.text == "./dev build\n")
        self.program = next(block for block in blocks if block.language == "cpp")

    def insert(self, name, text):
        """Puts lines where their id belongs; gives the number of lines in front of them."""
        path = self.schema / name
        keyword, number = re.search(r"^(\w+) \D*(\d+)", text, re.M).groups()
        held = path.read_text() + "\n"
        above = [match.start() for match in re.finditer(rf"^{keyword} \D*(\d+)", held, re.M)
                 if int(match[1]) > int(number)]
        at = min(above, default=len(held))
        path.write_text(held[:at] + text + "\n" + held[at:])
        return held[:at].count("\n")

    def add(self):
        self.insert("image.schema", self.record)
        self.insert("domains.schema", self.domain)
        self.insert("commands.schema", self.command)
        self.assertEqual(self.generate("--out", self.out), (0, ""))

    def test_a_mistake_is_told_with_its_place(self):
        wrong = self.record.replace("Interval    int ", "Interval    integer ")
        line = 1 + self.insert("image.schema", wrong) + wrong[:wrong.index("integer")].count("\n")
        expected = re.sub(r":\d+:", f":{line}:", self.refusal)
        self.assertEqual(self.generate("--out", self.out), (1, expected))

    def test_everything_appears_where_the_document_says(self):
        self.add()
        table = [line.split("`")[1] for line in DOCUMENT.read_text().splitlines()
                 if line.startswith(("| `domain", "| `fleetctl"))]
        self.assertEqual(len(table), 5)
        for name in table:
            self.assertIn(CLASS, (self.out / name).read_text(), msg=name)
        self.assertEqual(self.generate("--reference", self.place / "reference"), (0, ""))
        self.assertIn(f'<article id="{CLASS}">', (self.place / "reference/image.html").read_text())
        self.assertIn('<tr id="c61001">', (self.place / "reference/commands.html").read_text())

    def test_the_program_prints_what_the_document_says(self):
        self.add()
        sources = [self.out / "domain/ImageRecords.cpp", self.out / "domain/DomainTables.cpp",
                   self.place / "main.cpp"]
        sources[-1].write_text(self.program.text)
        objects = [source.with_suffix(".o") for source in sources]
        compile_one = [self.arguments.compiler, "-std=c++20", "-fPIC", *self.arguments.flag,
                       "-I", ROOT / "src", "-I", self.out, "-c"]
        compilers = [subprocess.Popen([*compile_one, source, "-o", target])
                     for source, target in zip(sources, objects)]
        self.assertEqual([compiler.wait() for compiler in compilers], [0] * len(sources))
        # What the document's lines have changed comes before the same of the library.
        subprocess.run(
            [self.arguments.compiler, *self.arguments.flag, *objects, *self.arguments.link,
             "-pthread", "-ldl", "-o", self.place / "program"], check=True)
        done = subprocess.run([self.place / "program"], stdout=subprocess.PIPE, text=True,
                              check=True)
        self.assertEqual(done.stdout, self.program.output)


if __name__ == "__main__":
    run(AddingARecord, ["compiler"], ["flag", "link"])
