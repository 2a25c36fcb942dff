"""Every schema that does not hold together is refused with file, line and reason."""

import unittest

from support import SchemaCase

import check
import schema

# What is wrong with a field, written behind four blanks on line 2 of a record's file.
FIELDS = [
    ("9Lives int", "a field name is not a name: 9Lives"),
    ("Größe int", "a field name is not a name: Größe"),
    ("Speed", "a type is missing"),
    ("Speed i64", "unknown type: i64"),
    ("Speed int soon", "unknown word: soon"),
    ("Speed int =", "a default is missing"),
    ('Name string = "open', "a text without its closing quote"),
    ("Speed int = fast", "the default does not fit the type int: fast"),
    ("Speed int = 2147483648", "the default does not fit the type int: 2147483648"),
    ("Speed int = 1.5", "the default does not fit the type int: 1.5"),
    ("Port u16 = 65536", "the default does not fit the type u16: 65536"),
    ("Port u16 = -1", "the default does not fit the type u16: -1"),
    ("Flag bool = 1", "the default does not fit the type bool: 1"),
    ("Rate float = 1e3", "the default does not fit the type float: 1e3"),
    ("Inner record Other = 5", "a record has no default"),
    ("Speed int kept logged", "both kept and logged"),
    ('Speed int kept "words"', "a kept field prints nothing"),
    ("Speed int logged \"{what}\"", "unknown placeholder: {what}"),
    ("Speed int logged \"{tag\"", "a brace without its partner"),
    ("Speed int logged \"tag}\"", "a brace without its partner"),
    ('Speed int absent "words"', "Speed prints nothing when it is absent"),
    ('Speed int bad "words"', "Speed is never a bad list"),
    ('Speed int unwritten "words"', "Speed is always written"),
    ("Speed int falls", "the fallback is missing"),
    ("Speed int falls 5", "the words of a fallback is missing (a text in quotes)"),
    ('Speed int falls x "words"', "the fallback does not fit the type int: x"),
    ("Inner record", "the type of a record is missing"),
    ("Inner record Nowhere", "no such record: Nowhere"),
    ("Inner record Piece", "no such record: Piece"),
    ("Inner record Other logged", "a record cannot be logged"),
    ('Inner record Other required "words"', "a record cannot be required"),
    ("Items list Nowhere", "no such record: Nowhere"),
    ("Items list Other kept", "a list cannot be kept"),
    ('Items list Other absent "{tag}"', "the words of a list have no placeholders"),
    ("Part element Other", "no such element: Other"),
    ("Part element Piece unread Colour", "no such field to leave unread: Colour"),
    ("Parts each Piece unread X", "no such field to leave unread: X"),
    ("Parts each Other", "no such element: Other"),
    ("Part element Piece under Around", "only repeated elements can stand under another"),
    ("Ids values float Id", "values are int or string, not float"),
    ("Ids values int", "the tag of each value is missing"),
    ("Ids values int Id under Around", "only repeated elements can stand under another"),
    ("Speed int bare", "only values can be bare"),
    ('Ids joined int ","', "the separator is missing (a text in quotes)"),
    ('Ids joined int "%d" ""', "the separator is empty"),
    ('Ids joined int "%d-%d" ","', "the pattern has 2 numbers, not 1"),
    ('Ids joined Piece "%d" ","', "the pattern has 1 numbers, not 2"),
    ('Ids joined Other "%d" ","', "joined pieces are int or a record of ints: Other"),
    ('Ids joined Nowhere "%d" ","', "joined pieces are int or a record of ints: Nowhere"),
    ("Data block Length", "the length of a block is an int field before it: Length"),
    ("Speed int omit-empty", "only a string can be omitted when empty"),
    ("Name string read-as float", "only an int can be read as float"),
    ("Speed int read-as int", "a number can only be read as float"),
    ("Speed int read-into Nothing", "cannot be read into Nothing"),
    ("Speed int read-only", "Speed is read again, and was never read"),
    ("Speed int write-only kept", "what is never read cannot be kept"),
]

