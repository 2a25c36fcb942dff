"""Schemas in a place of the test's own, and the generator that reads them."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CASES = Path(__file__).resolve().parent / "cases"
sys.path.insert(0, str(ROOT / "codegen"))


class SchemaCase(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = Path(directory.name)
        self.schema, self.out = self.place / "schema", self.place / "out"
        self.schema.mkdir()

    def write(self, text, name="made.schema"):
        data = text if isinstance(text, bytes) else text.encode()
        (self.schema / name).write_bytes(data)

    def generate(self, what="--out", out=None):
        """Runs the generator as the build does; gives its exit status and its error text."""
        done = subprocess.run(
            [sys.executable, "-B", ROOT / "codegen" / "fleetkit_codegen.py",
             "--schema", self.schema, what, out or self.out],
            capture_output=True, text=True, check=False)
        return done.returncode, done.stderr
