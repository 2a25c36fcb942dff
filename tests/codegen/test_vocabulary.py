"""How large the vocabulary is, against cases/vocabulary.txt, and the tables against it."""

import re
import unittest
from collections import Counter

from support import CASES, ROOT, SchemaCase

import check
import printed
import schema


def facts_of(real):
    """The lines of cases/vocabulary.txt."""
    records = [record for record in real.records.values() if not record.is_element]
    lists = [domain.list_name for domain in real.domains if domain.list_name]
    yield f"records: {len(records)}"
    yield f"records with a name: {len(real.domains)}"
    yield f"names: {len({domain.name for domain in real.domains})}"
    yield f"records with a list name: {len(lists)}"
    yield f"list names: {len(set(lists))}"
    yield f"commands: {len(real.commands)}"
    responses = [command.response for command in real.commands]
    yield f"commands with a plain acknowledgement: {responses.count(schema.ACKNOWLEDGEMENT)}"
    operations = Counter(command.operation for command in real.commands)
    for number, what in enumerate(("writing commands", "reading commands", "other commands",
                                   "actions"), 1):
        yield f"{what}: {operations[number]}"
    yield from (f"{command.request} is answered by {command.response}" for command in real.commands
                if command.response not in (command.request + 1, schema.ACKNOWLEDGEMENT))
    marks = Counter()
    for field in (field for record in real.records.values() for field in record.fields):
        if field.kind in (*schema.SCALARS, "joined"):
            marks[field.presence or "zeroed"] += 1
        marks.update(field.flags)
        marks.update({"read-into": bool(field.read_into), "unread": bool(field.unread)})
    yield from (f"{mark}: {count}" for mark, count in marks.items())
    for domain in real.domains:
        if domain.class_name not in (domain.name, "Et" + domain.name):
            yield f"{domain.class_name} is {domain.name}"
        if domain.list_name not in (domain.name + "List", ""):
            yield f"list of {domain.name}: {domain.list_name}"
    yield from (f"entry of {record.name}: {record.entry}" for record in records if record.entry)


class Vocabulary(SchemaCase):
    def setUp(self):
        super().setUp()
        self.schema = ROOT / "schema"
        self.real = schema.read_schema(self.schema)
        check.check_schema(self.real)

    def test_is_what_is_written_down_of_it(self):
        written = (CASES / "vocabulary.txt").read_text().splitlines()
        self.assertEqual(sorted(facts_of(self.real)),
                         sorted(line for line in written if line and line[0] != "#"))

    def test_stands_in_the_tables_as_a_whole(self):
        self.assertEqual(self.generate(), (0, ""))
        descriptors = (self.out / "domain/DomainTables.cpp").read_text().split("};")[0]
        self.assertEqual(set(re.findall(r"&(\w+)::descriptor,", descriptors)),
                         set(self.real.records))
        rows = re.findall(r"^    \{(\d+), (\d+), (\d+), (\d),",
                          (self.out / "protocol/CommandTable.cpp").read_text(), re.M)
        self.assertEqual(rows, [
            tuple(map(str, (command.request, command.response, command.group, command.operation)))
            for command in self.real.commands])

    def test_names_of_nodes(self):
        for tag, name in (("PTZPresetV2List", "PTZ_PRESET_V2_LIST"), ("RS485List", "RS485_LIST"),
                          ("RS485OSDList", "RS485_OSD_LIST"), ("GPIOLEDList", "GPIOLED_LIST")):
            self.assertEqual(printed.node_name(tag), name)


if __name__ == "__main__":
    unittest.main()
