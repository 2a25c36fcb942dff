"""Writes the reference of the wire vocabulary, as pages that a browser opens from a file.

    reference.py --schema DIR --out DIR
"""

import argparse
import json
import re
import shutil
import sys
from html import escape
from pathlib import Path

from check import check_schema
from emit import capital, exported_closure, header_of, own_members
from example import entry_tag, example_of
from schema import ACKNOWLEDGEMENT, OPERATIONS, SchemaError, read_schema

HERE = Path(__file__).resolve().parent
TYPE_NAMES = {"u16": "unsigned short"}
ZERO = {"bool": "false", "string": "empty", "joined": "empty"}
OPERATION_NAMES = {number: name for name, number in OPERATIONS.items()}


# What a reader of the pages is told about a field

def node_name(tag):
    """The tag as the lines about missing lists spell it: PTZOpenList is PTZ_OPEN_LIST."""
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=.)(?=[A-Z][a-z])", "_", tag).upper()


def printed(record, field):
    """The lines that are printed when the field is absent."""
    mapper = record.name + "Xml"
    if field.kind in ("list", "values"):
        if "bare" in field.flags:
            return []
        return [field.absent or f"getConfigNode NODE_{node_name(field.name)} failed\\n",
                field.bad or f"parseDomainXmlNode obj{field.name} failed\\n"]
    if field.presence in ("logged", "required") and field.kind != "record":
        standard = f"{mapper}::parseDomainXmlNode get {field.name} failed \\n"
        return [(field.absent or standard).replace("{mapper}", mapper)]
    return [field.absent.replace("{mapper}", mapper)] if field.absent else []


def absence(schema, field):
    """What happens to the field when it is absent, in plain words."""
    if field.presence == "required":
        return "the record is refused"
    if "write-only" in field.flags:
        return "stays as it was, in any case"
    if field.kind in ("list", "values", "each"):
        return "becomes empty"
    if field.kind == "element":
        has_words = field.absent or schema.records[field.type].absent
        return "its fields take their fallbacks" if has_words else "its fields count as absent"
    if field.presence in ("kept", "logged") or field.kind in ("record", "block"):
        return "stays as it was"
    if field.presence == "falls":
        return f"becomes {field.fallback}"
    return f"becomes {ZERO.get(field.kind, '0')}"


def notes(field):
    """What else is to be known of the field."""
    result = [capital(field.comment)] if field.comment else []
    if "write-only" in field.flags:
        result.append("Written, never read.")
    if "read-only" in field.flags:
        result.append("Read once more, for the field of this name; not written again.")
    if field.read_into:
        result.append(f"What is read goes to {field.read_into}.")
    if "read-as-float" in field.flags:
        result.append("Read with a fraction, which is cut off.")
    if "omit-empty" in field.flags:
        result.append("Not written while empty.")
    if "bare" in field.flags:
        result.append("The values stand on the record's own element.")
    if field.unread:
        result.append(f"Its {field.unread} is not read.")
    if field.unwritten:
        result.append(f"Printed when it cannot be written: {field.unwritten}")
    return result


