"""Refuses a schema that does not hold together."""

import re

from schema import ACKNOWLEDGEMENT, DEVICE_TYPES, SCALARS, Carried, SchemaError

PLACEHOLDERS = {"tag", "parent", "mapper", "value", "file", "line"}
ROOMS = ("domain", "Product/Technic")
# Ids of the records that are written by hand, and of every list.
RESERVED = {416: "DataBuffer", 1067: "EtCOMWriteData", 1125: "EtFileDataPack", 99999: "lists"}
NUMBER = {
    "bool": r"true|false",
    "int": r"-?\d+",
    "u16": r"\d+",
    "float": r"-?\d+(\.\d+)?",
    "double": r"-?\d+(\.\d+)?",
}
RANGES = {"int": (-(2**31), 2**31 - 1), "u16": (0, 65535)}


def check_value(kind, text, place, what):
    if kind == "string":
        return
    if kind not in NUMBER or not re.fullmatch(NUMBER[kind], text):
        raise SchemaError(place, f"{what} does not fit the type {kind}: {text}")
    if kind in RANGES and not RANGES[kind][0] <= int(text) <= RANGES[kind][1]:
        raise SchemaError(place, f"{what} does not fit the type {kind}: {text}")


def check_words(words, place):
    names = re.findall(r"\{(\w*)\}", words)
    for name in names:
        if name not in PLACEHOLDERS:
            raise SchemaError(place, f"unknown placeholder: {{{name}}}")
    if words.count("{") != len(names) or words.count("}") != len(names):
        raise SchemaError(place, "a brace without its partner")


def check_printed(field):
    """Words that no line would ever use are a mistake."""
    for words in (field.absent, field.bad, field.unwritten):
        check_words(words, field.place)
        if "{" in words and field.kind in ("list", "values"):
            raise SchemaError(field.place, "the words of a list have no placeholders")
    missable = field.presence or field.kind in ("record", "list", "values", "element", "each")
    if field.absent and not missable:
        raise SchemaError(field.place, f"{field.name} prints nothing when it is absent")
    if field.bad and field.kind not in ("list", "values"):
        raise SchemaError(field.place, f"{field.name} is never a bad list")
    if field.unwritten and field.kind not in ("record", "list", "element"):
        raise SchemaError(field.place, f"{field.name} is always written")


def check_references(schema, record, field):
    target = schema.records.get(field.type)
    if field.kind in ("record", "list"):
        if target is None or target.is_element:
            raise SchemaError(field.place, f"no such record: {field.type}")
    elif field.kind in ("element", "each"):
        if target is None or not target.is_element:
            raise SchemaError(field.place, f"no such element: {field.type}")
    elif field.kind == "values" and field.type not in ("int", "string"):
        raise SchemaError(field.place, f"values are int or string, not {field.type}")
    elif field.kind == "joined":
        check_joined(target, field)
    if field.unread and (
            field.kind != "element" or field.unread not in [f.name for f in target.fields]):
        raise SchemaError(field.place, f"no such field to leave unread: {field.unread}")
    others = {other.name: other for other in record.fields if other is not field}
    if field.read_into:
        other = others.get(field.read_into)
        if other is None or other.kind != field.kind:
            raise SchemaError(field.place, f"cannot be read into {field.read_into}")
    if field.length:
        before = [other.name for other in record.fields[:record.fields.index(field)]
                  if other.kind == "int"]
        if field.length not in before:
            raise SchemaError(
                field.place, f"the length of a block is an int field before it: {field.length}")


def check_joined(target, field):
    if not field.separator:
        raise SchemaError(field.place, "the separator is empty")
    pieces = field.pattern.count("%d")
    if field.type == "int":
        expected = 1
    elif target is None or any(f.kind != "int" for f in target.fields):
        raise SchemaError(field.place, f"joined pieces are int or a record of ints: {field.type}")
    else:
        expected = len(target.fields)
    if pieces != expected:
        raise SchemaError(field.place, f"the pattern has {pieces} numbers, not {expected}")


