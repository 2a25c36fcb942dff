"""What the generator writes for a schema that holds together."""

import json
import os
import re
import shutil
import subprocess
import unittest

from support import ROOT, SchemaCase

MADE = """\
# A door: what a newcomer adds first.

element Latch
    Force  int

# One door of the building.
record DoorParam 7001 entry "Door"
    Name     string = "front"
    Port     u16 = 80
    Height   float = 2
    Latch    element Latch
    Latches  each Latch under LatchGroup
    Codes    joined int "%d" ","
    Length   int
    Picture  block Length
    Keepers  list DoorKeeper     # who may open it

record DoorKeeper 7002
    Id  int logged

record DoorEvent 7003 : DoorKeeper
    Time  double

domain 7001 DoorParam list DoorList
domain 7002 DoorKeeper no-list
domain 7003 Event class DoorEvent
command 70 71 7 read
command 72 ack 7 write
export DoorParam
"""


def entries_of(out):
    """What fleetctl is given to print, by the names that find it."""
    text = (out / "fleetctl/VocabularyEntries.cpp").read_text()
    return {names: json.loads(told) for names, told in
            re.findall(r'^    \{"([^"]*)",\n     R"json\((.*)\)json"\},$', text, re.M)}


class Generate(SchemaCase):
    def setUp(self):
        super().setUp()
        self.write(MADE, "door.schema")
        self.assertEqual(self.generate(), (0, ""))

    def text(self, name):
        return (self.out / name).read_text()

    def assert_holds(self, name, *lines):
        text = self.text(name)
        for line in lines:
            self.assertIn(line + "\n", text, msg=name)

    def test_record_class(self):
        self.assert_holds(
            "domain/DoorParam.h",
            "// One door of the building.",
            "    static constexpr std::uint32_t DomainId = 7001;",
            '    std::string m_strName = "front";',
            "    unsigned short m_nPort = 80;",
            "    float m_fHeight = 2.0F;",
            "    Latch m_latch;",
            "    std::vector<Latch> m_vecLatches;",
            "    std::vector<int> m_vecCodes;",
            "    std::optional<std::vector<std::uint8_t>> m_optPicture;",
            "    std::vector<DoorKeeper> m_vecKeepers;",
            "    // who may open it")
        for name, line in (("DoorParam", r"class FLEETKIT_EXPORT DoorParam .*: public BaseDomain"),
                           ("DoorEvent", r"class DoorEvent .*: public DoorKeeper"),
                           ("Latch", r"class FLEETKIT_EXPORT Latch\b")):
            self.assertRegex(self.text(f"domain/{name}.h"), line)
        self.assert_holds("domainxml/DoorRecordsXml.h",
                          "using DoorParamXml = TypedXml<DoorParam>;")

    def test_tables_are_in_step(self):
        tables = self.text("domain/DomainTables.cpp")
        singles = tables[tables.index("singles[]"):tables.index("lists[]")]
        lists = tables[tables.index("lists[]"):]
        self.assertIn('{"Event", &DoorEvent::descriptor}', singles)
        self.assertIn('{"DoorList", &DoorParam::descriptor}', lists)
        self.assertIn('{"EventList", &DoorEvent::descriptor}', lists)
        self.assertNotIn("DoorKeeper", lists)
        self.assert_holds("protocol/CommandTable.cpp",
                          "    {70, 71, 7, 2, {}, {}},", "    {72, 10000, 7, 1, {}, {}},")
        self.assertEqual(
            self.text("exported-records.txt"),
            "domain/DoorKeeper.h\ndomain/DoorParam.h\ndomain/Latch.h\n")

    def test_the_first_row_wins_a_doubled_name(self):
        self.write("record Bell 1\nrecord EtBell 2\ndomain 1 Bell\ndomain 2 Bell class EtBell\n",
                   "bell.schema")
        self.assertEqual(self.generate(), (0, ""))
        self.assertEqual(self.text("domain/DomainTables.cpp").count('{"Bell"'), 1)
        self.assertIn('{"Bell", &Bell::descriptor}', self.text("domain/DomainTables.cpp"))

    def test_what_did_not_change_is_not_written_again(self):
        paths = [path for path in self.out.rglob("*") if path.is_file()]
        for path in paths:
            os.utime(path, (1, 1))
        self.write(MADE.replace("Time  double", "Time  int"), "door.schema")
        self.assertEqual(self.generate(), (0, ""))
        changed = {path.name for path in paths if path.stat().st_mtime != 1}
        self.assertEqual(changed, {"DoorEvent.h", "DoorRecords.cpp", "VocabularyEntries.cpp"})

    def test_what_is_no_more_is_removed(self):
        foreign = self.out / "domain" / "Foreign.h"
        foreign.write_text("// Of somebody else.\n")
        self.write("record Bell 1\n", "bell.schema")
        self.assertEqual(self.generate(), (0, ""))
        self.assertTrue((self.out / "domain/BellRecords.cpp").exists())
        (self.schema / "bell.schema").unlink()
        self.assertEqual(self.generate(), (0, ""))
        self.assertEqual([path.name for path in self.out.rglob("*Bell*")], [])
        self.assertTrue(foreign.exists())

    def test_vocabulary_entries(self):
        entries = entries_of(self.out)
        keeper = entries["DoorKeeper 7002"]
        self.assertEqual(keeper, {
            "record": "DoorKeeper", "family": "door", "id": 7002, "element": "DoorKeeper",
            "list": "DoorKeeperList when written; a received one is not recognised",
            "listEntry": "DoorKeeper", "header": "<fleetkit/domain/DoorKeeper.h>",
            "baseOf": ["DoorEvent"], "nestedIn": ["DoorParam.Keepers"],
            "fields": [{"name": "Id", "type": "int", "absent": "stays as it was", "printed":
                        [r"DoorKeeperXml::parseDomainXmlNode get Id failed \n"]}],
            "example": '<DoorKeeper Id="1" />\n'})
        self.assertEqual(entries["DoorEvent Event EventList 7003"]["fields"][0]["inheritedFrom"],
                         "DoorKeeper")
        self.assertEqual(entries["70"], {"command": 70, "reply": 71, "group": 7,
                                         "operation": "read", "sameGroup": ["72"]})

    def test_the_result_compiles(self):
        compiler = shutil.which("c++") or self.skipTest("no compiler")
        done = subprocess.run(
            [compiler, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror",
             "-I", ROOT / "src", "-I", self.out, self.out / "domain/DoorRecords.cpp"],
            capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))


class RealSchema(unittest.TestCase):
    def test_counts(self):
        import check
        import schema
        real = schema.read_schema(ROOT / "schema")
        check.check_schema(real)
        records = [record for record in real.records.values() if not record.is_element]
        lists = [domain.list_name for domain in real.domains if domain.list_name]
        rows = {domain.class_name for domain in real.domains}
        self.assertEqual(len(records), 716)
        self.assertEqual(len(real.domains), 649)
        self.assertEqual(len({domain.name for domain in real.domains}), 641)
        self.assertEqual((len(lists), len(set(lists))), (575, 567))
        self.assertEqual(sum(record.has_id and record.name not in rows for record in records), 66)
        self.assertEqual([r.name for r in records if not r.has_id], ["IntelligentEvent"])
        self.assertEqual([r.name for r in records if "odd" in r.flags], ["EtPTZOperation"])
        self.assertEqual(len(real.commands), 509)


if __name__ == "__main__":
    unittest.main()
