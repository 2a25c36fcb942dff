"""The fenced blocks of a Markdown document."""

import re
from dataclasses import dataclass

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.M | re.S)


@dataclass
class Snippet:
    language: str
    text: str
    place: str  # document and line
    output: str | None = None  # what the document says that it prints


def snippets_of(path):
    """The blocks of a document; an `output` block belongs to the block before it."""
    document = path.read_text(encoding="utf-8")
    result: list[Snippet] = []
    for match in FENCE.finditer(document):
        line = document.count("\n", 0, match.start()) + 1
        if match[1] == "output":
            result[-1].output = match[2]
        else:
            result.append(Snippet(match[1], match[2], f"{path.name}:{line}"))
    return result
