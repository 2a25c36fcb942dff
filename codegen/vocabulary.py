"""What the reference tells of each record and each command, as plain data.

The pages and the terminal are both made of it. In the texts of facts and types a name in brackets
is a record or a command, and what stands in backquotes is spelled exactly so.
"""

import json
import re

from example import entry_tag, example_of
from printed import absent_words, bad_words
from schema import ACKNOWLEDGEMENT, OPERATIONS, capital

ACKNOWLEDGING_RECORD = "EtResult"
TYPE_NAMES = {"u16": "unsigned short"}
ZERO = {"bool": "false", "string": "empty", "joined": "empty"}
OPERATION_NAMES = {number: name for name, number in OPERATIONS.items()}
MARK = re.compile(r"`([^`]*)`|\[(\w+)\]")


def plain(value):
    """A fact without its marks."""
    if isinstance(value, list):
        return [plain(one) for one in value]
    return MARK.sub(lambda mark: mark[1] or mark[2], value) if isinstance(value, str) else value


def absence_of(schema, field):
    """What happens to the field when it is absent."""
    if field.presence == "required":
        return "the record is refused"
    if "write-only" in field.flags:
        return "stays as it was, in any case"
    if field.kind in ("list", "values", "each"):
        return "becomes empty"
    if field.kind == "element":
        has_words = field.absent or schema.records[field.type].absent
        return "its fields count as absent" + (", without lines of their own" if has_words else "")
    if field.presence in ("kept", "logged") or field.kind in ("record", "block"):
        return "stays as it was"
    if field.presence == "falls":
        return f"becomes {field.fallback}"
    return f"becomes {ZERO.get(field.kind, '0')}"


def printed_of(schema, record, field):
    """The lines that are printed when the field is absent."""
    if "bare" in field.flags:
        return []
    words = absent_words(record, field)
    if field.kind == "element":
        words = words or schema.records[field.type].absent
    return [line for line in (words, bad_words(field)) if line]


def notes_of(field):
    """What else is to be known of the field: its marks, told in words."""
    result = []
    if "write-only" in field.flags:
        result.append("Written, never read.")
    if "read-only" in field.flags:
        result.append("The second one: read once more, for the field of this name; not written.")
    if field.read_into:
        result.append(f"What is read goes to {field.read_into}.")
    if "read-as-float" in field.flags:
        result.append("Read with a fraction, which is cut off.")
    if "omit-empty" in field.flags:
        result.append("Not written while empty.")
    if "secret" in field.flags:
        result.append("Secret: the log shows it as ***.")
    if "bare" in field.flags:
        result.append("The values stand on the record's own element.")
    if field.unread:
        result.append(f"Its {field.unread} is not read.")
    if field.unwritten:
        result.append(f"Printed when it cannot be written: {field.unwritten}")
    return result


def type_of(schema, field):
    if field.kind == "list":
        tag = entry_tag(schema.records[field.type])
        return f"list of [{field.type}], one `{tag}` each"
    if field.kind == "values":
        return f"list of {field.type}, one `{field.item}` each"
    if field.kind == "each":
        inside = f" inside one `{field.item}`" if field.item else ""
        return f"repeated [{field.type}]{inside}"
    if field.kind == "joined":
        piece = f"[{field.type}]" if field.type in schema.records else field.type
        return f"list of {piece}, each as `{field.pattern}`, joined by `{field.separator}`"
    if field.kind == "block":
        return f"bytes in base64, {field.length} of them"
    if field.kind in ("record", "element"):
        return f"[{field.type}]"
    return TYPE_NAMES.get(field.kind, field.kind)


def carried_names(carried):
    return [("list of " if one.is_list else "") + f"[{one.type}]" for one in carried]


