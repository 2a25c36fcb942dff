"""Writes what is made of the codes, the commands and the functions that send them."""

from schema import ACKNOWLEDGEMENT, capital

# Options of fleetctl, as its code names them.
SELECTORS = {"type": "Type", "channel": "Channel", "stream": "Stream", "language": "Language",
             "timezone": "TimeZone"}


def record_of(command):
    """The record that a plain command brings or takes, or none."""
    return next((carried.type for carried in command.carries[1:] + command.answers), None)


def generated_functions(schema):
    return [(one, command) for one, command in schema.sending() if one.is_generated]


def includes_of(schema, types):
    return "".join(f'#include "{name}"\n'
                   for name in sorted({schema.records[one].header for one in types}))


# Codes

def error_codes(schema):
    width = max((len(f"{code.name} = {code.number},") for code in schema.codes), default=0)
    rows = "".join(f"    {f'{code.name} = {code.number},':<{width}}  // {code.meaning}\n"
                   for code in schema.codes)
    return f"""// Every result code of this library, by name, with its meaning.
//
// An operation returns 0 for success, a negative code of this list, or the number that the device
// itself put into its answer, passed on unchanged.
#pragma once

#include "Product/Technic/Export.h"

namespace fleetkit {{

namespace ErrorCode {{

enum Value : int {{
{rows}}};

}}  // namespace ErrorCode

// One line of English for a code of this library; for any other number the text says that it is
// the device's own. Never null, never to be freed; callable from any thread.
FLEETKIT_EXPORT const char* errorMeaning(int nCode) noexcept;

}}  // namespace fleetkit
"""


def error_meanings(schema):
    cases = "".join(f"        case ErrorCode::{code.name}:\n"
                    f'            return "{code.meaning}";\n' for code in schema.codes)
    return f"""#include "Product/Technic/ErrorCode.h"

const char* fleetkit::errorMeaning(int nCode) noexcept {{
    switch (nCode) {{
{cases}        default:
            return "the device's own result code";
    }}
}}
"""


# Ids

def command_ids(schema):
    """Constants by the names of the functions; of overloads with one command there is one."""
    ids = {"Acknowledgement": ACKNOWLEDGEMENT}
    for function, command in schema.sending():
        if command:
            ids[function.name] = command.request
            if command.response not in (ACKNOWLEDGEMENT, command.request):
                ids[function.name + "Reply"] = command.response
    rows = "".join(f"constexpr std::uint32_t {name} = {number};\n" for name, number in ids.items())
    return ("// The ids of the commands that the functions of these names send, and of their "
            "replies.\n"
            "#pragma once\n\n#include <cstdint>\n\nnamespace fleetkit {\nnamespace CommandId {\n\n"
            f"{rows}\n}}  // namespace CommandId\n}}  // namespace fleetkit\n")


def device_types(schema):
    """The numbers of the device types, as callers of the library tell them."""
    out = ["// The numbers by which callers tell the type of a device.\n#pragma once\n\n"
           "namespace fleetkit {\n"]
    for name, numbers in schema.device_types.items():
        tests = " || ".join(f"deviceType == {number}" for number in numbers)
        out.append(f"\n// Whether the number stands for a {name}; {capital(name)}Type is the usual"
                   f" one.\nconstexpr int {capital(name)}Type = {numbers[0]};\n"
                   f"constexpr bool is{capital(name)}(int deviceType) noexcept {{\n"
                   f"    return {tests};\n}}\n")
    return "".join(out) + "\n}  // namespace fleetkit\n"


# The tables of commands and functions

class CarriedTable:
    """Sequences of carried records, each of which stands in the table once."""

    def __init__(self):
        self.names = {}

    def rows(self, carried):
        if not carried:
            return "{}"
        key = tuple((one.type, one.is_list) for one in carried)
        return f"{{{self.names.setdefault(key, f'sequence{len(self.names)}')}, {len(key)}}}"

    def text(self):
        return "".join(
            f"constexpr CarriedRecord {name}[] = {{"
            + ", ".join(f"{{&{kind}::descriptor, {str(is_list).lower()}}}" for kind, is_list in key)
            + "};\n" for key, name in self.names.items())


