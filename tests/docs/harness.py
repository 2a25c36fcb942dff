"""What the tests of the documentation share: pages and a virtual device."""

import re
import subprocess
from dataclasses import dataclass
from typing import Optional

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.M | re.S)
PORT = "31000"  # that of a device in the documentation
ACCOUNT = ["--user", "admin", "--password", "secret", "--port", PORT]
SECONDS = 60


@dataclass
class Snippet:
    language: str
    text: str
    place: str  # document and line
    output: Optional[str] = None  # what the document says that it prints


def snippets_of(path):
    """The fenced blocks of a document; an `output` block belongs to the block before it."""
    document = path.read_text(encoding="utf-8")
    result: list[Snippet] = []
    for match in FENCE.finditer(document):
        line = document.count("\n", 0, match.start()) + 1
        if match[1] == "output":
            result[-1].output = match[2]
        else:
            result.append(Snippet(match[1], match[2], f"{path.name}:{line}"))
    return result


class Device:
    """A virtual device as the documentation has it, at a port of its own."""

    def __init__(self, program, *options):
        told = options if "--port" in options else [*ACCOUNT, *options]
        free = ["0" if option == PORT else option for option in told]
        self.process = subprocess.Popen(
            [program, *free, "--seconds", str(SECONDS)], stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        match = re.fullmatch(r"listening on 127\.0\.0\.1:(\d+)\n", line)
        if not match:
            raise RuntimeError(f"the virtual device said {line!r}")
        self.port = match[1]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.communicate(timeout=SECONDS)
