"""Writes the C++ that a schema stands for."""

import re
from pathlib import Path

from operations import files_of_operations
from printed import absent_words, bad_words
from schema import capital
from vocabulary import entries_source

MEMBER_LETTERS = {
    "bool": "b", "int": "n", "u16": "n", "float": "f", "double": "d", "string": "str",
    "record": "", "element": "", "list": "vec", "each": "vec", "values": "vec",
    "joined": "vec", "block": "opt",
}
CPP_SCALARS = {
    "bool": "bool", "int": "int", "u16": "unsigned short", "float": "float", "double": "double",
    "string": "std::string",
}
FIELD_KINDS = {
    "bool": "Bool", "int": "Int", "u16": "UnsignedShort", "float": "Float", "double": "Double",
    "string": "String", "record": "Record", "element": "Element", "list": "RecordList",
    "each": "ElementList", "block": "Block",
}
PRESENCES = {"kept": "Kept", "logged": "Logged", "required": "Required", "falls": "Fallback"}
FLAGS = {
    "write-only": "WriteOnly", "read-only": "ReadOnly", "omit-empty": "OmitEmpty",
    "read-as-float": "ReadAsFloat", "bare": "BareValues", "secret": "Secret",
}


GENERATED = "// Generated from schema/"


def generated_by(source):
    return f"{GENERATED}{source} by codegen/fleetkit_codegen.py; not to be edited.\n"


def uncapital(name):
    """The name as it follows a prefix that has no letter: PTZSpeed is ptzSpeed."""
    return re.sub(r"^([A-Z]+(?=[A-Z][a-z])|[A-Z]+(?![a-z])|[A-Z])",
                  lambda start: start[1].lower(), name)


def member_of(field):
    letters = MEMBER_LETTERS[field.kind]
    return f"m_{letters}{capital(field.name) if letters else uncapital(field.name)}"


def cpp_type(field):
    if field.kind in CPP_SCALARS:
        return CPP_SCALARS[field.kind]
    if field.kind in ("record", "element"):
        return field.type
    if field.kind == "block":
        return "std::optional<std::vector<std::uint8_t>>"
    return f"std::vector<{CPP_SCALARS.get(field.type, field.type)}>"


def is_plain(field):
    """Whether the field is handed over by value."""
    return field.kind in CPP_SCALARS and field.kind != "string"


def default_of(field):
    if not field.default:
        return {"bool": " = false", "int": " = 0", "u16": " = 0", "float": " = 0",
                "double": " = 0"}.get(field.kind, "")
    if field.kind == "string":
        return f' = "{field.default}"'
    if field.kind == "float":
        return f" = {field.default if '.' in field.default else field.default + '.0'}F"
    return f" = {field.default}"


# Record classes

def includes_of(schema, record):
    members = record.members
    types = [cpp_type(field) for field in members]
    system = []
    if any("std::optional" in text for text in types):
        system += ["cstdint", "optional"]
    if any("std::string" in text for text in types):
        system.append("string")
    if any(not is_plain(field) for field in members):
        system.append("utility")
    if any("std::vector" in text for text in types):
        system.append("vector")
    rooms = {schema.records[f.type].header for f in members if f.type in schema.records}
    if record.base:
        rooms.add(schema.records[record.base].header)
    elif not record.is_element:
        rooms.add("domain/BaseDomain.h")
    rooms.add("domain/RecordDescriptor.h")
    text = "".join(f"#include <{name}>\n" for name in sorted(set(system)))
    return text + ("\n" if text else "") + "".join(f'#include "{name}"\n' for name in sorted(rooms))


def accessors_of(field):
    name, kind, member = capital(field.name), cpp_type(field), member_of(field)
    note = f"    // {capital(field.comment)}.\n" if field.comment else ""
    if is_plain(field):
        return (f"{note}    {kind} get{name}() const noexcept {{ return {member}; }}\n"
                f"    void set{name}({kind} value) noexcept {{ {member} = value; }}\n")
    return (f"{note}    const {kind}& get{name}() const noexcept {{ return {member}; }}\n"
            f"    void set{name}({kind} value) {{ {member} = std::move(value); }}\n")


