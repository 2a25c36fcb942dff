"""Hands a header to Doxygen, with its plain comments as documentation.

    doxygen_filter.py FILE

The comments of the headers are written for those who read the headers. Here `//` becomes `///`, a
comment behind a member `///<`, the comment that opens a file the file's own, and `// ---- Title`
the heading of a group of members.
"""

import re
import sys
from collections.abc import Iterator
from pathlib import Path

HEADING = re.compile(r"^(\s*)// ---- (.*)$")
COMMENT = re.compile(r"^(\s*)//(?!/)( ?.*)$")
TRAILING = re.compile(r"^(\s*[^\s/].*[;,{]\s*)//(?!/) ?(.*)$")


def documented(lines: list[str]) -> Iterator[str]:
    in_group = opens_group = False
    yield "/// @file"
    for line in lines:
        heading, comment = HEADING.match(line), COMMENT.match(line)
        if heading:
            if in_group:
                yield heading[1] + "/// @}"
            yield f"{heading[1]}/// @name {heading[2]}"
            in_group, opens_group = True, True
        elif comment:
            yield f"{comment[1]}///{comment[2]}"
        else:
            if opens_group:
                yield "    /// @{"
                opens_group = False
            if in_group and line == "};":
                yield "    /// @}"
                in_group = False
            trailing = TRAILING.match(line)
            yield f"{trailing[1]}///< {trailing[2]}" if trailing else line


def main() -> None:
    path = Path(sys.argv[1])
    lines = path.read_text(encoding="utf-8").splitlines()
    print("\n".join(documented(lines)))


if __name__ == "__main__":
    main()
