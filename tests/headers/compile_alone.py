"""Compiles each public header alone, as C++17, the way a user's first line would include it.

usage: compile_alone.py COMPILER INCLUDE-DIRECTORY
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

FLAGS = ["-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-x", "c++"]


def main():
    compiler, root = sys.argv[1], Path(sys.argv[2])
    headers = sorted(str(path.relative_to(root)) for path in root.rglob("fleetkit/**/*.h"))

    def compile_alone(header):
        run = subprocess.run([compiler, *FLAGS, "-I", str(root), "-"], text=True,
                             input=f"#include <{header}>\n", capture_output=True, check=False)
        return "" if run.returncode == 0 else f"{header}:\n{run.stderr}"

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = [text for text in pool.map(compile_alone, headers) if text]
    print("\n".join(failures) + f"{len(headers)} headers, {len(failures)} do not compile alone")
    return 1 if failures or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