class Reference:
    """The pages, and who points to whom."""

    def __init__(self, schema):
        self.schema = schema
        self.domains = {domain.class_name: domain for domain in schema.domains}
        self.exported = exported_closure(schema)
        self.first_of_name = {}
        self.nested_in, self.derived, self.carried_by = {}, {}, {}
        for domain in schema.domains:
            self.first_of_name.setdefault(domain.name, domain.class_name)
        for record in schema.records.values():
            if record.base:
                self.derived.setdefault(record.base, []).append(record.name)
            for field in own_members(record):
                if field.type in schema.records:
                    self.nested_in.setdefault(field.type, []).append((record.name, field.name))
        for command in schema.commands:
            for carried in command.carries:
                self.note_command(carried, f"request {command.request}", command.request)
            for carried in command.answers:
                self.note_command(carried, f"reply to {command.request}", command.request)

    def note_command(self, carried, role, request):
        role += " (a list)" if carried.is_list else ""
        self.carried_by.setdefault(carried.type, []).append((role, request))

    # Small pieces

    def link(self, name):
        record = self.schema.records[name]
        return f'<a href="{record.family}.html#{name}">{name}</a>'

    def type_of(self, field):
        kind = TYPE_NAMES.get(field.kind, field.kind)
        target = self.link(field.type) if field.type in self.schema.records else field.type
        if field.kind == "list":
            tag = entry_tag(self.schema.records[field.type])
            return f"list of {target}, one <code>{tag}</code> each"
        if field.kind == "values":
            return f"list of {target}, one <code>{field.item}</code> each"
        if field.kind == "each":
            inside = f" inside one <code>{field.item}</code>" if field.item else ""
            return f"repeated {target}{inside}"
        if field.kind == "joined":
            return (f"list of {target}, each as <code>{escape(field.pattern)}</code>, "
                    f"joined by <code>{escape(field.separator)}</code>")
        if field.kind == "block":
            return f"bytes in base64, {field.length} of them"
        return target if field.kind in ("record", "element") else kind

    def field_row(self, record, field, inherited):
        lines = printed(record, field)
        if field.kind == "element" and not lines and self.schema.records[field.type].absent:
            lines = [self.schema.records[field.type].absent]
        words = "".join(f"<code>{escape(line)}</code>" for line in lines)
        extra = "".join(f'<span class="note">{escape(note)}</span>' for note in notes(field))
        mark = ' class="inherited"' if inherited else ""
        return (f"<tr{mark}><td><code>{field.name}</code>{extra}</td><td>{self.type_of(field)}</td>"
                f"<td>{escape(field.default)}</td><td>{absence(self.schema, field)}</td>"
                f'<td class="words">{words}</td></tr>\n')

    def field_table(self, record):
        rows, owner = [], record
        if record.base:
            owner = self.schema.records[record.base]
            rows += [self.field_row(owner, field, True) for field in owner.fields]
        rows += [self.field_row(record, field, False) for field in record.fields]
        if not rows:
            return "<p>It has no fields.</p>\n"
        return ('<div class="scroll"><table><thead><tr><th>Field</th><th>Type</th><th>Default</th>'
                "<th>When absent</th><th>Printed then</th></tr></thead>\n<tbody>\n"
                + "".join(rows) + "</tbody></table></div>\n")

    # Records

    def facts(self, record):
        name, domain = record.name, self.domains.get(record.name)
        rows = []
        if not record.is_element:
            rows.append(("Id", str(record.id) if record.has_id else "none"))
            rows.append(("Element", self.element_fact(domain)))
            if domain:
                rows.append(("List", self.list_fact(domain)))
            rows.append(("Entry of a list", f"<code>{entry_tag(record)}</code>"))
            rows.append(("C++", self.header_fact(record)))
        if record.base:
            rows.append(("Begins as", self.link(record.base)))
        if name in self.derived:
            rows.append(("Begins", ", ".join(self.link(other) for other in self.derived[name])))
        if name in self.nested_in:
            rows.append(("Nested in", ", ".join(
                f"{self.link(outer)}.{field}" for outer, field in self.nested_in[name])))
        if name in self.carried_by:
            rows.append(("Commands", ", ".join(
                f'<a href="commands.html#c{request}">{role}</a>'
                for role, request in self.carried_by[name])))
        if "logs" in record.flags:
            rows.append(("Lines", "through the log, at level 1"))
        if "odd" in record.flags:
            rows.append(("Mapper", "written by hand; it also traces what it reads and writes"))
        if not rows:
            return ""
        items = "".join(f"<dt>{key}</dt><dd>{value}</dd>\n" for key, value in rows)
        return f"<dl>\n{items}</dl>\n"

    def element_fact(self, domain):
        if not domain:
            return "only inside other records, by the field's name"
        winner = self.first_of_name[domain.name]
        if winner == domain.class_name:
            return f"<code>{domain.name}</code>"
        return f"<code>{domain.name}</code>; what is received by this name is a {self.link(winner)}"

    @staticmethod
    def list_fact(domain):
        written = f"<code>{domain.name}List</code>"
        if not domain.list_name:
            return f"{written} when written; a received one is not recognised"
        if domain.list_name == domain.name + "List":
            return written
        return f"{written} when written, <code>{domain.list_name}</code> when received"

    def header_fact(self, record):
        if record.name in self.exported:
            return f"<code>&lt;fleetkit/{header_of(record)}&gt;</code>"
        return "not in the public headers"

    def article(self, record):
        domain = self.domains.get(record.name)
        tag = domain.name if domain else record.name
        kind = "element" if record.is_element else "record"
        comment = f"<p>{escape(capital(record.comment))}</p>\n" if record.comment else ""
        absent = ""
        if record.absent:
            absent = f"<p>When it is absent: <code>{escape(record.absent)}</code></p>\n"
        example = escape(example_of(self.schema, record, tag), quote=False)
        return (f'<article id="{record.name}">\n<h2><a href="#{record.name}">{record.name}</a> '
                f'<span class="kind">{kind}</span></h2>\n{comment}{self.facts(record)}{absent}'
                f"{self.field_table(record)}"
                f"<details><summary>Example</summary><pre>{example}</pre></details>\n</article>\n")

    def records_of(self, family):
        return [r for r in self.schema.records.values() if r.family == family]

    def family_page(self, family):
        title, lead = title_of(self.schema, family)
        records = self.records_of(family)
        contents = "".join(f'<li><a href="#{r.name}">{r.name}</a></li>\n' for r in records)
        return page(title, f'<h1>{escape(title)}</h1>\n<p class="lead">{escape(lead)}</p>\n'
                    f'<ul class="contents">\n{contents}</ul>\n'
                    + "".join(self.article(record) for record in records))

    # Commands

    def carried_cell(self, items):
        return ", ".join(("list of " if item.is_list else "") + self.link(item.type)
                         for item in items)

    def command_rows(self):
        siblings, seen = {}, set()
        for command in self.schema.commands:
            siblings.setdefault(command.group, {}).setdefault(command.request, None)
        for command in self.schema.commands:
            anchor = "" if command.request in seen else f' id="c{command.request}"'
            seen.add(command.request)
            acknowledged = command.response == ACKNOWLEDGEMENT
            answers = [self.link("EtResult")] if acknowledged or command.answers else []
            answers += [self.carried_cell(command.answers)] if command.answers else []
            others = ", ".join(f'<a href="#c{other}">{other}</a>'
                               for other in siblings[command.group] if other != command.request)
            yield (f"<tr{anchor}><td>{command.request}</td><td>{command.response}</td>"
                   f"<td>{command.group}</td><td>{OPERATION_NAMES[command.operation]}</td>"
                   f"<td>{self.carried_cell(command.carries)}</td><td>{', '.join(answers)}</td>"
                   f"<td>{others}</td><td>{escape(command.comment)}</td></tr>\n")

    def commands_page(self):
        return page("Commands", f"""<h1>Commands</h1>
<p class="lead">The {len(self.schema.commands)} commands of the catalogue, in its order: a look-up
takes the first line that matches.</p>
<p>A command answers with the id under Reply. {ACKNOWLEDGEMENT} is the plain acknowledgement, which
carries a {self.link("EtResult")} and nothing else. Commands of one group work on one parameter.
"other" is a third operation on it, such as reading its default. The records are told where they are
known; a reply holds a {self.link("EtResult")} in front of them. The last column names the
functions of the library that send the command.</p>
<div class="scroll"><table><thead><tr><th>Request</th><th>Reply</th><th>Group</th><th>Operation</th>
<th>Request carries</th><th>Reply carries</th><th>Same group</th><th>Used by</th></tr></thead>
<tbody>
{"".join(self.command_rows())}</tbody></table></div>
""")

    # Index and search

    def index_page(self):
        records = [r for r in self.schema.records.values() if not r.is_element]
        families = "".join(self.family_item(family) for family in self.families())
        return page("Records and commands", INDEX.format(
            records=len(records), domains=len(self.schema.domains),
            commands=len(self.schema.commands), families=families))

    def families(self):
        names = {record.family for record in self.schema.records.values()}
        return sorted(names, key=lambda family: title_of(self.schema, family)[0])

    def family_item(self, family):
        title, lead = title_of(self.schema, family)
        count = sum(not record.is_element for record in self.records_of(family))
        return (f'<dt><a href="{family}.html">{escape(title)}</a></dt>'
                f"<dd>{escape(lead)} <span class=\"kind\">{count} records</span></dd>\n")

    def search_index(self):
        entries = []
        for record in self.schema.records.values():
            domain = self.domains.get(record.name)
            words = [domain.name, domain.list_name] if domain else []
            words += [field.name for field in record.fields]
            kind = "element" if record.is_element else f"record {record.id}"
            entries.append([record.name, kind, f"{record.family}.html#{record.name}",
                            " ".join(dict.fromkeys(words))])
        for command in self.schema.commands:
            kind = f"command, {OPERATION_NAMES[command.operation]}"
            reply = "" if command.response == ACKNOWLEDGEMENT else str(command.response)
            entries.append([str(command.request), kind, f"commands.html#c{command.request}",
                            f"{reply} {command.comment}".strip()])
        lines = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries)
        return f"const searchIndex = [\n{lines}\n];\n"

    def pages(self):
        result = {"index.html": self.index_page(), "commands.html": self.commands_page(),
                  "search-index.js": self.search_index()}
        for family in self.families():
            result[family + ".html"] = self.family_page(family)
        return result


