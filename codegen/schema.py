"""The schema language: reads *.schema files into a model.

Nothing is resolved here; check.py does that. Every refusal names file, line and reason.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path

SCALARS = ("bool", "int", "u16", "float", "double", "string")
PRESENCES = ("kept", "logged", "required", "falls")
OPERATIONS = {"write": 1, "read": 2, "other": 3, "action": 4}
ACKNOWLEDGEMENT = 10000
VERBS = ("get", "set", "do")
DEVICE_TYPES = ("camera", "recorder")


def capital(text):
    return text[:1].upper() + text[1:]


class SchemaError(Exception):
    """A line that is refused."""

    def __init__(self, place, reason):
        super().__init__(f"{place}: {reason}")


@dataclass
class Field:
    name: str
    kind: str  # a scalar, or record, list, values, element, each, joined, block
    place: str
    type: str = ""  # the record or element named, or the type of values
    item: str = ""  # tag of each value, or the element around repeated elements
    pattern: str = ""
    separator: str = ""
    length: str = ""  # a block's length field
    default: str = ""
    presence: str = ""
    fallback: str = ""
    absent: str = ""
    bad: str = ""
    unwritten: str = ""
    read_into: str = ""
    unread: str = ""
    # write-only, read-only, omit-empty, read-as-float, bare, secret
    flags: set = field(default_factory=set)
    comment: str = ""


@dataclass
class Record:
    name: str
    place: str
    family: str
    is_element: bool = False
    id: int = 0
    has_id: bool = True
    base: str = ""
    entry: str = ""
    home: str = "domain"
    absent: str = ""
    flags: set = field(default_factory=set)  # logs, odd, by-hand
    fields: list = field(default_factory=list)
    comment: str = ""

    @property
    def header(self):
        return f"{self.home}/{self.name}.h"

    @property
    def members(self):
        """The fields that the class holds."""
        return [one for one in self.fields if "read-only" not in one.flags]


@dataclass
class Domain:
    id: int
    name: str
    place: str
    class_name: str
    list_name: str


@dataclass
class Carried:
    """A record in a command body, or a list of them."""
    type: str
    is_list: bool = False


@dataclass
class Use:
    """What fleetctl has a function for: a verb, a name and what it asks for."""
    verb: str
    name: str
    place: str
    needs: list = field(default_factory=list)  # options that have to be given
    takes: list = field(default_factory=list)  # options that may be given
    summary: str = ""


@dataclass
class Function:
    """A function of the library, told below the command that it sends."""
    name: str
    place: str
    sends: list = field(default_factory=list)  # the request, where it is not what the command says
    serves: list = field(default_factory=list)  # of DEVICE_TYPES, for one that is told the type
    uses: list = field(default_factory=list)
    # by-hand, internal, endangers, ignored-int
    flags: set = field(default_factory=set)

    @property
    def is_exported(self):
        return "internal" not in self.flags

    @property
    def is_generated(self):
        return not self.flags & {"by-hand", "internal"}


@dataclass
class Command:
    request: int
    response: int
    group: int
    operation: int
    place: str
    carries: list = field(default_factory=list)  # what the request holds, as Carried
    answers: list = field(default_factory=list)  # what the reply holds besides its result code
    functions: list = field(default_factory=list)  # those that send it
    comment: str = ""


@dataclass
class Code:
    """A result code of the library."""
    number: int
    name: str
    meaning: str
    place: str


@dataclass
class Schema:
    records: dict = field(default_factory=dict)
    families: dict = field(default_factory=dict)  # name -> the comment that opens the file
    domains: list = field(default_factory=list)
    commands: list = field(default_factory=list)
    functions: list = field(default_factory=list)  # those that send no command
    device_types: dict = field(default_factory=dict)  # of DEVICE_TYPES -> its numbers
    exported: list = field(default_factory=list)  # (class name, place)
    codes: list = field(default_factory=list)

    def sending(self):
        """Each function with its command, which is None where there is none."""
        yield from ((one, command) for command in self.commands for one in command.functions)
        yield from ((one, None) for one in self.functions)

    def exported_closure(self):
        """The exported classes: those named, those of generated functions, and what they hold."""
        names, waiting = set(), [name for name, _ in self.exported]
        waiting += [carried.type for function, command in self.sending() if function.is_generated
                    for carried in (command.carries + command.answers)[1:]]
        while waiting:
            name = waiting.pop()
            if name not in names and name in self.records:
                names.add(name)
                record = self.records[name]
                waiting += [field.type for field in record.fields] + [record.base]
        return names


TOKEN = re.compile(r'\s*(?:"((?:[^"\\]|\\.)*)"|([^\s"#]+))')


def tokens_of(text, place):
    """Splits a line into tokens; a quoted text keeps its opening quote as a mark."""
    tokens, position, comment = [], 0, ""
    while position < len(text):
        rest = text[position:].lstrip()
        if not rest:
            break
        if rest.startswith("#"):
            comment = rest[1:].strip()
            break
        match = TOKEN.match(text, position)
        if not match:
            raise SchemaError(place, "a text without its closing quote")
        tokens.append('"' + match[1] if match[1] is not None else match[2])
        position = match.end()
    return tokens, comment


class Words:
    """The tokens of one line, taken from the front."""

    def __init__(self, tokens, place):
        self.tokens, self.place = list(tokens), place

    def __bool__(self):
        return bool(self.tokens)

    def peek(self):
        return self.tokens[0] if self.tokens else ""

    def take(self, what):
        if not self.tokens or self.tokens[0].startswith('"'):
            raise SchemaError(self.place, f"{what} is missing")
        return self.tokens.pop(0)

    def take_text(self, what):
        if not self.peek().startswith('"'):
            raise SchemaError(self.place, f"{what} is missing (a text in quotes)")
        return self.tokens.pop(0)[1:]

    def take_number(self, what):
        text = self.take(what)
        if not re.fullmatch(r"[0-9]+", text) or int(text) > 0xFFFFFFFF:
            raise SchemaError(self.place, f"{what} is not a number: {text}")
        return int(text)

    def take_name(self, what):
        text = self.take(what)
        if not re.fullmatch(r"[A-Za-z][A-Za-z0-9_]*", text):
            raise SchemaError(self.place, f"{what} is not a name: {text}")
        return text

    def end(self):
        if self.tokens:
            raise SchemaError(self.place, f"unknown word: {self.tokens[0].lstrip(chr(34))}")


def parse_field(words):
    result = Field(words.take_name("a field name"), "", words.place)
    kind = result.kind = words.take("a type")
    if kind in ("record", "list", "element", "each"):
        result.type = words.take_name(f"the type of a {kind}")
    elif kind == "values":
        result.type = words.take("the type of the values")
        result.item = words.take_name("the tag of each value")
    elif kind == "joined":
        result.type = words.take("the type of the joined pieces")
        result.pattern = words.take_text("the pattern of a piece")
        result.separator = words.take_text("the separator")
    elif kind == "block":
        result.length = words.take_name("the field with the block's length")
    elif kind not in SCALARS:
        raise SchemaError(words.place, f"unknown type: {kind}")
    while words:
        parse_modifier(result, words)
    return result


def parse_modifier(result, words):
    word = words.take("a modifier")
    if word == "=":
        text = words.peek().startswith('"')
        result.default = words.take_text("a default") if text else words.take("a default")
    elif word in PRESENCES:
        if result.presence:
            raise SchemaError(words.place, f"both {result.presence} and {word}")
        result.presence = word
        if word == "falls":
            result.fallback = words.take("the fallback")
            result.absent = words.take_text("the words of a fallback")
        elif words.peek().startswith('"'):
            if word == "kept":
                raise SchemaError(words.place, "a kept field prints nothing")
            result.absent = words.take_text("the words")
    elif word in ("absent", "bad", "unwritten"):
        setattr(result, word, words.take_text(f"the words of {word}"))
    elif word == "read-into":
        result.read_into = words.take_name("the field read into")
    elif word == "read-as":
        if words.take("the type read as") != "float":
            raise SchemaError(words.place, "a number can only be read as float")
        result.flags.add("read-as-float")
    elif word == "unread":
        result.unread = words.take_name("the field that is not read")
    elif word == "under":
        if result.kind != "each":
            raise SchemaError(words.place, "only repeated elements can stand under another")
        result.item = words.take_name("the element around")
    elif word in ("write-only", "read-only", "omit-empty", "bare", "secret"):
        result.flags.add(word)
    else:
        raise SchemaError(words.place, f"unknown word: {word}")


def parse_record(words, family):
    result = Record(words.take_name("a record name"), words.place, family)
    if words.peek() == "none":
        words.take("none")
        result.has_id = False
    else:
        result.id = words.take_number("the domain id")
    while words:
        word = words.take("a modifier")
        if word == ":":
            result.base = words.take_name("the base record")
        elif word == "entry":
            result.entry = words.take_text("the tag of a list entry")
        elif word == "in":
            result.home = words.take("the room")
        elif word in ("logs", "odd", "by-hand"):
            result.flags.add(word)
        else:
            raise SchemaError(words.place, f"unknown word: {word}")
    return result


def parse_domain(words):
    number, name = words.take_number("the domain id"), words.take_name("the domain name")
    result = Domain(number, name, words.place, name, name + "List")
    while words:
        word = words.take("a modifier")
        if word == "class":
            result.class_name = words.take_name("the class")
        elif word == "list":
            result.list_name = words.take_name("the list name")
        elif word == "no-list":
            result.list_name = ""
        else:
            raise SchemaError(words.place, f"unknown word: {word}")
    return result


def parse_command(words):
    request = words.take_number("the request")
    if words.peek() == "ack":
        words.take("ack")
        response = ACKNOWLEDGEMENT
    else:
        response = words.take_number("the response")
    group, operation = words.take_number("the group"), words.take("the operation")
    if operation not in OPERATIONS:
        raise SchemaError(words.place, f"unknown operation: {operation}")
    result = Command(request, response, group, OPERATIONS[operation], words.place)
    while words:
        word = words.take("a modifier")
        if word not in ("carries", "answers"):
            raise SchemaError(words.place, f"unknown word: {word}")
        if getattr(result, word):
            raise SchemaError(words.place, f"{word} stands twice")
        setattr(result, word, parse_carried(words, word, COMMAND_WORDS))
    return result


def parse_function(words):
    result = Function(words.take_name("a function"), words.place)
    while words:
        word = words.take("a modifier")
        if word == "sends":
            result.sends = parse_carried(words, word, FUNCTION_WORDS)
        elif word == "of":
            result.serves = [words.take("a device type")]
            if words.peek() in DEVICE_TYPES:
                result.serves.append(words.take("a device type"))
        elif word in VERBS:
            result.uses.append(parse_use(words, word))
        elif word in ("by-hand", "internal", "endangers", "ignored-int"):
            result.flags.add(word)
        else:
            raise SchemaError(words.place, f"unknown word: {word}")
    return result


def parse_use(words, verb):
    """An option in brackets may be left out."""
    result = Use(verb, words.take(f"the name to {verb}"), words.place)
    while words and not words.peek().startswith('"') and words.peek() not in FUNCTION_WORDS:
        option = words.take("an option")
        if option.startswith("["):
            result.takes.append(option.strip("[]"))
        else:
            result.needs.append(option)
    if words.peek().startswith('"'):
        result.summary = words.take_text("the summary")
    return result


def parse_code(words):
    number = words.take("the code")
    if not re.fullmatch(r"0|-[0-9]+", number):
        raise SchemaError(words.place, f"a code is 0 or less: {number}")
    return Code(int(number), words.take_name("the name of a code"),
                words.take_text("the meaning of a code"), words.place)


def parse_device_type(words):
    name = words.take("a device type")
    if name not in DEVICE_TYPES:
        raise SchemaError(words.place, f"unknown device type: {name}")
    numbers = []
    while words or not numbers:
        numbers.append(words.take_number("the number of a device type"))
    return name, numbers


COMMAND_WORDS = ("carries", "answers")
FUNCTION_WORDS = ("sends", "of", *VERBS, "by-hand", "internal", "endangers", "ignored-int")


def parse_carried(words, keyword, others):
    result = []
    while not result or (words and words.peek() not in others):
        name = words.take_name(f"a record that the command {keyword}")
        is_list = name == "list"
        if is_list:
            name = words.take_name("the record of the list")
        result.append(Carried(name, is_list))
    return result


def read_file(schema, path):
    """Adds what one file says to the schema."""
    family, current, pending, opening = path.stem, None, [], []
    has_content = False
    for number, line in enumerate(path.read_bytes().split(b"\n"), 1):
        place = f"{path.name}:{number}"
        try:
            text = line.decode("utf-8")
        except UnicodeDecodeError:
            raise SchemaError(place, "not UTF-8") from None
        if "\t" in text:
            raise SchemaError(place, "a tab; the schema is indented by four blanks")
        if text.startswith("#"):
            pending.append(text[1:].strip())
            continue
        if not text.strip():
            opening = opening or (pending if not has_content else [])
            pending = []
            continue
        has_content = True
        tokens, comment = tokens_of(text, place)
        words = Words(tokens, place)
        if text.startswith(" "):
            if current is None:
                raise SchemaError(place, "a field without a record")
            if isinstance(current, Command):
                current.functions.append(parse_function(words))
                continue
            if current.is_element and words.peek() == "absent":
                words.take("absent")
                current.absent = words.take_text("the words of absent")
                words.end()
                continue
            new_field = parse_field(words)
            new_field.comment = comment
            current.fields.append(new_field)
            continue
        current = None
        keyword = words.take("a keyword")
        if keyword in ("record", "element"):
            if keyword == "record":
                current = parse_record(words, family)
            else:
                current = Record(words.take_name("an element name"), place, family, True)
                words.end()
            current.comment = comment or " ".join(pending)
            if current.name in schema.records:
                raise SchemaError(
                    place,
                    f"{current.name} stands already at {schema.records[current.name].place}")
            schema.records[current.name] = current
        elif keyword == "domain":
            schema.domains.append(parse_domain(words))
        elif keyword == "command":
            current = parse_command(words)
            current.comment = comment
            schema.commands.append(current)
        elif keyword == "function":
            schema.functions.append(parse_function(words))
        elif keyword == "code":
            schema.codes.append(parse_code(words))
            words.end()
        elif keyword == "device-type":
            name, numbers = parse_device_type(words)
            if name in schema.device_types:
                raise SchemaError(place, f"{name} stands twice")
            schema.device_types[name] = numbers
        elif keyword == "export":
            schema.exported.append((words.take_name("a class"), place))
            words.end()
        else:
            raise SchemaError(place, f"unknown keyword: {keyword}")
        pending = []
    schema.families[family] = " ".join(opening)


def read_schema(directory):
    schema = Schema()
    paths = sorted(Path(directory).glob("*.schema"))
    if not paths:
        raise SchemaError(directory, "no schema files")
    for path in paths:
        read_file(schema, path)
    return schema
