"""Turns the schema of the wire vocabulary into C++, and into the pages of the reference.

    fleetkit_codegen.py --schema DIR [--out DIR] [--reference DIR] [--examples FILE]

Without a place to write to, it only checks the schema.
"""

import argparse
import sys

from check import check_schema
from emit import emit_all
from reference import write_examples, write_reference
from schema import SchemaError, read_schema


def main():
    parser = argparse.ArgumentParser(description="Turns the schema into C++ and its reference.")
    parser.add_argument("--schema", required=True, help="directory of the schema files")
    parser.add_argument("--out", help="directory of the generated C++")
    parser.add_argument("--reference", help="directory of the reference's pages")
    parser.add_argument("--examples", help="file for the example elements alone")
    arguments = parser.parse_args()
    try:
        schema = read_schema(arguments.schema)
        check_schema(schema)
    except SchemaError as error:
        print(f"schema error: {error}", file=sys.stderr)
        return 1
    for write, place in ((emit_all, arguments.out), (write_reference, arguments.reference),
                         (write_examples, arguments.examples)):
        if place:
            write(schema, place)
    return 0


if __name__ == "__main__":
    sys.exit(main())