def check_field(schema, record, field):
    check_printed(field)
    check_references(schema, record, field)
    scalar = field.kind in SCALARS
    if field.presence and not scalar and field.kind != "joined":
        if field.kind != "record" or field.presence != "required" or field.absent:
            raise SchemaError(field.place, f"a {field.kind} cannot be {field.presence}")
    if field.default and not scalar:
        raise SchemaError(field.place, f"a {field.kind} has no default")
    if field.default:
        check_value(field.kind, field.default, field.place, "the default")
    if "write-only" in field.flags and field.presence:
        raise SchemaError(field.place, f"what is never read cannot be {field.presence}")
    if field.fallback:
        check_value(field.kind, field.fallback, field.place, "the fallback")
    if "omit-empty" in field.flags and field.kind != "string":
        raise SchemaError(field.place, "only a string can be omitted when empty")
    if "secret" in field.flags and field.kind != "string":
        raise SchemaError(field.place, "only a string can be secret")
    if "read-as-float" in field.flags and field.kind != "int":
        raise SchemaError(field.place, "only an int can be read as float")
    if "bare" in field.flags and field.kind != "values":
        raise SchemaError(field.place, "only values can be bare")


def check_field_names(schema, record):
    """A name stands once on an element, and accessors do not tell the first letter's case."""
    seen = {}
    base = schema.records[record.base].fields if record.base else []
    for field in base + record.fields:
        first = seen.setdefault(field.name[0].upper() + field.name[1:], field)
        again = "read-only" in field.flags
        if first is field and again:
            raise SchemaError(field.place, f"{field.name} is read again, and was never read")
        if first is not field and not again:
            raise SchemaError(field.place, f"{field.name} stands already at {first.place}")
        if (first.kind, first.type) != (field.kind, field.type):
            raise SchemaError(field.place, f"{field.name} is read again as another type")


def check_record(schema, record):
    if record.base:
        base = schema.records.get(record.base)
        if base is None or base.is_element:
            raise SchemaError(record.place, f"no such base record: {record.base}")
    if record.home not in ROOMS:
        raise SchemaError(record.place, f"no such room: {record.home}")
    if "odd" in record.flags and not record.has_id:
        raise SchemaError(record.place, "an odd mapper is found by an id")
    check_words(record.absent, record.place)
    check_field_names(schema, record)
    for field in record.fields:
        check_field(schema, record, field)


def nested_types(schema, record):
    """The types whose classes the record's own class needs."""
    names = [f.type for f in record.fields] + [record.base]
    return [schema.records[name] for name in names if name in schema.records]


def check_cycles(schema):
    done = set()

    def visit(record, path):
        if record.name in path:
            raise SchemaError(record.place, f"{record.name} holds itself")
        if record.name not in done:
            for inner in nested_types(schema, record):
                visit(inner, path + [record.name])
            done.add(record.name)

    for record in schema.records.values():
        visit(record, [])


def check_order(schema):
    """Records stand in the order of their ids, so that a reader finds them."""
    last = {}
    for record in schema.records.values():
        if record.is_element or not record.has_id:
            continue
        if record.id <= last.get(record.family, -1):
            raise SchemaError(record.place, f"{record.name} is out of order: id {record.id}")
        last[record.family] = record.id


def check_ids(schema):
    owners = {}
    for record in schema.records.values():
        if record.is_element or not record.has_id:
            continue
        if record.id in RESERVED:
            raise SchemaError(record.place, f"id {record.id} belongs to {RESERVED[record.id]}")
        if record.id in owners:
            raise SchemaError(
                record.place, f"id {record.id} stands already at {owners[record.id].place}")
        owners[record.id] = record


def check_domains(schema):
    last = -1
    for domain in schema.domains:
        record = schema.records.get(domain.class_name)
        if record is None or record.is_element:
            raise SchemaError(domain.place, f"no such record: {domain.class_name}")
        if not record.has_id or record.id != domain.id:
            raise SchemaError(
                domain.place, f"{record.name} has the id {record.id} at {record.place}")
        if domain.id <= last:
            raise SchemaError(domain.place, f"out of order: id {domain.id}")
        last = domain.id