class Vocabulary:
    """Who points to whom, and what is told of each."""

    def __init__(self, schema):
        self.schema = schema
        self.domains = {domain.class_name: domain for domain in schema.domains}
        self.exported = schema.exported_closure()
        self.first_of_name, self.first_of_list, self.groups = {}, {}, {}
        self.nested_in, self.derived, self.carried_by, self.answers = {}, {}, {}, {}
        for domain in schema.domains:
            self.first_of_name.setdefault(domain.name, domain.class_name)
            self.first_of_list.setdefault(domain.list_name, domain.class_name)
        for record in schema.records.values():
            if record.base:
                self.derived.setdefault(record.base, []).append(f"[{record.name}]")
            for field in record.members:
                if field.type in schema.records:
                    self.nested_in.setdefault(field.type, []).append(
                        f"[{record.name}].{field.name}")
        self.names = {}  # what fleetctl calls a record, by the record's class
        for function, command in schema.sending():
            if command:
                carried = (command.answers or function.sends or command.carries)[-1:]
                for use in function.uses:
                    self.names.setdefault(carried[0].type, []).append(use.name)
        for command in schema.commands:
            self.groups.setdefault(command.group, {})[f"[{command.request}]"] = None
            for bodies, carried in ((self.carried_by, command.carries),
                                    (self.answers, command.answers)):
                for one in carried:
                    bodies.setdefault(one.type, []).append(
                        f"[{command.request}]" + (" (a list)" if one.is_list else ""))

    def facts(self, record):
        """Marked texts, lists of them and numbers, by the names of what they tell."""
        name, domain, facts = record.name, self.domains.get(record.name), {}
        if not record.is_element:
            if record.has_id:
                facts["id"] = record.id
            facts["element"] = self.element_fact(domain)
            if domain:
                facts["list"] = self.list_fact(domain)
            if record.has_id:
                facts["listEntry"] = f"`{entry_tag(record)}`"
            is_public = name in self.exported or "by-hand" in record.flags
            facts["header"] = f"`<fleetkit/{record.header}>`" if is_public else "not public"
        if record.base:
            facts["base"] = f"[{record.base}]"
        for key, others in (("baseOf", self.derived), ("nestedIn", self.nested_in),
                            ("carriedBy", self.carried_by), ("answers", self.answers)):
            if name in others:
                facts[key] = others[name]
        if name == ACKNOWLEDGING_RECORD:
            facts["answers"] = "every command whose reply is known"
        if "logs" in record.flags:
            facts["lines"] = "through the log, at level 1"
        if "odd" in record.flags:
            facts["mapper"] = "written by hand; it also traces what it reads and writes"
        return facts

    def element_fact(self, domain):
        if not domain:
            return "only inside other records, by the field's name"
        written = f"`{domain.name}`"
        if domain.name in self.first_of_list:
            winner = self.first_of_list[domain.name]
            return f"{written}; what is received by this name is a list of [{winner}]"
        winner = self.first_of_name[domain.name]
        if winner != domain.class_name:
            return f"{written}; what is received by this name is a [{winner}]"
        return written

    def list_fact(self, domain):
        written = f"`{domain.name}List`"
        if not domain.list_name:
            return f"{written} when written; a received one is not recognised"
        winner = self.first_of_list[domain.list_name]
        if winner != domain.class_name:
            return f"{written}; what is received by this name is a list of [{winner}]"
        if domain.list_name != domain.name + "List":
            return f"{written} when written, `{domain.list_name}` when received"
        return written

    def fields(self, record):
        """The fields in wire order; those of the base stand first and name it."""
        base = self.schema.records.get(record.base)
        inherited = [{"inheritedFrom": base.name, **field}
                     for field in self.fields(base)] if base else []
        return inherited + [self.field(record, field) for field in record.fields]

    def field(self, owner, field):
        return {"name": field.name, "meaning": capital(field.comment),
                "type": type_of(self.schema, field), "default": field.default,
                "absent": absence_of(self.schema, field),
                "printed": printed_of(self.schema, owner, field), "notes": notes_of(field)}

    def example(self, record):
        domain = self.domains.get(record.name)
        return example_of(self.schema, record, domain.name if domain else record.name)

    def command_facts(self, command):
        """As facts(); the same names in each command."""
        answers = carried_names(command.answers)
        if command.response == ACKNOWLEDGEMENT or answers:
            answers.insert(0, f"[{ACKNOWLEDGING_RECORD}]")
        return {
            "command": command.request, "reply": command.response,
            "group": command.group, "operation": OPERATION_NAMES[command.operation],
            "carries": carried_names(command.carries),
            "answers": answers,
            "sentBy": list(dict.fromkeys(one.name for one in command.functions if one.is_exported)),
            "sameGroup": [other for other in self.groups[command.group]
                          if other != f"[{command.request}]"],
        }


# For the terminal

def present(told):
    """What is not empty; 0 is something."""
    return {key: value for key, value in told.items() if value not in ("", [])}


def record_entry(vocabulary, record):
    """The names that find the record, and all that is told of it."""
    domain = vocabulary.domains.get(record.name)
    names = [record.name] + ([domain.name, domain.list_name] if domain else [])
    names += [str(record.id)] if record.has_id and not record.is_element else []
    names += vocabulary.names.get(record.name, [])
    fields = [present({**field, "type": plain(field["type"])})
              for field in vocabulary.fields(record)]
    facts = {key: plain(value) for key, value in vocabulary.facts(record).items()}
    return names, present({"record": record.name, "family": record.family,
                           "about": capital(record.comment), **facts, "whenAbsent": record.absent,
                           "fields": fields, "example": vocabulary.example(record)})


def command_entry(vocabulary, command):
    facts = vocabulary.command_facts(command)
    names = [str(command.request)] + [one.name for one in command.functions]
    return names, present({**{key: plain(value) for key, value in facts.items()},
                           "notes": command.comment})


def entry_row(names, told):
    text = json.dumps(told, ensure_ascii=False, separators=(",", ":"))
    return f'    {{"{" ".join(dict.fromkeys(filter(None, names)))}",\n     R"json({text})json"}},\n'


def entries_source(schema):
    """The C++ table that `fleetctl vocabulary` prints from."""
    vocabulary = Vocabulary(schema)
    rows = [entry_row(*record_entry(vocabulary, record)) for record in schema.records.values()]
    rows += [entry_row(*command_entry(vocabulary, command)) for command in schema.commands]
    rows = list(dict.fromkeys(rows))  # two commands stand in the catalogue twice
    return ('#include "VocabularyEntry.h"\n\n'
            f"const VocabularyEntry vocabularyEntries[] = {{\n{''.join(rows)}}};\n"
            "const std::size_t vocabularySize = "
            "sizeof(vocabularyEntries) / sizeof(vocabularyEntries[0]);\n")