def wrapped_comment(text):
    lines, line = [], "//"
    for word in text.split():
        if len(line) + 1 + len(word) > 100:
            lines.append(line)
            line = "//"
        line += " " + word
    return "".join(f"{part}\n" for part in lines + [line]) if text else ""


def record_header(schema, record, exported):
    name, members = record.name, record.members
    export = "FLEETKIT_EXPORT " if record.name in exported else ""
    out = [generated_by(record.family + ".schema"), "#pragma once\n\n",
           includes_of(schema, record), "\n", wrapped_comment(capital(record.comment))
           if record.comment else ""]
    if record.is_element:
        out.append(f"class {export}{name} final {{\npublic:\n")
    else:
        is_base = any(other.base == name for other in schema.records.values())
        final = "" if is_base else " final"
        out.append(f"class {export}{name}{final} : public {record.base or 'BaseDomain'} {{\n"
                   "public:\n")
        if record.has_id:
            out.append(f"    static constexpr std::uint32_t DomainId = {record.id};\n\n")
        out.append(f"    {name}() noexcept;\n    {name}(const {name}& other);\n"
                   f"    {name}& operator=(const {name}& other);\n"
                   f"    {name}& operator=({name}&& other) noexcept;\n"
                   f"    ~{name}() override;\n\n")
    out += [accessors_of(field) for field in members]
    out.append("\n    static const fleetkit::RecordDescriptor& descriptor() noexcept;\n"
               f"    friend bool operator==(const {name}& left, const {name}& right) {{\n"
               "        return equalRecords(descriptor(), &left, &right);\n    }\n")
    if members:
        out.append("\nprivate:\n")
        out += [f"    {cpp_type(field)} {member_of(field)}{default_of(field)};\n"
                for field in members]
    out.append("};\n")
    return "".join(out)


def special_members(record):
    name = record.name
    wipes = [f"wipe({member_of(field)});" for field in record.members if "secret" in field.flags]
    destruction = f"{{ {' '.join(wipes)} }}" if wipes else "= default;"
    identity = f"m_nDomainId = {record.id};" if record.has_id else ""
    return (f"{name}::{name}() noexcept {{ {identity} }}\n"
            f"{name}::{name}(const {name}& other) : {name}() {{ *this = other; }}\n"
            f"{name}& {name}::operator=(const {name}& other) = default;\n"
            f"{name}& {name}::operator=({name}&& other) noexcept = default;\n"
            f"{name}::~{name}() {destruction}\n\n")


# Descriptors

def quoted(text):
    return f'"{text}"'


def field_kind(field):
    if field.kind == "values":
        return "IntList" if field.type == "int" else "StringList"
    if field.kind == "joined":
        return "JoinedInts" if field.type == "int" else "JoinedRecords"
    return FIELD_KINDS[field.kind]


def field_row(schema, record, field):
    by_name = {other.name: other for other in record.members}
    own = by_name[field.name]
    row = [f".szTag = {quoted(field.name)}", f".nKind = FieldKind::{field_kind(field)}"]
    if field.presence:
        row.append(f".nPresence = Presence::{PRESENCES[field.presence]}")
    flags = [name for key, name in FLAGS.items() if key in field.flags]
    if flags:
        row.append(f".nFlags = {' | '.join(flags)}")
    row.append(f".nOffset = offsetof({record.name}, {member_of(own)})")
    other = field.read_into or field.length
    if other:
        row.append(f".nOtherOffset = offsetof({record.name}, {member_of(by_name[other])})")
    if field.read_into:
        row.append(f".szReadInto = {quoted(other)}")
    if field.type in schema.records:
        row.append(f".nested = &{field.type}::descriptor")
    if field.pattern or field.item:
        row.append(f".szItem = {quoted(field.pattern or field.item)}")
    for key, text in (("szSeparator", field.separator), ("szUnread", field.unread),
                      ("szDefault", field.default), ("szFallback", field.fallback),
                      ("szAbsent", absent_words(record, field)),
                      ("szBad", bad_words(field)), ("szUnwritten", field.unwritten)):
        if text:
            row.append(f".{key} = {quoted(text)}")
    return "        {" + ",\n         ".join(row) + "},\n"