def check_carried(domains, command, carried, is_received):
    domain = domains.get(carried.type)
    if domain is None:
        raise SchemaError(command.place, f"{carried.type} never stands at the top of a body")
    if is_received and carried.is_list and not domain.list_name:
        raise SchemaError(command.place, f"a received list of {carried.type} is not recognised")


def check_commands(schema):
    seen = {}
    domains = {domain.class_name: domain for domain in schema.domains}
    for command in schema.commands:
        for carried in command.carries:
            check_carried(domains, command, carried, False)
        for carried in command.answers:
            check_carried(domains, command, carried, True)
        if command.answers and command.response == ACKNOWLEDGEMENT:
            raise SchemaError(command.place, "an acknowledgement answers nothing but a result code")
        content = (command.response, command.group, command.operation)
        if seen.setdefault(command.request, content) != content:
            raise SchemaError(
                command.place, f"{command.request} stands already with another content")


# What a generated function asks for and gets, by the verb of its command.
CHANNEL = Carried("ChannelId")
OPTIONS = ("type", "channel", "stream", "language", "timezone")


def is_plain(command):
    """Whether the command asks for the channel, and for one record there or back."""
    beside = command.carries[1:] + command.answers
    return (command.carries[:1] == [CHANNEL] and len(beside) < 2
            and not any(carried.is_list for carried in beside))


def check_function(schema, domains, function, command):
    if command is None:
        if not function.flags & {"by-hand"} or function.sends or function.uses:
            raise SchemaError(function.place, f"{function.name} sends no command: by-hand, no more")
        return
    for carried in function.sends:
        check_carried(domains, function, carried, False)
    if function.is_generated and (function.sends or not is_plain(command)):
        raise SchemaError(function.place, f"{function.name} is not plain: it is written by-hand")
    for name in function.serves:
        if name not in DEVICE_TYPES or name not in schema.device_types:
            raise SchemaError(function.place, f"unknown device type: {name}")
    if function.serves and function.is_generated and len(command.answers) != 1:
        raise SchemaError(function.place, f"{function.name} gets nothing of a device type")
    for use in function.uses:
        for option in use.needs + use.takes:
            if option not in OPTIONS:
                raise SchemaError(use.place, f"unknown option: {option}")


def check_functions(schema):
    domains = {domain.class_name: domain for domain in schema.domains}
    commands, uses = {}, {}
    for function, command in schema.sending():
        check_function(schema, domains, function, command)
        first = commands.setdefault(function.name, (function, command))
        if first[0] is not function and (first[1] is not command or function.is_generated):
            raise SchemaError(
                function.place, f"{function.name} stands already at {first[0].place}")
        for use in function.uses:
            uses.setdefault(use.name, []).append((use, function))
    for name, those in uses.items():
        place = those[0][0].place
        if sum(bool(use.summary) for use, _ in those) != 1:
            raise SchemaError(place, f"{name} needs one summary")
        options = [(set(use.needs), set(use.takes)) for use, _ in those]
        if any(one != options[0] for one in options):
            raise SchemaError(place, f"the uses of {name} differ in their options")


def check_codes(schema):
    numbers, names = {}, {}
    for code in schema.codes:
        for seen, what in ((numbers, code.number), (names, code.name)):
            if seen.setdefault(what, code) is not code:
                raise SchemaError(code.place, f"{what} stands already at {seen[what].place}")


def check_schema(schema):
    for record in schema.records.values():
        check_record(schema, record)
    check_cycles(schema)
    check_order(schema)
    check_ids(schema)
    check_domains(schema)
    check_commands(schema)
    check_functions(schema)
    check_codes(schema)
    for name, place in schema.exported:
        if name not in schema.records:
            raise SchemaError(place, f"no such record: {name}")