# What else is wrong, by the whole file; the number of the line stands first.
FILES = [
    (1, "recrod Made 1", "unknown keyword: recrod"),
    (1, '"Made"', "a keyword is missing"),
    (1, "    Speed int", "a field without a record"),
    (2, "record Made 1\n\tSpeed int", "a tab; the schema is indented by four blanks"),
    (2, b"record Made 1\n    # caf\xe9", "not UTF-8"),
    (1, "record Made", "the domain id is missing"),
    (1, "record Made one", "the domain id is not a number: one"),
    (1, "record Made 4294967296", "the domain id is not a number: 4294967296"),
    (1, "record Made 1 soon", "unknown word: soon"),
    (1, "record Made 1 entry Tag", "the tag of a list entry is missing (a text in quotes)"),
    (1, "record Made 1 : Nowhere", "no such base record: Nowhere"),
    (2, "element Part\nrecord Made 1 : Part", "no such base record: Part"),
    (1, "record Made 1 in elsewhere", "no such room: elsewhere"),
    (1, "record Made none odd", "an odd mapper is found by an id"),
    (1, "record Made 99999", "id 99999 belongs to lists"),
    (1, "record Made 416", "id 416 belongs to DataBuffer"),
    (2, "record Made 1\nrecord Made 2", "Made stands already at made.schema:1"),
    (2, "record Made 2\nrecord Older 1", "Older is out of order: id 1"),
    (2, "record Made 2\nrecord Twin 2", "Twin is out of order: id 2"),
    (3, "record Made 1\n    Id int\n    Id int", "Id stands already at made.schema:2"),
    (3, "record Made 1\n    Id int\n    id int", "id stands already at made.schema:2"),
    (4, "record Made 1\n    Id int\nrecord More 2 : Made\n    Id int",
     "Id stands already at made.schema:2"),
    (3, "record Made 1\n    Id int\n    Id string read-only", "Id is read again as another type"),
    (3, "record Made 1\n    Name string\n    Speed int read-into Name",
     "cannot be read into Name"),
    (2, "record Made 1\n    Data block Length\n    Length int",
     "the length of a block is an int field before it: Length"),
    (1, "record Made 1\n    Inner record Made", "Made holds itself"),
    (1, "record Made 1\n    Items list Made", "Made holds itself"),
    (1, "record Made 1\n    Inner record More\nrecord More 2\n    Items list Made",
     "Made holds itself"),
    (1, "element Part soon", "unknown word: soon"),
    (2, "element Part\n    absent words", "the words of absent is missing (a text in quotes)"),
    (1, "element Part\n    absent \"{what}\"", "unknown placeholder: {what}"),
    (1, "domain 1 Nowhere", "no such record: Nowhere"),
    (2, "record Made 1\ndomain 2 Made", "Made has the id 1 at made.schema:1"),
    (2, "record Made none\ndomain 0 Made", "Made has the id 0 at made.schema:1"),
    (2, "record Made 1\ndomain 1 Made soon", "unknown word: soon"),
    (2, "record Made 1\ndomain 1 Made class", "the class is missing"),
    (4, "record Made 1\nrecord More 2\ndomain 2 More\ndomain 1 Made", "out of order: id 1"),
    (3, "record Made 1\ndomain 1 Made\ndomain 1 Other class Made", "out of order: id 1"),
    (1, "command 1 ack", "the group is missing"),
    (1, "command 1 2 3 do", "unknown operation: do"),
    (1, "command 1 2 3 read soon", "unknown word: soon"),
    (1, "command x ack 1 read", "the request is not a number: x"),
    (2, "command 1 ack 1 read\ncommand 1 2 1 read", "1 stands already with another content"),
    (1, "command 1 2 3 read carries", "a record that the command carries is missing"),
    (1, "command 1 2 3 read answers list", "the record of the list is missing"),
    (1, "command 1 2 3 read carries Nowhere", "Nowhere never stands at the top of a body"),
    (2, "record Made 1\ncommand 1 2 3 read answers Made",
     "Made never stands at the top of a body"),
    (3, "record Made 1\ndomain 1 Made\ncommand 1 2 3 read carries Made carries Made",
     "carries stands twice"),
    (3, "record Made 1\ndomain 1 Made no-list\ncommand 1 2 3 read answers list Made",
     "a received list of Made is not recognised"),
    (3, "record Made 1\ndomain 1 Made\ncommand 1 ack 3 read answers Made",
     "an acknowledgement answers nothing but a result code"),
    (1, "export Nowhere", "no such record: Nowhere"),
    (1, "export Made Twin", "unknown word: Twin"),
]

REST = "\nrecord Other 2\n    Name string\nelement Piece\n    X int\n    Y int\n"


class Refusals(SchemaCase):
    def assert_refused(self, line, text, reason):
        self.write(text)
        with self.assertRaises(schema.SchemaError, msg=text) as caught:
            check.check_schema(schema.read_schema(self.schema))
        self.assertEqual(str(caught.exception), f"made.schema:{line}: {reason}", msg=text)

    def test_field(self):
        for field, reason in FIELDS:
            self.assert_refused(2, f"record Made 1\n    {field}{REST}", reason)

    def test_file(self):
        for line, text, reason in FILES:
            self.assert_refused(line, text, reason)

    def test_ids_are_unique_across_files(self):
        self.write("record Made 1")
        self.write("record Twin 1", "other.schema")
        self.assertEqual(
            self.generate(),
            (1, "schema error: other.schema:1: id 1 stands already at made.schema:1\n"))
        self.assertFalse(self.out.exists())

    def test_a_directory_without_a_schema(self):
        self.assertEqual(self.generate(), (1, f"schema error: {self.schema}: no schema files\n"))


if __name__ == "__main__":
    unittest.main()
