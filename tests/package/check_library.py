"""Checks what the shared library shows to its users, and its size.

usage: check_library.py LIBRARY EXPORTED-RECORDS

Every dynamic symbol has to belong to a function of exported-functions.txt (beside this file), to
one of facade-functions.txt (beside EXPORTED-RECORDS) or to an exported record, and each of these has
to be there. EXPORTED-RECORDS is the generator's list of the records' headers.
"""

import re
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

SONAME = "libFleetKit.so.1"
MAX_STRIPPED_SIZE = 4_000_000
# Classes with virtual functions that are no records. These are all inline, so that each user has
# the run-time information too, and the library shows it as far as it needs it itself.
BASES = ["BaseDomain", "DomainContainer"]


def output(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def exported_symbols(library):
    """The demangled names; of several symbols with one name (constructors) one."""
    lines = output("nm", "-D", "--defined-only", "--demangle", "--without-symbol-versions", library)
    entries = [line.split(maxsplit=2) for line in lines.splitlines()]
    return {name for _, kind, name in entries if kind != "A"}


def run_time_information(name):
    return {f"{what} for {name}" for what in ("vtable", "typeinfo", "typeinfo name")}


def members_of_record(name):
    return {f"{name}::{member}" for member in (
        f"{name}()", f"{name}({name} const&)", f"~{name}()", f"operator=({name} const&)",
        f"operator=({name}&&)", "descriptor()")} | run_time_information(name)


def check_symbols(library, record_list, records):
    listed = [line for path in (Path(__file__).with_name("exported-functions.txt"),
                                Path(record_list).with_name("facade-functions.txt"))
              for line in path.read_text().splitlines()]
    functions = Counter(line for line in listed if not line.startswith("#"))
    expected = set().union(*map(members_of_record, records))

    symbols = exported_symbols(library)
    rest = symbols.difference(expected, *map(run_time_information, BASES))
    found = Counter(symbol.partition("(")[0] for symbol in rest)
    problems = [f"missing: {name}" for name in sorted(expected - symbols)]
    problems += [f"missing: {name}" for name in sorted((functions - found).elements())]
    problems += [f"not to be shown: {name}" for name in sorted((found - functions).elements())]

    by_class = Counter(name.rpartition("::")[0] or "free functions" for name in found.elements())
    print(f"{library}: {len(symbols)} exported names; {len(records)} records, "
          + ", ".join(f"{name} {count}" for name, count in sorted(by_class.items())))
    return problems


def check_soname(library):
    name = re.search(r"\(SONAME\).*\[(.*)\]", output("readelf", "-d", "-W", library))
    return [] if name and name[1] == SONAME else [f"the soname is not {SONAME}"]


def check_size(library):
    with tempfile.TemporaryDirectory() as directory:
        stripped = Path(directory, "stripped.so")
        output("strip", "--strip-unneeded", "-o", str(stripped), library)
        size = stripped.stat().st_size
    print(f"stripped: {size} bytes of at most {MAX_STRIPPED_SIZE}")
    return [] if size < MAX_STRIPPED_SIZE else ["the library is too large"]


def main():
    library, record_list = sys.argv[1:]
    records = [Path(line).stem for line in Path(record_list).read_text().split()]
    problems = check_symbols(library, record_list, records) + check_soname(library) + check_size(library)
    print("\n".join(problems), end="\n" if problems else "")
    return 1 if problems or not records else 0


if __name__ == "__main__":
    sys.exit(main())
