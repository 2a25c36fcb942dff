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
        if snippet.language == "cmake":
            self.saved["CMakeLists.txt"] = snippet.text
        elif snippet.language == "cpp" and program_of(snippet.text) == snippet.text:
            self.saved["first.cpp"] = snippet.text

    def is_run(self, snippet):
        return snippet.language == "cpp" or snippet.language == "sh" and (
            "fleetctl" in snippet.text
            or not self.arguments.build_tree and "first" in snippet.text)

    def run_cpp(self, snippet, directory):
        kind = ["--kind", "nvr"] if "recorder" in snippet.text else []
        with Device(self.arguments.virtual_device, *kind) as device:
            source, program = directory / "example.cpp", directory / "example"
            source.write_text(program_of(snippet.text).replace(PORT, device.port))
            subprocess.run(
                [self.arguments.compiler, "-std=c++17", "-fPIC", "-Wall", "-Wextra", "-Werror",
                 *self.arguments.flag, *(f"-I{path}" for path in self.arguments.include),
                 source, "-o", program, *self.arguments.link, "-pthread"], check=True)
            return self.output_of([program], directory, device.port)

    def run_sh(self, snippet, directory):
        lines = snippet.text.splitlines(keepends=True)
        starts = [line for line in lines if line.startswith("virtual-device ")]
        options = starts[0].rstrip(" &\n").split()[1:] if starts else []
        script = "set -e\n" + "".join(line for line in lines if line not in starts)
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

    def problem(self, snippet):
        """What the example does otherwise than it says."""
        with tempfile.TemporaryDirectory() as directory:
            run = self.run_cpp if snippet.language == "cpp" else self.run_sh
            try:
                output = run(snippet, Path(directory))
            except (subprocess.SubprocessError, RuntimeError) as error:
                return str(error)
        if snippet.output in (None, output):
            return ""
        return f"printed\n{output}instead of\n{snippet.output}"


def main():
    parser = argparse.ArgumentParser(description="Runs the examples of the documentation.")
    for name in ("compiler", "fleetctl", "virtual-device"):
        parser.add_argument("--" + name, required=True)
    for name in ("include", "flag", "link"):
        parser.add_argument("--" + name, action="append", default=[])
    parser.add_argument("--build-tree", help="directory of a library that is not installed")
    parser.add_argument("documents", nargs="+", type=Path)
    arguments = parser.parse_args()
    examples, problems = Examples(arguments), {}
    for document in arguments.documents:
        for snippet in snippets_of(document) if document.name not in INSIDE else []:
            examples.save(snippet)
            if examples.is_run(snippet):
                problems[snippet.place] = examples.problem(snippet)
    failed = [f"{place}: {problem}\n" for place, problem in problems.items() if problem]
    print(f"{len(problems)} examples run, {len(failed)} failed\n{''.join(failed)}")
    return 1 if failed or not problems else 0


if __name__ == "__main__":
    sys.exit(main())
