"""Turns the schema of the wire vocabulary into C++.

    fleetkit_codegen.py --schema DIR --out DIR
"""

import argparse
import sys

from check import check_schema
from emit import emit_all
from schema import SchemaError, read_schema


def main():
    parser = argparse.ArgumentParser(description="Turns the schema into C++.")
    parser.add_argument("--schema", required=True, help="directory of the schema files")
    parser.add_argument("--out", required=True, help="directory of the generated files")
    arguments = parser.parse_args()
    try:
        schema = read_schema(arguments.schema)
        check_schema(schema)
    except SchemaError as error:
        print(f"schema error: {error}", file=sys.stderr)
        return 1
    emit_all(schema, arguments.out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
