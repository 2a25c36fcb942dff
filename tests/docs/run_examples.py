"""Compiles and runs the examples of README and documentation against a virtual device.

A `cpp` block without a `main` is a part of a program that has logged in; one with a `main` stands
for itself. Of the `sh` blocks those that call fleetctl are run and, where the library is installed,
those that build the program above them. Each block has a device of its own, whose port takes the
place of 31000, and has to end with 0. An `output` block behind it has to be printed.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

from harness import PORT, SECONDS, Device, snippets_of

# These programs use the library from inside; another test builds them.
INSIDE = {"adding-a-record.md", "adding-an-operation.md"}

FRAME = """\
#include <cstdio>
#include <cstring>
#include <fleetkit/FleetKit.h>
#include <fleetkit/Product/Technic/InetAddr.h>
#include <fleetkit/domain/DeviceInfoEx.h>
{includes}
int main() {{
    InetAddr address;
    address.setIP("127.0.0.1");
    address.setPORT(31000);
    address.setIPProtoVer(1);
    DeviceInfoEx device;
    device.setDeviceAddr(address);
    device.setUserID("admin");
    device.setPassword("secret");
    long session = 0;
    if (FleetKit::Login(device, session) != fleetkit::ErrorCode::Success) {{
        return 1;
    }}
    {{
{body}    }}
    return FleetKit::Logout(session);
}}
"""


def program_of(text):
    """A whole C++ program for an example."""
    if re.search(r"^int main\(", text, re.M):
        return text
    lines = text.splitlines(keepends=True)
    includes = "".join(line for line in lines if line.startswith("#include"))
    body = "".join(line for line in lines if not line.startswith("#include"))
    return FRAME.format(includes=includes, body=body)


class Examples:
    def __init__(self, arguments):
        self.arguments = arguments
        self.saved = {}  # what a reader of the document has saved so far, by file

    def save(self, snippet):
        if snippet.language == "cpp" and program_of(snippet.text) == snippet.text:
            self.saved["first.cpp"] = snippet.text
        elif snippet.language == "cmake":
            self.saved["CMakeLists.txt"] = snippet.text

    def run_cpp(self, snippet, directory):
        source, program = directory / "example.cpp", directory / "example"
        kind = ["--kind", "nvr"] if "recorder" in snippet.text else []
        with Device(self.arguments.virtual_device, *kind) as device:
            source.write_text(program_of(snippet.text).replace(PORT, device.port))
            command = [
                self.arguments.compiler, "-std=c++17", "-fPIC", "-Wall", "-Wextra", "-Werror",
                *self.arguments.flag,
                *(f"-I{path}" for path in self.arguments.include.split(":") if path),
                source, "-o", program, *self.arguments.link, "-pthread"]
            subprocess.run(command, check=True)
            return self.output_of([program], directory, device.port)

    def run_shell(self, snippet, directory):
        script, options = "set -e\n", []
        for line in snippet.text.splitlines(keepends=True):
            if line.startswith("virtual-device "):
                options = line.rstrip(" &\n").split()[1:]
            else:
                script += line
        with Device(self.arguments.virtual_device, *options) as device:
            for name, text in self.saved.items():
                (directory / name).write_text(text.replace(PORT, device.port))
            return self.output_of(["bash", "-c", script.replace(PORT, device.port)], directory,
                                  device.port)

    def output_of(self, command, directory, port):
        path = Path(self.arguments.fleetctl).parent
        environment = dict(os.environ, PATH=f"{path}:{os.environ['PATH']}")
        if self.arguments.build_tree:
            environment["LD_LIBRARY_PATH"] = self.arguments.build_tree
        done = subprocess.run(command, cwd=directory, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, text=True, timeout=SECONDS, check=True)
        return done.stdout.replace(port, PORT)

    def run(self, snippet):
        """Whether the example does what it says; None for one that is not run."""
        self.save(snippet)
        if snippet.language not in ("cpp", "sh"):
            return None
        if snippet.language == "sh" and "fleetctl" not in snippet.text and (
                self.arguments.build_tree or "first" not in snippet.text):
            return None
        with tempfile.TemporaryDirectory() as directory:
            run = self.run_cpp if snippet.language == "cpp" else self.run_shell
            try:
                output = run(snippet, Path(directory))
            except (subprocess.SubprocessError, RuntimeError) as error:
                print(f"{snippet.place}: {error}")
                return False
        if snippet.output is not None and output != snippet.output:
            print(f"{snippet.place}: printed\n{output}instead of\n{snippet.output}")
            return False
        return True


def main():
    parser = argparse.ArgumentParser(description="Runs the examples of the documentation.")
    for name in ("compiler", "fleetctl", "virtual-device"):
        parser.add_argument("--" + name, required=True)
    parser.add_argument("--include", default="", help="directories, with colons between")
    parser.add_argument("--build-tree", help="directory of a library that is not installed")
    parser.add_argument("--flag", action="append", default=[], help="a flag for the compiler")
    parser.add_argument("--link", action="append", default=[], help="for the linker, in order")
    parser.add_argument("documents", nargs="+", type=Path)
    arguments = parser.parse_args()
    examples = Examples(arguments)
    results = []
    for document in arguments.documents:
        if document.name in INSIDE:
            continue
        results += [(snippet.place, examples.run(snippet)) for snippet in snippets_of(document)]
    run = [place for place, result in results if result is not None]
    failed = [place for place, result in results if result is False]
    print(f"{len(run)} examples run, {len(failed)} failed: {' '.join(failed)}")
    return 1 if failed or not run else 0


if __name__ == "__main__":
    sys.exit(main())