def row_table(name, row, rows):
    if not rows:
        return f"const Rows<{row}> {name};\n\n"
    return (f"static constexpr {row} {name}Rows[] = {{\n{rows}}};\n"
            f"const Rows<{row}> {name}{{{name}Rows, std::size({name}Rows)}};\n\n")


def serves_of(function):
    return " | ".join(f"Of{capital(name)}" for name in function.serves) or "0"


def command_table(schema):
    carried = CarriedTable()
    commands = "".join(
        f"    {{{c.request}, {c.response}, {c.group}, {c.operation}, {carried.rows(c.carries)},"
        f" {carried.rows(c.answers)}}},\n" for c in schema.commands)
    functions = "".join(
        f'    {{"{one.name}", {command.request if command else 0},'
        f" {carried.rows(one.sends or (command.carries if command else []))},"
        f" {serves_of(one)},"
        f" {str(one.is_exported).lower()}, {str('endangers' in one.flags).lower()}}},\n"
        for one, command in schema.sending())
    types = {kind for key in carried.names for kind, _ in key}
    return ('#include "protocol/CommandTable.h"\n\n' + includes_of(schema, types)
            + "\nnamespace fleetkit {\n\nnamespace {\n\n" + carried.text()
            + "\n}  // namespace\n\n" + row_table("commandTable", "CommandDescriptor", commands)
            + row_table("functionTable", "FunctionDescriptor", functions)
            + "}  // namespace fleetkit\n")


# The functions of the class

def facade_function(function, command):
    record, ignored = record_of(command), ", const int&" if "ignored-int" in function.flags else ""
    head = f"int FleetKit::{function.name}(const long& handle"
    arguments = f"(handle, CommandId::{function.name}"
    if function.serves == ["camera"]:
        return (f"{head}, const int& deviceType, const int&, {record}& record) {{\n"
                f"    return getOfCamera{arguments}, deviceType, record);\n}}\n")
    if function.serves:
        return (f"{head}, const int& deviceType, const int& channel, {record}& record) {{\n"
                f"    return getByType{arguments}, deviceType, channel, record);\n}}\n")
    if record is None:
        return f"{head}{ignored}) {{\n    return act{arguments});\n}}\n"
    if command.answers:
        return (f"{head}{ignored}, {record}& record) {{\n"
                f"    return get{arguments}, record);\n}}\n")
    return (f"{head}{ignored}, const {record}& record) {{\n"
            f"    return set{arguments}, record);\n}}\n")


def facade_functions(schema):
    functions = generated_functions(schema)
    records = {record_of(command) for _, command in functions} - {None}
    return ('#include "device/FacadeCalls.h"\n#include "device/FleetKit.h"\n'
            + includes_of(schema, records) + '#include "protocol/CommandIds.h"\n\n'
            + "using namespace fleetkit;\nusing namespace FacadeCalls;\n\n"
            + "\n".join(facade_function(*one) for one in functions))


def function_list(schema):
    """The exported functions by name, one line for each overload."""
    return "".join(sorted(f"FleetKit::{one.name}\n" for one, _ in schema.sending()
                          if one.is_exported))


# fleetctl

def camel(name):
    return "".join(capital(part) for part in name.split("-"))


def options_of(names):
    return " | ".join(f"SelectorBit::{SELECTORS[name]}" for name in names) or "0"


def uses_of(schema):
    """What fleetctl gets, sets and does: name -> verb -> (use, function)."""
    uses = {}
    for function, command in schema.sending():
        for use in function.uses:
            uses.setdefault(use.name, {}).setdefault(use.verb, (use, function, command))
    return dict(sorted(uses.items()))


