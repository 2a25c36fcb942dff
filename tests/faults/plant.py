"""Plants the faults of faults.txt one by one in a copy of the tree, and runs the tests on each.

usage: plant.py COPY [PATTERN]     only faults whose name has the pattern in it
Prints which tests found each fault; ends with 1 when one was not found.
"""

import re
import shutil
import subprocess
import sys
from pathlib import Path

TREE = Path(__file__).parents[2]
COPY = Path(sys.argv[1])
PATTERN = sys.argv[2] if len(sys.argv) > 2 else ""


def with_lines(text):
    return re.sub(r"\\(.)", lambda escape: "\n" if escape[1] == "n" else escape[1], text)


def faults():
    for block in Path(__file__).with_name("faults.txt").read_text().split("\n\n"):
        lines = block.rstrip("\n").split("\n")
        if not lines[0].startswith("#"):
            name, file, found, put = lines
            yield name, file, with_lines(found), with_lines(put)


def copy_of_the_tree():
    for name in subprocess.run(["git", "ls-files"], cwd=TREE, check=True, text=True,
                               stdout=subprocess.PIPE).stdout.splitlines():
        target = COPY / name
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or target.read_bytes() != (TREE / name).read_bytes():
            shutil.copyfile(TREE / name, target)
            shutil.copymode(TREE / name, target)


def finders():
    """The tests that fail, "the build" among them; none where all pass."""
    for build in (["cmake", "--preset", "dev", "-DCMAKE_COMPILE_WARNING_AS_ERROR=OFF"],
                  ["cmake", "--build", "--preset", "dev"]):
        if subprocess.run(build, cwd=COPY, capture_output=True, check=False).returncode != 0:
            return ["the build"]
    run = subprocess.run(["ctest", "--test-dir", "build/dev", "--stop-on-failure", "-j", "2"],
                         cwd=COPY, text=True, stdout=subprocess.PIPE, check=False)
    return re.findall(r"^\t *\d+ - (\S+)", run.stdout, re.MULTILINE)


def main():
    copy_of_the_tree()
    if finders():
        sys.exit("the tests fail without a fault")
    missed = 0
    for name, file, found, put in faults():
        if PATTERN not in name:
            continue
        whole = (COPY / file).read_text()
        if whole.count(found) != 1:
            sys.exit(f"{file} has not one place for: {name}")
        (COPY / file).write_text(whole.replace(found, put))
        tests = finders()
        missed += not tests
        print(f"{name}: {', '.join(tests) or 'NOT FOUND'}", flush=True)
        (COPY / file).write_text(whole)
    sys.exit(missed > 0)


main()
