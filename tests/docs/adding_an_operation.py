"""Does what docs/adding-an-operation.md says, and asks a virtual device by the new name."""

import os
import shutil
import subprocess
from pathlib import Path

from harness import PORT, ROOT, Device, PageCase, run, snippets_of

DOCUMENT = ROOT / "docs" / "adding-an-operation.md"
MOST_FILES, MOST_LINES = 3, 10


class AddingAnOperation(PageCase):
    def setUp(self):
        super().setUp()
        self.out, self.include = self.place / "out", self.place / "include"
        blocks = snippets_of(DOCUMENT)
        self.changes = [block.text for block in blocks if block.language == "diff"]
        self.run_shown = next(block for block in blocks if block.language == "sh")

    def change(self):
        for part in ("schema", "src/device", "apps/virtual-device/factory"):
            shutil.copytree(ROOT / part, self.place / part)
        subprocess.run(["git", "apply", "--unidiff-zero", "-"], cwd=self.place, check=True,
                       text=True, input="".join(self.changes))
        self.assertEqual(self.generate("--out", self.out), (0, ""))

    def stage(self, *headers):
        """As the build does with the public headers that are new or changed."""
        names = self.place / "headers.txt"
        names.write_text("".join(f"{source}|{name}\n" for source, name in headers))
        subprocess.run(
            ["cmake", f"-DHEADERS={names}", f"-DOUT={self.include}",
             f"-DSTAMP={self.place / 'stamp'}", "-P", ROOT / "cmake" / "StageHeaders.cmake"],
            check=True)

    def factory_source(self):
        texts = "".join(
            f'        {{"{path.stem}", R"xml({path.read_text()})xml"}},\n'
            for path in (self.place / "apps/virtual-device/factory").glob("*.xml"))
        frame = (ROOT / "apps/virtual-device/FactoryText.cpp.in").read_text()
        source = self.out / "FactoryText.cpp"
        source.write_text(frame.replace("@factory_texts@", texts))
        return source

    def build(self, name, sources, linked):
        includes = [self.place / "src", ROOT / "src", ROOT / "apps", ROOT / "apps/fleetctl",
                    self.out, self.include, self.arguments.include]
        program = self.place / name
        # What the lines have changed comes before the same of the libraries.
        subprocess.run(
            [self.arguments.compiler, "-std=c++20", "-fPIC", *self.arguments.flag,
             *(f"-I{path}" for path in includes), *sources, *linked, "-pthread", "-ldl",
             "-o", program], check=True)
        return program

    def test_it_is_as_small_as_it_says(self):
        lines = [line for change in self.changes for line in change.splitlines()]
        self.assertLessEqual(sum(line.startswith("+++") for line in lines), MOST_FILES)
        self.assertLessEqual(sum(line.startswith("+") and not line.startswith("+++")
                                 for line in lines), MOST_LINES)

    def test_the_new_name_gets_the_record(self):
        self.change()
        self.assertIn("getDDNSParam", (self.out / "tests/PlainFunctions.h").read_text())
        self.stage((self.place / "src/device/FleetKit.h", "FleetKit.h"),
                   (self.out / "domain/DDNSParam.h", "domain/DDNSParam.h"))
        table = self.out / "protocol/CommandTable.cpp"
        fleetctl = self.build(
            "fleetctl",
            [self.out / "fleetctl/CallTables.cpp", self.out / "device/FacadeFunctions.cpp", table],
            [*self.arguments.fleetctl_part, *self.arguments.link])
        parts = [part for part in self.arguments.device_part
                 if Path(part).name != "FactoryText.cpp.o"]
        virtual_device = self.build("virtual-device", [self.factory_source(), table],
                                    [*parts, *self.arguments.link])
        with Device(virtual_device) as device:
            command = self.run_shown.text.replace(PORT, device.port).split()
            done = subprocess.run([fleetctl, *command[1:]], check=True, text=True,
                                  stdout=subprocess.PIPE,
                                  env=dict(os.environ, FLEETCTL_PASSWORD="secret"))
        self.assertEqual(done.stdout.replace(device.port, PORT), self.run_shown.output)


if __name__ == "__main__":
    run(AddingAnOperation, ["compiler", "include"],
        ["flag", "fleetctl-part", "device-part", "link"])
