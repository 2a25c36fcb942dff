"""Writes the reference of the wire vocabulary, as pages that a browser opens from a file."""

import json
import re
from collections.abc import Iterator
from html import escape
from pathlib import Path
from typing import Any

from page import page
from schema import ACKNOWLEDGEMENT, Record, Schema, capital
from vocabulary import ACKNOWLEDGING_RECORD, MARK, Vocabulary

ROOT = "../"  # of the documentation, from these pages
# Facts of a command, a column each.
COMMAND_COLUMNS = {"command": "Request", "reply": "Reply", "group": "Group",
                   "operation": "Operation", "carries": "Request carries",
                   "answers": "Reply carries", "sameGroup": "Same group",
                   "sentBy": "Functions"}


def title_of_fact(key: str) -> str:
    """nestedIn is Nested in."""
    return capital(re.sub("[A-Z]", lambda letter: " " + letter[0].lower(), key))


class Reference:
    """The pages."""

    def __init__(self, schema: Schema) -> None:
        self.schema = schema
        self.vocabulary = Vocabulary(schema)

    # Small pieces

    def link(self, name: str) -> str:
        if name.isdigit():
            return f'<a href="commands.html#c{name}">{name}</a>'
        return f'<a href="{self.schema.records[name].family}.html#{name}">{name}</a>'

    def markup(self, fact: str | list[str]) -> str:
        """A fact as the pages show it."""
        if isinstance(fact, list):
            return ", ".join(self.markup(one) for one in fact)
        return MARK.sub(lambda mark: self.link(mark[2]) if mark[2] else f"<code>{mark[1]}</code>",
                        escape(str(fact), quote=False))

    def field_row(self, field: dict[str, Any], has_meanings: bool) -> str:
        words = "".join(f"<code>{escape(line)}</code>" for line in field["printed"])
        extra = "".join(f'<span class="note">{escape(note)}</span>' for note in field["notes"])
        mark = ' class="inherited"' if "inheritedFrom" in field else ""
        meaning = f"<td>{escape(field['meaning'])}</td>" if has_meanings else ""
        return (f"<tr{mark}><td><code>{field['name']}</code>{extra}</td>{meaning}"
                f"<td>{self.markup(field['type'])}</td><td>{escape(field['default'])}</td>"
                f"<td>{escape(field['absent'])}</td><td class=\"words\">{words}</td></tr>\n")

    def field_table(self, record: Record) -> str:
        fields = self.vocabulary.fields(record)
        if not fields:
            return "<p>It has no fields.</p>\n"
        has_meanings = any(field["meaning"] for field in fields)
        rows = [self.field_row(field, has_meanings) for field in fields]
        meaning = "<th>Meaning</th>" if has_meanings else ""
        return (f'<div class="scroll"><table><thead><tr><th>Field</th>{meaning}<th>Type</th>'
                "<th>Default</th><th>When absent</th><th>Printed then</th></tr></thead>\n<tbody>\n"
                + "".join(rows) + "</tbody></table></div>\n")

    # Records

    def facts(self, record: Record) -> str:
        items = "".join(f"<dt>{title_of_fact(key)}</dt><dd>{self.markup(fact)}</dd>\n"
                        for key, fact in self.vocabulary.facts(record).items())
        return f"<dl>\n{items}</dl>\n" if items else ""

    def article(self, record: Record) -> str:
        kind = "element" if record.is_element else "record"
        comment = f"<p>{escape(capital(record.comment))}</p>\n" if record.comment else ""
        absent = ""
        if record.absent:
            absent = f"<p>When it is absent: <code>{escape(record.absent)}</code></p>\n"
        example = escape(self.vocabulary.example(record), quote=False)
        return (f'<article id="{record.name}">\n<h2><a href="#{record.name}">{record.name}</a> '
                f'<span class="kind">{kind}</span></h2>\n{comment}{self.facts(record)}{absent}'
                f"{self.field_table(record)}"
                f"<details><summary>Example</summary><pre>{example}</pre></details>\n</article>\n")

    def records_of(self, family: str) -> list[Record]:
        return [r for r in self.schema.records.values() if r.family == family]

    def family_page(self, family: str) -> str:
        title, lead = title_of(self.schema, family)
        records = self.records_of(family)
        contents = "".join(f'<li><a href="#{r.name}">{r.name}</a></li>\n' for r in records)
        return page(title, f'<h1>{escape(title)}</h1>\n<p class="lead">{escape(lead)}</p>\n'
                    f'<ul class="contents">\n{contents}</ul>\n'
                    + "".join(self.article(record) for record in records), ROOT)

    # Commands

    def command_rows(self) -> Iterator[str]:
        seen = set()
        for command in self.schema.commands:
            anchor = "" if command.request in seen else f' id="c{command.request}"'
            seen.add(command.request)
            facts = self.vocabulary.command_facts(command)
            cells = "".join(f"<td>{self.markup(facts[key])}</td>" for key in COMMAND_COLUMNS)
            yield f"<tr{anchor}>{cells}<td>{escape(command.comment)}</td></tr>\n"

    def commands_page(self) -> str:
        titles = "".join(f"<th>{title}</th>" for title in (*COMMAND_COLUMNS.values(), "Notes"))
        return page("Commands", f"""<h1>Commands</h1>
<p class="lead">The {len(self.schema.commands)} commands of the catalogue, in its order: a look-up
takes the first line that matches.</p>
<p>A command answers with the id under Reply. {ACKNOWLEDGEMENT} is the plain acknowledgement, which
carries a {self.link(ACKNOWLEDGING_RECORD)} and nothing else. Commands of one group work on one
parameter. "other" is a third operation on it, such as reading its default. The records are told
where they are known; a reply holds a {self.link(ACKNOWLEDGING_RECORD)} in front of them. Functions
are those of the class <code>FleetKit</code> that send the command.</p>
<div class="scroll"><table><thead><tr>{titles}</tr></thead>
<tbody>
{"".join(self.command_rows())}</tbody></table></div>
""", ROOT)

    # Index and search

    def index_page(self) -> str:
        records = [r for r in self.schema.records.values() if not r.is_element]
        families = "".join(self.family_item(family) for family in self.families())
        return page("Records and commands", INDEX.format(
            records=len(records), domains=len(self.schema.domains),
            commands=len(self.schema.commands), families=families), ROOT)

    def families(self) -> list[str]:
        names = {record.family for record in self.schema.records.values()}
        return sorted(names, key=lambda family: title_of(self.schema, family)[0])

    def family_item(self, family: str) -> str:
        title, lead = title_of(self.schema, family)
        count = sum(not record.is_element for record in self.records_of(family))
        return (f'<dt><a href="{family}.html">{escape(title)}</a></dt>'
                f"<dd>{escape(lead)} <span class=\"kind\">{count} records</span></dd>\n")

    def search_index(self) -> str:
        entries = []
        for record in self.schema.records.values():
            domain = self.vocabulary.domains.get(record.name)
            words = [domain.name, domain.list_name] if domain else []
            words += [field.name for field in record.fields]
            kind = "element" if record.is_element else f"record {record.id}"
            entries.append([record.name, kind, f"{record.family}.html#{record.name}",
                            " ".join(dict.fromkeys(words))])
        for command in self.schema.commands:
            operation = self.vocabulary.command_facts(command)["operation"]
            kind = f"command, {operation}"
            reply = "" if command.response == ACKNOWLEDGEMENT else str(command.response)
            functions = " ".join(function.name for function in command.functions)
            entries.append([str(command.request), kind, f"commands.html#c{command.request}",
                            f"{reply} {functions} {command.comment}".strip()])
        lines = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries)
        return f"const searchIndex = [\n{lines}\n];\n"

    def pages(self) -> dict[str, str]:
        result = {"index.html": self.index_page(), "commands.html": self.commands_page(),
                  "search-index.js": self.search_index()}
        for family in self.families():
            result[family + ".html"] = self.family_page(family)
        return result