def title_of(schema, family):
    """The opening of a schema file: its title, and what it says behind the colon."""
    text = schema.families[family]
    title, colon, lead = text.partition(": ")
    if not colon:
        title, lead = capital(family), text
    return title, lead[:1].upper() + lead[1:]


def page(title, body):
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{escape(title)} - FleetKit reference</title>
<link rel="stylesheet" href="reference.css">
<script src="search-index.js" defer></script>
<script src="reference.js" defer></script>
</head>
<body>
<header><a href="index.html">FleetKit reference</a> <a href="commands.html">Commands</a>
<div class="search"><input type="search" placeholder="Search records, fields, ids"
aria-label="Search records, fields, ids"><ol></ol></div></header>
<main>
{body}</main>
</body>
</html>
"""


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
<b>Entry of a list</b> is the tag of each entry as it is written; whoever reads a list takes every
child for an entry.</li>
<li><b>Default</b> is what a new record holds, if that is not 0, false or empty.</li>
<li><b>When absent</b> tells what reading does with a field that is not there. "Becomes 0" holds
even if the record had another value before; "stays as it was" keeps that value, in a new record the
default. A refused record is not taken: a nested one leaves its field alone, one in a list makes the
list empty, one at the top of a body makes the whole body unreadable.</li>
<li><b>Printed then</b> are the lines on standard output, word by word, with <code>\\n</code> for
the end of a line. <code>{{tag}}</code> stands for the element, <code>{{parent}}</code> for the one
around it, <code>{{value}}</code> for the value that is kept, <code>{{file}}</code> and
<code>{{line}}</code> for a place in the library's source. Of a list that is there but has a refused
entry, only the second line is printed.</li>
<li>An <b>element</b> is a part of one record that has no id of its own.</li>
<li><b>Begins as</b> names a record whose fields stand first, on the same element; they are
shaded.</li>
<li>In an <b>example</b> each field is filled with a value of its type, or with its default.</li>
</ul>
</div>
"""


def write_reference(schema, out):
    out = Path(out)
    out.mkdir(parents=True, exist_ok=True)
    for name, text in Reference(schema).pages().items():
        (out / name).write_text(text, encoding="utf-8")
    for name in ("reference.css", "reference.js"):
        shutil.copyfile(HERE / name, out / name)


def write_examples(schema, path):
    """An example of each record that may stand in a body: its class name, then the element."""
    classes = {domain.class_name: domain.name for domain in schema.domains}
    text = "".join(f"{name}\n{example_of(schema, schema.records[name], tag)}\n"
                   for name, tag in classes.items())
    Path(path).write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description="Writes the reference of the wire vocabulary.")
    parser.add_argument("--schema", required=True, help="directory of the schema files")
    parser.add_argument("--out", help="directory of the pages")
    parser.add_argument("--examples", help="file for the example elements alone")
    arguments = parser.parse_args()
    try:
        schema = read_schema(arguments.schema)
        check_schema(schema)
    except SchemaError as error:
        print(f"schema error: {error}", file=sys.stderr)
        return 1
    if arguments.out:
        write_reference(schema, arguments.out)
    if arguments.examples:
        write_examples(schema, arguments.examples)
    return 0


if __name__ == "__main__":
    sys.exit(main())
