"""Does what pages of the documentation say, with their own lines, and compares the outcome.

usage: test_pages.py --compiler=... --virtual-device=... and what is linked; see CMakeLists.txt
"""

import argparse
import os
import re
import shutil
import socket
import subprocess
import sys
import unittest
from html import unescape
from pathlib import Path

from harness import PORT, Device, snippets_of

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "codegen"))

from support import ROOT, SchemaCase

DOCS = ROOT / "docs"
ARGUMENTS = argparse.Namespace()
REPEATED = ("flag", "include", "link", "fleetctl-part", "device-part")
# That of docs/adding-an-operation.md is to stay as small as it says.
MOST_FILES, MOST_LINES = 3, 10


class AddingCase(SchemaCase):
    def build(self, name, sources, linked, *includes):
        program = self.place / name
        paths = [*includes, ROOT / "src", self.out, *ARGUMENTS.include]
        # What the page's lines have changed comes before the same of the libraries.
        subprocess.run(
            [ARGUMENTS.compiler, "-std=c++20", "-fPIC", *ARGUMENTS.flag,
             *(f"-I{path}" for path in paths), *sources, *linked, *ARGUMENTS.link,
             "-pthread", "-ldl", "-lfmt", "-o", program], check=True)
        return program

    def output_of(self, *command):
        return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE,
                              env=dict(os.environ, FLEETCTL_PASSWORD="secret")).stdout


class AddingARecord(AddingCase):
    PAGE = DOCS / "adding-a-record.md"

    def setUp(self):
        super().setUp()
        shutil.copytree(ROOT / "schema", self.schema, dirs_exist_ok=True)
        blocks = snippets_of(self.PAGE)
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

    def test_a_mistake_is_told_with_its_place(self):
        wrong = self.record.replace("Interval    int ", "Interval    integer ")
        line = 1 + self.insert("image.schema", wrong) + wrong[:wrong.index("integer")].count("\n")
        self.assertEqual(self.generate(), (1, re.sub(r":\d+:", f":{line}:", self.refusal)))

    def test_all_appears_where_the_page_says_and_the_program_prints_it(self):
        self.insert("image.schema", self.record)
        self.insert("domains.schema", self.domain)
        self.insert("commands.schema", self.command)
        reference = self.place / "reference"
        self.assertEqual(self.generate(), (0, ""))
        self.assertEqual(self.generate("--reference", reference), (0, ""))
        table = [line.split("`")[1] for line in self.PAGE.read_text().splitlines()
                 if line.startswith(("| `domain", "| `fleetctl"))]
        self.assertEqual(len(table), 5)
        for name in table:
            self.assertIn("WiperParam", (self.out / name).read_text(), msg=name)
        self.assertIn('<article id="WiperParam">', (reference / "image.html").read_text())
        self.assertIn('<tr id="c61001">', (reference / "commands.html").read_text())

        main = self.place / "main.cpp"
        main.write_text(self.program.text)
        sources = [self.out / "domain/ImageRecords.cpp", self.out / "domain/DomainTables.cpp"]
        self.assertEqual(self.output_of(self.build("program", [*sources, main], [])),
                         self.program.output)