def title_of(schema: Schema, family: str) -> tuple[str, str]:
    """The opening of a schema file: its title, and what it says behind the colon."""
    text = schema.families[family]
    title, colon, lead = text.partition(": ")
    if not colon:
        title, lead = capital(family), text
    return title, lead[:1].upper() + lead[1:]


INDEX = """<h1>Records and commands</h1>
<p class="lead">What devices and this library say to each other: {records} records, {domains} of
which may stand at the top of a command's body, and <a href="commands.html">{commands}
commands</a>.</p>
<h2>Records by family</h2>
<dl>
{families}</dl>
<h2>How to read a record</h2>
<div class="prose">
<p>A record is one XML element. Its fields of plain types are attributes, a nested record is a
child element with the field's name, a list is a child element with one element an entry. Fields are
written in the order of the table, all of them, and read by name, in any order. Attributes and
elements that are not in the table are passed over.</p>
<ul>
<li><b>Element</b> is the tag at the top of a command's body; <b>List</b> the tag of a list there.
<b>List entry</b> is the tag of each entry as it is written; whoever reads a list takes every
child for an entry.</li>
<li><b>Carried by</b> names the commands whose request holds the record, <b>Answers</b> those whose
reply does, where that is known.</li>
<li><b>Meaning</b> is told where it is known and the name does not say it all. "The device's own
number" is one that each device chooses; the library passes it on.</li>
<li><b>Default</b> is what a new record holds, if that is not 0, false or empty.</li>
<li><b>When absent</b> tells what reading does with a field that is not there. "Becomes 0" holds
even if the record had another value before; "stays as it was" keeps that value, in a new record the
default. A refused record is not taken: a nested one leaves its field alone, one in a list makes the
list empty, one at the top of a body makes the whole body unreadable.</li>
<li><b>Printed then</b> are the lines on standard output, word by word, with <code>\\n</code> for
the end of a line. <code>{{tag}}</code> stands for the element, <code>{{parent}}</code> for the one
around it, <code>{{value}}</code> for the value that is kept, <code>{{file}}</code> and
<code>{{line}}</code> for a place in the library's source. Of a list that is there but has a refused
entry, only the second line is printed. When a nested record or a list cannot be written, it is
left out, and <code>createDomainXmlNode NAME failed \\n</code> is printed.</li>
<li>An <b>element</b> is a part of one record that has no id of its own.</li>
<li><b>Base</b> names a record whose fields stand first, on the same element; they are shaded.</li>
<li>In an <b>example</b> each field is filled with a value of its type, or with its default.</li>
</ul>
</div>
"""


def write_reference(schema: Schema, out: str) -> None:
    Path(out).mkdir(parents=True, exist_ok=True)
    for name, text in Reference(schema).pages().items():
        Path(out, name).write_text(text, encoding="utf-8")


def write_examples(schema: Schema, path: str) -> None:
    """An example of each record that may stand in a body: its class name, then the element."""
    vocabulary = Vocabulary(schema)
    text = "".join(f"{name}\n{vocabulary.example(schema.records[name])}\n"
                   for name in vocabulary.domains)
    Path(path).write_text(text, encoding="utf-8")
