"""Writes the manual page of a program from the program's own help.

usage: manual_page.py PROGRAM VERSION PAGE.gz

The page has what `PROGRAM --help` prints, the help of its verbs, the texts of its topics, and what
`--list-...` options print.
"""

import gzip
import re
import subprocess
import sys
from pathlib import Path

# "  --name VALUE   what it does": two blanks, what is listed, two blanks or more, its meaning.
ENTRY = re.compile(r"  (\S.*?)(?:\s{2,}(\S.*))?$")
Section = tuple[str, list[str]]  # its title and its lines


def escape(text: str) -> str:
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("`", "\\(ga").replace("'", "\\(aq")
    return "\\&" + text if text.startswith(".") else text


def split_help(text: str) -> tuple[list[str], str, list[Section]]:
    """The paragraphs before the usage line, the usage, and the sections as (title, lines)."""
    lead, usage = [], ""
    sections: list[Section] = []
    for line in text.rstrip().splitlines():
        if line.startswith("Usage:"):
            usage = line.removeprefix("Usage:").strip()
        elif line.endswith(":") and not line.startswith(" ") and usage:
            sections.append((line[:-1], []))
        elif sections:
            sections[-1][1].append(line)
        elif not usage:
            lead.append(line)
    return lead, usage, sections


def prose(lines: list[str]) -> str:
    """Paragraphs; indented lines keep their form."""
    out, verbatim = [], False
    for line in lines:
        indented = line.startswith("  ")
        if line.strip() and indented != verbatim:
            out.append(".RS\n.nf" if indented else ".fi\n.RE")
            verbatim = indented
        out.append(escape(line.strip() if not indented else line[2:]) if line.strip() else ".PP")
    if verbatim:
        out.append(".fi\n.RE")
    while out and out[-1] == ".PP":
        out.pop()
    return "\n".join(out) + "\n"


def entries(lines: list[str]) -> str:
    """A list of options or names as tagged paragraphs."""
    out = []
    for line in lines:
        entry = ENTRY.match(line) if not line.startswith("   ") else None
        if entry:
            out.append(".TP\n.B " + escape(entry[1]))
            if entry[2]:
                out.append(escape(entry[2]))
        elif line.strip():
            out.append(escape(line.strip()))
    return "\n".join(out) + "\n"


def names(lines: list[str]) -> list[str]:
    return [entry[1].split()[0] for entry in map(ENTRY.match, lines)
            if entry and not entry[0].startswith("   ")]


class Program:
    def __init__(self, path: str) -> None:
        self.path = path
        self.name = Path(path).name

    def run(self, *arguments: str) -> str:
        return subprocess.run([self.name, *arguments], executable=self.path, check=True, text=True,
                              stdout=subprocess.PIPE, timeout=60).stdout


def verb_sections(program: Program, verbs: list[str]) -> str:
    out = ".SH VERBS\n"
    for verb in verbs:
        lead, usage, sections = split_help(program.run(verb, "--help"))
        out += f".SS {escape(usage)}\n" + prose(lead)
        for title, lines in sections:
            lines = [line for line in lines if not line.startswith("  -h,--help")]
            if title != "Topics" and entries(lines).strip():
                out += f".PP\n{escape(title)}:\n" + entries(lines)
    return out


def topic_sections(program: Program, lines: list[str]) -> str:
    out = ""
    for topic in names(lines):
        title = topic.replace("-", " ").upper()
        out += f".SH {title}\n" + prose(program.run("help", topic).splitlines())
    return out


def page(program: Program, version: str) -> str:
    text = program.run("--help")
    lead, usage, sections = split_help(text)
    summary = " ".join(lead).split(":")[0].split(".")[0]
    out = (f'.TH {escape(program.name.upper())} 1 "" "FleetKit {version}" "User Commands"\n'
           f".SH NAME\n{program.name} \\- {summary[0].lower()}{summary[1:]}\n"
           f".SH SYNOPSIS\n.B {escape(usage)}\n.SH DESCRIPTION\n" + prose(lead))
    for title, lines in sections:
        if title == "Subcommands":
            out += verb_sections(program, names(lines))
        elif title == "Topics":
            out += topic_sections(program, lines)
        else:
            out += f".SH {title.upper()}\n" + entries(lines)
    for option in re.findall(r"--list-[a-z]+", text):
        title = option.removeprefix("--list-").upper()
        lines = ["  " + line for line in program.run(option).splitlines()]
        out += f".SH {title}\n" + entries(lines)
    return out


def main() -> None:
    path, version, target = sys.argv[1:]
    Path(target).parent.mkdir(parents=True, exist_ok=True)
    # A fixed time makes the same page from the same help.
    with open(target, "wb") as file, gzip.GzipFile("", "wb", 9, file, mtime=0) as packed:
        packed.write(page(Program(path), version).encode())


if __name__ == "__main__":
    main()