class AddingAnOperation(AddingCase):
    def change(self):
        """Makes the changes of the page, which says how small they are."""
        blocks = snippets_of(DOCS / "adding-an-operation.md")
        changes = "".join(block.text for block in blocks if block.language == "diff")
        self.assertLessEqual(len(re.findall(r"^\+\+\+", changes, re.M)), MOST_FILES)
        self.assertLessEqual(len(re.findall(r"^\+(?!\+\+)", changes, re.M)), MOST_LINES)
        for part in ("schema", "src/device", "apps/virtual-device/factory"):
            shutil.copytree(ROOT / part, self.place / part, dirs_exist_ok=True)
        subprocess.run(["git", "apply", "--unidiff-zero", "-"], cwd=self.place, check=True,
                       text=True, input=changes)
        self.assertEqual(self.generate(), (0, ""))
        return next(block for block in blocks if block.language == "sh")

    def stage(self, *headers):
        """As the build does with the public headers that are new or changed."""
        names, include = self.place / "headers.txt", self.place / "include"
        names.write_text("".join(f"{source}|{name}\n" for source, name in headers))
        subprocess.run(
            ["cmake", f"-DHEADERS={names}", f"-DOUT={include}", f"-DSTAMP={self.place / 'stamp'}",
             "-P", ROOT / "cmake" / "StageHeaders.cmake"], check=True)
        return include

    def factory_source(self):
        texts = "".join(
            f'        {{"{path.stem}", R"xml({path.read_text()})xml"}},\n'
            for path in (self.place / "apps/virtual-device/factory").glob("*.xml"))
        frame = (ROOT / "apps/virtual-device/FactoryText.cpp.in").read_text()
        source = self.out / "FactoryText.cpp"
        source.write_text(frame.replace("@factory_texts@", texts))
        return source

    def test_the_new_name_gets_the_record(self):
        shown = self.change()
        self.assertIn("getDDNSParam", (self.out / "tests/PlainFunctions.h").read_text())
        include = self.stage((self.place / "src/device/FleetKit.h", "FleetKit.h"),
                             (self.out / "domain/DDNSParam.h", "domain/DDNSParam.h"))
        includes = [self.place / "src", include, ROOT / "apps", ROOT / "apps/fleetctl"]
        table = self.out / "protocol/CommandTable.cpp"
        functions = [self.out / "fleetctl/CallTables.cpp", self.out / "device/FacadeFunctions.cpp"]
        parts = [part for part in ARGUMENTS.device_part if Path(part).name != "FactoryText.cpp.o"]
        fleetctl = self.build("fleetctl", [*functions, table], ARGUMENTS.fleetctl_part, *includes)
        device_program = self.build("virtual-device", [self.factory_source(), table], parts,
                                    *includes)
        with Device(device_program) as device:
            command = shown.text.replace(PORT, device.port).split()
            printed = self.output_of(fleetctl, *command[1:])
        self.assertEqual(printed.replace(device.port, PORT), shown.output)


def message(head, body):
    """The bytes of a head, written in hexadecimal, and of a body as the page shows it."""
    return bytes.fromhex(head) + body.replace("?>\n", "?>\r\n", 1).encode()


def messages_of_page():
    blocks = [block for block in snippets_of(DOCS / "wire-format.md")
              if block.language in ("hex", "xml")]
    return [message(head.text, body.text) for head, body in zip(blocks[::2], blocks[1::2])]


def message_of_picture():
    picture = (DOCS / "pictures/command.svg").read_text(encoding="utf-8")
    head = " ".join(re.findall(r'class="code middle">(\w\w)<', picture))
    lines = re.findall(r'class="code"[^>]*>(.*?)</text>', picture)
    return message(head, unescape("\n".join(lines) + "\n").replace("    ", "\t"))


class WireFormat(unittest.TestCase):
    def test_a_device_takes_and_gives_the_bytes_of_page_and_picture(self):
        login, welcome, get, value, keep_alive, acknowledgement = messages_of_page()
        with Device(ARGUMENTS.virtual_device) as device, \
                socket.create_connection(("127.0.0.1", int(device.port)), 30) as connection, \
                connection.makefile("rb") as answers:

            def ask(request):
                connection.sendall(request)
                head = answers.read(24)
                return head + answers.read(int.from_bytes(head[16:20], "big"))

            self.assertEqual(ask(login), welcome)
            self.assertEqual(ask(get), value)
            answer = ask(message_of_picture())
            self.assertEqual(answer[4:12], bytes.fromhex("00 02 00 00 00 00 27 10"))
            self.assertIn(b'<Result Code="0" />', answer)
            self.assertIn(b'NTPIp="192.0.2.1"', ask(get))
            self.assertEqual(ask(keep_alive), acknowledgement)


if __name__ == "__main__":
    PARSER = argparse.ArgumentParser()
    for option in ("compiler", "virtual-device"):
        PARSER.add_argument("--" + option, required=True)
    for option in REPEATED:
        PARSER.add_argument("--" + option, action="append", default=[])
    ARGUMENTS, REST = PARSER.parse_known_args()
    unittest.main(argv=[sys.argv[0], *REST])