def callee(verb, name, function):
    place = "FleetKit::" + function.name if function.is_generated else f"Calls::{verb}{camel(name)}"
    return "&" + place


def property_row(name, verbs):
    use, function, _ = next(iter(verbs.values()))
    summary = next(one.summary for one, _, _ in verbs.values() if one.summary)
    needs, takes = use.needs, use.takes
    if function.serves and function.is_generated:
        takes = ["type", "channel"]
    get = callee("get", name, verbs["get"][1]) if "get" in verbs else "nullptr"
    change = callee("set", name, verbs["set"][1]) if "set" in verbs else "nullptr"
    return (f'        property<{get}, {change}>("{name}", "{summary}", '
            f"{options_of(takes + needs)}, {options_of(needs)}, {serves_of(function)}),\n")


def action_row(name, use, function):
    form = (f"Calls::do{camel(name)}" if not function.is_generated
            else f"plainAction<&FleetKit::{function.name}>()")
    endangers = str("endangers" in function.flags).lower()
    return f'        {{"{name}", "{use.summary}", {endangers}, {form}}},\n'


def fleetctl_tables(schema):
    uses = uses_of(schema)
    properties = "".join(property_row(name, verbs) for name, verbs in uses.items()
                         if "do" not in verbs)
    actions = "".join(action_row(name, *verbs["do"][:2]) for name, verbs in uses.items()
                      if "do" in verbs)
    records = {record_of(command) for _, command in generated_functions(schema)} - {None}
    includes = "".join(f"#include <fleetkit/{name}>\n"
                       for name in sorted({schema.records[one].header for one in records}))
    return ("#include <fleetkit/FleetKit.h>\n" + includes + '\n#include "Calls.h"\n'
            "\nusing namespace fleetkit;\n\nconst std::vector<Property>& properties() {\n"
            f"    static const std::vector<Property> vecProperties = {{\n{properties}    }};\n"
            "    return vecProperties;\n}\n\n"
            "const std::vector<Action>& actions() {\n"
            f"    static const std::vector<Action> vecActions = {{\n{actions}    }};\n"
            "    return vecActions;\n}\n")


# Tests

def plain_functions(schema):
    """A walk over the generated functions, for tests that have to call each of them."""
    rows = []
    for function, command in generated_functions(schema):
        kind = ("cameraAbility" if function.serves == ["camera"] else "ability" if function.serves
                else "get" if command.answers else "set" if record_of(command) else "act")
        if "ignored-int" in function.flags:
            kind += "IgnoringInt"
        rows.append(f'    visitor.{kind}("{function.name}", fleetkit::CommandId::{function.name}, '
                    f"FleetKit::{function.name});\n")
    records = {record_of(command) for _, command in generated_functions(schema)} - {None}
    return ("// Hands each generated function to a visitor: name, command, function.\n"
            "#pragma once\n\n"
            '#include "device/FleetKit.h"\n' + includes_of(schema, records)
            + '#include "protocol/CommandIds.h"\n\ntemplate <class Visitor>\n'
            "void visitPlainFunctions(Visitor& visitor) {\n" + "".join(rows) + "}\n")


def files_of_operations(schema, generated_by):
    """The generated files by their paths."""
    written, codes = generated_by("commands.schema"), generated_by("codes.schema")
    return {
        "Product/Technic/ErrorCode.h": codes + error_codes(schema),
        "Product/Technic/ErrorCode.cpp": codes + error_meanings(schema),
        "protocol/CommandIds.h": written + command_ids(schema),
        "protocol/CommandTable.cpp": written + command_table(schema),
        "device/DeviceType.h": written + device_types(schema),
        "device/FacadeFunctions.cpp": written + facade_functions(schema),
        "facade-functions.txt": function_list(schema),
        "fleetctl/CallTables.cpp": written + fleetctl_tables(schema),
        "tests/PlainFunctions.h": written + plain_functions(schema),
    }