def descriptor_of(schema, record, domain):
    name, out = record.name, []
    out.append(f"const RecordDescriptor& {name}::descriptor() noexcept {{\n")
    if record.fields:
        out.append("    static constexpr FieldDescriptor fields[] = {\n")
        out += [field_row(schema, record, field) for field in record.fields]
        out.append("    };\n")
    row = [f".szClass = {quoted(name)}", f".szFamily = {quoted(record.family)}"]
    if domain:
        row.append(f".szName = {quoted(domain.name)}")
        if domain.list_name:
            row.append(f".szList = {quoted(domain.list_name)}")
    row.append(f".szEntry = {quoted(record.entry or name)}")
    row.append(f".nDomainId = {record.id}")
    if record.is_element:
        row.append(".isElement = true")
    if "logs" in record.flags:
        row.append(".usesLog = true")
    if record.base:
        row.append(f".base = &{record.base}::descriptor")
    if record.fields:
        row += [".pFields = fields", f".nFieldCount = {len(record.fields)}"]
    if record.absent:
        row.append(f".szAbsent = {quoted(record.absent)}")
    access = "elementAccess" if record.is_element else "recordAccess"
    row.append(f".access = {access}<{name}>()")
    out.append("    static constexpr RecordDescriptor table{\n        "
               + ",\n        ".join(row) + "};\n    return table;\n}\n\n")
    return "".join(out)


def family_source(schema, family, records, domains):
    headers = {record.header for record in records if "by-hand" not in record.flags}
    if any("secret" in field.flags for record in records for field in record.fields):
        headers.add("Product/Technic/SecretText.h")
    out = [generated_by(family + ".schema"), "#include <cstddef>\n#include <utility>\n\n",
           "".join(f'#include "{name}"\n' for name in sorted(headers)),
           '#include "domain/RecordDescriptor.h"\n\n',
           "// Records derive from one base without virtual inheritance, so both compilers know\n"
           "// the place of each member.\n"
           '#pragma GCC diagnostic ignored "-Winvalid-offsetof"\n\n'
           "using namespace fleetkit;\n\n"]
    for record in records:
        if not record.is_element and "by-hand" not in record.flags:
            out.append(special_members(record))
        out.append(descriptor_of(schema, record, domains.get(record.name)))
    return "".join(out)


# Tables

def include_all(schema):
    headers = sorted(r.header for r in schema.records.values() if "by-hand" not in r.flags)
    return "".join(f'#include "{name}"\n' for name in headers)


def name_table(table, pairs):
    """Rows sorted by name; of a doubled name the first row wins."""
    first = {}
    for name, class_name in pairs:
        first.setdefault(name, class_name)
    rows = "".join(f'    {{"{name}", &{first[name]}::descriptor}},\n'
                   for name in sorted(first, key=lambda text: text.encode()))
    return f"constexpr NameRow {table}[] = {{\n{rows}}};\n"


