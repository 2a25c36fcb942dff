"""Writes what the fuzz targets begin with: seeds made from the schema and golden bytes, and a
dictionary of the names of the wire."""

import sys
from pathlib import Path

PLACE, CODEGEN, SCHEMA = sys.argv[1:]
sys.path.insert(0, CODEGEN)

from schema import read_schema
from vocabulary import Vocabulary

SUCCESS = '<Result Code="0" />'
BINARY = {  # by command, a body each
    14006: "FFFFFFFE 00000005 00000002 5550 00000004 67617465 00000006",
    15020: "00000004 C1 01020201 64617461",
    31026: "00000003 00000102 494D47",
    33019: "00000003 78797A 00000002 80000003",
    33026: "00000002 6162",
}
TEXTS = ["192.0.2.7", "::1", "fe80::1%eth0", "[::1]:30001", "host.example:1", "QUJDRA==",
         "QUJD\r\nRA==", "NTPPort=123", "NTPIp=\"x\\u0000\"", "NTPEnableFlag=true",
         '<UserParam UserName="a" Password="b" Desc="" />', "caf\u00e9 \u202e"]


def write(target, name, content):
    directory = Path(PLACE) / target
    directory.mkdir(parents=True, exist_ok=True)
    (directory / name).write_bytes(content)


def body(*elements):
    return ('<?xml version="1.0" encoding="UTF-8"?>\r\n<Parameters Version="1">\n'
            + "\n".join(elements) + "\n</Parameters>\n").encode()


def main():
    schema = read_schema(Path(SCHEMA))
    vocabulary = Vocabulary(schema)

    words = set()
    for record in schema.records.values():
        words.add(record.name)
        words |= {field.name for field in record.fields}
    for command in schema.commands:
        records = [vocabulary.example(schema.records[one.type]) for one in command.carries]
        write("device", str(command.request),
              b"\1" + command.request.to_bytes(2, "big") + body('<ChannelId Id="1" />', *records))
    for record in schema.records.values():
        if not record.is_element:
            write("command", record.name,
                  b"\1" + (30508).to_bytes(2, "big") + body(SUCCESS, vocabulary.example(record)))
    for number, text in BINARY.items():
        write("command", f"binary-{number}",
              b"\1" + number.to_bytes(2, "big") + bytes.fromhex(text))
    write("command", "numbered", b"\3\0\7" + bytes.fromhex("FFFFFFFF 656C6576656E"))
    for kind, count in [(0, 24), (1, 24), (2, 24), (0, 60), (201, 24)]:
        answer = body(SUCCESS).ljust(count * 4, b" ")
        write("head", f"{kind}-{count}", bytes([kind, count]) + answer[:count * 4])
    write("head", "golden", bytes.fromhex("AFAF00010001000000002AF90000000000000092000041 23"))
    for number, text in enumerate(TEXTS):
        write("text", str(number), text.encode())
    dictionary = "".join(f'"{word}"\n' for word in sorted(words))
    (Path(PLACE) / "dictionary").write_text(dictionary, encoding="utf-8")


main()
