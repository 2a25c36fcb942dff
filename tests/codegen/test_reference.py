"""What the pages of the reference say about a schema."""

import filecmp
import re
import unittest
from html import unescape

from support import ROOT, SchemaCase

MADE = r"""# Doors: what opens and closes. They have no windows.

element Latch
    Force  int  logged

# One door of the building.
record DoorParam 7001
    Name      string = "front" required
    Port      u16    logged "no port \n"
    Height    float  = 2 kept
    Open      bool   falls true "opened {tag} \n"
    Count     int
    Latch     element Latch
    Latches   each Latch under LatchGroup
    Codes     joined int "(%d)" ";"
    Length    int
    Picture   block Length
    Keepers   list DoorKeeper     # who may open it
    PTZPorts  values int Port
    Secret    string write-only

record DoorKeeper 7002 entry "Keeper"
    Id  int  logged

record DoorEvent 7003 : DoorKeeper
    Time  double

domain 7001 DoorParam list GateList
domain 7002 DoorKeeper no-list
domain 7003 Event class DoorEvent
command 70 71 7 read carries DoorKeeper answers list DoorParam  # all at once
    openDoors  by-hand  get doors "All doors"
command 72 ack 7 write carries list DoorParam
"""

RESULT = "record EtResult 801\n    Code  int\ndomain 801 Result class EtResult\n"  # acknowledges


def rows_of(page, anchor):
    """The cells of an article's table, as the reader sees them."""
    article = page[page.index(f'<article id="{anchor}">'):].split("</article>")[0]
    body = article.split("<tbody>")[1].split("</tbody>")[0]
    cells = [re.findall(r"<td[^>]*>(.*?)</td>", row) for row in body.split("</tr>")[:-1]]
    return [[text(cell) for cell in row] for row in cells]


def facts_of(page, anchor):
    article = page[page.index(f'<article id="{anchor}">'):].split("</article>")[0]
    return {key: text(value) for key, value in re.findall(r"<dt>(.*?)</dt><dd>(.*?)</dd>", article)}


def text(markup):
    return unescape(re.sub(r"<[^>]+>", " ", markup)).replace("  ", " ").strip()


class ReferenceCase(SchemaCase):
    def page(self, name):
        return (self.out / name).read_text()