def domain_tables(schema):
    records = sorted((r for r in schema.records.values() if not r.is_element),
                     key=lambda r: (not r.has_id, r.id))
    elements = [r for r in schema.records.values() if r.is_element]
    ids = "".join(f"    {{{r.id}, &{r.name}::descriptor}},\n" for r in records if r.has_id)
    everything = "".join(f"    &{r.name}::descriptor,\n" for r in records + elements)
    singles = [(d.name, d.class_name) for d in schema.domains]
    lists = [(d.list_name, d.class_name) for d in schema.domains if d.list_name]
    return (generated_by("domains.schema") + '#include "domain/DomainTables.h"\n\n'
            + include_all(schema) + "\nnamespace DomainTables {\n\nnamespace {\n\n"
            + f"constexpr DescriptorOf everything[] = {{\n{everything}}};\n"
            + f"constexpr IdRow ids[] = {{\n{ids}}};\n"
            + name_table("singles", singles) + name_table("lists", lists)
            + "\n}  // namespace\n\n"
            "std::span<const DescriptorOf> descriptors() noexcept { return everything; }\n"
            "std::span<const IdRow> idRows() noexcept { return ids; }\n"
            "std::span<const NameRow> singleNames() noexcept { return singles; }\n"
            "std::span<const NameRow> listNames() noexcept { return lists; }\n\n"
            "}  // namespace DomainTables\n")


def mapper_header(schema, family, records):
    names = [r.name for r in records if not r.is_element]
    headers = ["domain/BaseDomain.h" if "by-hand" in r.flags else r.header
               for r in records if not r.is_element]
    return (generated_by(family + ".schema") + "#pragma once\n\n"
            + "".join(f'#include "{name}"\n' for name in sorted(headers))
            + '#include "domainxml/TypedXml.h"\n\n'
            + "".join(f"using {name}Xml = TypedXml<{name}>;\n" for name in names))


def odd_mappers(schema):
    odd = [r for r in schema.records.values() if "odd" in r.flags]
    rows = "".join(f"    {{{r.id}, {{&OddXml::create{r.name}, &OddXml::parse{r.name}}}}},\n"
                   for r in odd)
    return (generated_by("*.schema")
            + "".join(f'#include "domainxml/odd/{r.name}OddXml.h"\n' for r in odd)
            + '#include "domainxml/OddMapper.h"\n\nnamespace {\n\n'
            "struct Row {\n    std::uint32_t nDomainId;\n    OddMapper mapper;\n};\n"
            f"constexpr Row rows[] = {{\n{rows}}};\n\n}}  // namespace\n\n"
            "const OddMapper* findOddMapper(std::uint32_t nDomainId) noexcept {\n"
            "    for (const Row& row : rows) {\n"
            "        if (row.nDomainId == nDomainId) {\n"
            "            return &row.mapper;\n        }\n    }\n    return nullptr;\n}\n")


def files_of(schema):
    """The generated files by their paths."""
    domains = {domain.class_name: domain for domain in schema.domains}
    exported = schema.exported_closure()
    files, families = {}, {}
    for record in schema.records.values():
        families.setdefault(record.family, []).append(record)
        if "by-hand" not in record.flags:
            files[record.header] = record_header(schema, record, exported)
    for family, records in families.items():
        title = capital(family)
        files[f"domain/{title}Records.cpp"] = family_source(schema, family, records, domains)
        files[f"domainxml/{title}RecordsXml.h"] = mapper_header(schema, family, records)
    files["domain/DomainTables.cpp"] = domain_tables(schema)
    files["domainxml/OddMappers.cpp"] = odd_mappers(schema)
    files.update(files_of_operations(schema, generated_by))
    files["fleetctl/VocabularyEntries.cpp"] = generated_by("*.schema") + entries_source(schema)
    files["exported-records.txt"] = "".join(schema.records[name].header + "\n"
                                            for name in sorted(exported))
    return files


def read_text(path):
    return path.read_text(encoding="utf-8") if path.exists() else ""


def emit_all(schema, out):
    """Writes what changed, so that nothing else is built again, and removes what is no more."""
    out, files = Path(out), files_of(schema)
    for name, text in files.items():
        path = out / name
        if read_text(path) != text:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
    for path in out.rglob("*.*"):
        if path.relative_to(out).as_posix() not in files and read_text(path).startswith(GENERATED):
            path.unlink()
