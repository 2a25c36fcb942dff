"""Checks what the shared libraries show to their users, and their size.

usage: check_library.py EXPORTED-RECORDS LIBRARY...

Every dynamic symbol has to belong to a function of exported-functions.txt (beside this file), to
one of facade-functions.txt (beside EXPORTED-RECORDS) or to an exported record, and each of these
has to be there. EXPORTED-RECORDS is the generator's list of the records' headers.
"""

import ctypes
import os
import re
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

SOVERSION = 1
MAX_STRIPPED_SIZE = 4_000_000
# Classes with virtual functions that are no records. These are all inline, so that each user has
# the run-time information too, and the library shows it as far as it needs it itself.
BASES = ["BaseDomain", "DomainContainer"]


def output(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def exported_symbols(library):
    """The demangled names; of several symbols with one name (constructors) one."""
    lines = output("nm", "-D", "--defined-only", "--demangle", "--without-symbol-versions",
                   library)
    entries = [line.split(maxsplit=2) for line in lines.splitlines()]
    return {name for _, kind, name in entries if kind != "A"}


def run_time_information(name):
    return {f"{what} for {name}" for what in ("vtable", "typeinfo", "typeinfo name")}


def members_of_record(name):
    return {f"{name}::{member}" for member in (
        f"{name}()", f"{name}({name} const&)", f"~{name}()", f"operator=({name} const&)",
        f"operator=({name}&&)", "descriptor()")} | run_time_information(name)


def check_symbols(libraries, record_list, records):
    listed = [line for path in (Path(__file__).with_name("exported-functions.txt"),
                                Path(record_list).with_name("facade-functions.txt"))
              for line in path.read_text().splitlines()]
    functions = Counter(line for line in listed if not line.startswith("#"))
    expected = set().union(*map(members_of_record, records))

    symbols = set().union(*map(exported_symbols, libraries))
    rest = symbols.difference(expected, *map(run_time_information, BASES))
    found = Counter(symbol.partition("(")[0] for symbol in rest)
    problems = [f"missing: {name}" for name in sorted(expected - symbols)]
    problems += [f"missing: {name}" for name in sorted((functions - found).elements())]
    problems += [f"not to be shown: {name}" for name in sorted((found - functions).elements())]

    by_class = Counter(name.rpartition("::")[0] or "free functions" for name in found.elements())
    print(f"{len(symbols)} exported names; {len(records)} records, "
          + ", ".join(f"{name} {count}" for name, count in sorted(by_class.items())))
    return problems


def check_binding(library):
    """What the library defines is bound inside of it: no program can take its place."""
    defined = {line.split()[-1].partition("@")[0]
               for line in output("nm", "-D", "--defined-only", library).splitlines()}
    bound = {fields[4].partition("@")[0]
             for fields in map(str.split, output("readelf", "-rW", library).splitlines())
             if len(fields) > 4}
    return [f"bound outward: {name}" for name in sorted(defined & bound)]


def check_soname(library):
    name = re.search(r"\(SONAME\).*\[(.*)\]", output("readelf", "-d", "-W", library))
    expected = f"{Path(library).name}.{SOVERSION}"
    return [] if name and name[1] == expected else [f"the soname is not {expected}"]


def check_closing(library):
    """Its threads go on in the library when the last user has closed it."""
    handle = ctypes.c_void_p(ctypes.CDLL(str(library))._handle)
    ctypes.CDLL(None).dlclose(handle)
    try:
        ctypes.CDLL(str(library), mode=os.RTLD_NOLOAD)
    except OSError:
        return ["the library leaves the process when it is closed"]
    return []


def check_size(libraries):
    size = 0
    with tempfile.TemporaryDirectory() as directory:
        for library in libraries:
            stripped = Path(directory, Path(library).name)
            output("strip", "--strip-unneeded", "-o", str(stripped), library)
            size += stripped.stat().st_size
    print(f"stripped: {size} bytes of at most {MAX_STRIPPED_SIZE}")
    return [] if size < MAX_STRIPPED_SIZE else ["the libraries are too large"]


def main():
    record_list, *libraries = sys.argv[1:]
    records = [Path(line).stem for line in Path(record_list).read_text().split()]
    problems = check_symbols(libraries, record_list, records) + check_size(libraries)
    for library in libraries:
        problems += check_binding(library) + check_soname(library)
    problems += check_closing(libraries[0])
    print("\n".join(problems), end="\n" if problems else "")
    return 1 if problems or not records else 0


if __name__ == "__main__":
    sys.exit(main())