class MadeReference(ReferenceCase):
    def setUp(self):
        super().setUp()
        self.write(MADE, "doors.schema")
        self.write(RESULT, "acknowledgement.schema")
        self.assertEqual(self.generate("--reference"), (0, ""))

    def test_every_kind_of_field(self):
        lists = [r"getConfigNode NODE_KEEPERS failed\n parseDomainXmlNode objKeepers failed\n",
                 r"getConfigNode NODE_PTZ_PORTS failed\n parseDomainXmlNode objPTZPorts failed\n"]
        self.assertEqual(rows_of(self.page("doors.html"), "DoorParam"), [
            ["Name", "string", "front", "the record is refused",
             r"DoorParamXml::parseDomainXmlNode get Name failed \n"],
            ["Port", "unsigned short", "", "stays as it was", r"no port \n"],
            ["Height", "float", "2", "stays as it was", ""],
            ["Open", "bool", "", "becomes true", r"opened {tag} \n"],
            ["Count", "int", "", "becomes 0", ""],
            ["Latch", "Latch", "", "its fields count as absent", ""],
            ["Latches", "repeated Latch inside one LatchGroup", "", "becomes empty", ""],
            ["Codes", "list of int, each as (%d) , joined by ;", "", "becomes empty", ""],
            ["Length", "int", "", "becomes 0", ""],
            ["Picture", "bytes in base64, Length of them", "", "stays as it was", ""],
            ["Keepers Who may open it", "list of DoorKeeper , one Keeper each", "",
             "becomes empty", lists[0]],
            ["PTZPorts", "list of int, one Port each", "", "becomes empty", lists[1]],
            ["Secret Written, never read.", "string", "", "stays as it was, in any case", ""],
        ])

    def test_facts(self):
        page = self.page("doors.html")
        self.assertIn("<p>One door of the building.</p>", page)
        door, keeper = facts_of(page, "DoorParam"), facts_of(page, "DoorKeeper")
        self.assertEqual((door["Id"], door["Element"]), ("7001", "DoorParam"))
        self.assertEqual(door["List"], "DoorParamList when written, GateList when received")
        self.assertEqual((door["Carried by"], door["Answers"]), ("72 (a list)", "70 (a list)"))
        self.assertEqual(keeper["List entry"], "Keeper")
        self.assertEqual(keeper["List"],
                         "DoorKeeperList when written; a received one is not recognised")
        self.assertEqual(keeper["Nested in"], "DoorParam .Keepers")
        self.assertEqual(keeper["Base of"], "DoorEvent")
        self.assertEqual(facts_of(page, "DoorEvent")["Base"], "DoorKeeper")
        self.assertEqual(facts_of(page, "DoorEvent")["Element"], "Event")

    def test_inherited_fields_stand_first(self):
        rows = rows_of(self.page("doors.html"), "DoorEvent")
        self.assertEqual([row[0] for row in rows], ["Id", "Time"])
        self.assertIn("DoorKeeperXml::", rows[0][4])

    def test_example(self):
        article = self.page("doors.html").split('<article id="DoorParam">')[1]
        example = unescape(re.search(r"<pre>(.*?)</pre>", article, re.S)[1])
        self.assertEqual(example, """\
<DoorParam Name="front" Port="1" Height="2.000000" Open="true" Count="1" Codes="(1);(2)" \
Length="3" Picture="AQID" Secret="text">
	<Latch Force="1" />
	<LatchGroup>
		<Latches Force="1" />
	</LatchGroup>
	<Keepers>
		<Keeper Id="1" />
	</Keepers>
	<PTZPorts>
		<Port Port="1" />
	</PTZPorts>
</DoorParam>
""")

    def test_commands(self):
        rows = re.findall(r'<tr id="c(\d+)">(.*?)</tr>', self.page("commands.html"))
        cells = {int(number): [text(cell) for cell in re.findall(r"<td>(.*?)</td>", row)]
                 for number, row in rows}
        self.assertEqual(cells[70], ["70", "71", "7", "read", "DoorKeeper",
                                     "EtResult , list of DoorParam", "72", "openDoors",
                                     "all at once"])
        self.assertEqual(cells[72], ["72", "10000", "7", "write", "list of DoorParam", "EtResult",
                                     "70", "", ""])


class RealReference(ReferenceCase):
    def setUp(self):
        super().setUp()
        self.schema = ROOT / "schema"
        self.assertEqual(self.generate("--reference"), (0, ""))

    def test_every_record_and_command_has_its_place(self):
        pages = {path.name: path.read_text() for path in self.out.glob("*.html")}
        rows = re.findall(r"<tr[^>]*><td>\d+</td>", pages["commands.html"])
        self.assertEqual(len(rows), 509)
        records = sum(page.count('<span class="kind">record</span>') for page in pages.values())
        self.assertEqual(records, 716)

    def test_links_lead_somewhere_and_nothing_is_fetched(self):
        pages = {path.name: path.read_text() for path in self.out.glob("*.html")}
        anchors = {(name, anchor) for name, page in pages.items()
                   for anchor in re.findall(r' id="(\w+)"', page)}
        links = 0
        for name, page in pages.items():
            self.assertNotRegex(page, r"(href|src)=\"(https?:|//)")
            for target in re.findall(r'(?:href|src)="([^"]+)"', page):
                if target.startswith("../"):
                    continue  # around the reference, and checked with the whole
                path, _, anchor = target.partition("#")
                self.assertTrue((self.out / (path or name)).exists(), msg=f"{name}: {target}")
                if anchor:
                    self.assertIn((path or name, anchor), anchors, msg=f"{name}: {target}")
                links += 1
        self.assertGreater(links, 3000)
        index = re.findall(r'^\["[^"]*", "[^"]*", "([^"]*)"', self.page("search-index.js"), re.M)
        self.assertGreater(len(index), 716 + 500)
        for target in set(index):
            self.assertIn(tuple(target.split("#")), anchors)

    def test_the_same_schema_gives_the_same_pages(self):
        first, self.out = self.out, self.out.parent / "again"
        self.assertEqual(self.generate("--reference"), (0, ""))
        names = sorted(path.name for path in first.iterdir())
        self.assertEqual(filecmp.cmpfiles(first, self.out, names, shallow=False), (names, [], []))


if __name__ == "__main__":
    unittest.main()
