"""services_example_test.py PROGRAM: what the services example prints in two runs on one set of
files."""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)

JSON_TEXTS = [{"available": True, "price": 19.9, "sizes": [38, 39], "sku": "A-17"},
              [{"count": 2, "sku": "B-2"}, {"count": 1, "sku": "A-17"}]]


def section(output, title):
    """The indented lines below the line of this title."""
    lines = output.splitlines()
    following = lines[lines.index(title) + 1:]
    end = next(i for i, line in enumerate(following) if not line.startswith("  "))
    return [line.strip() for line in following[:end]]


def json_texts(output):
    """The JSON texts, which begin and end in the first column."""
    texts = re.findall(r"^(?:\{.*?^\}|\[.*?^\])$", output, re.MULTILINE | re.DOTALL)
    return [json.loads(text) for text in texts]


class ServicesExample(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.data = pathlib.Path(folder.name, "data")
        self.cache = pathlib.Path(folder.name, "cache")

    def run_program(self):
        environment = os.environ | {"XDG_DATA_HOME": str(self.data),
                                    "XDG_CACHE_HOME": str(self.cache)}
        done = subprocess.run([PROGRAM], env=environment, capture_output=True, text=True,
                              timeout=50, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stderr, "")
        return done.stdout

    def test_the_first_run_finds_nothing(self):
        output = self.run_program()
        self.assertIn("settings: runs before this one 0, the last one: never\n", output)
        self.assertEqual(section(output, "database: what earlier runs have kept"), [])

    def test_the_second_run_finds_what_the_first_one_kept(self):
        self.run_program()
        output = self.run_program()
        self.assertRegex(output, r"settings: runs before this one 1, the last one: "
                                 r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d UTC\n")
        self.assertEqual(section(output, "database: what earlier runs have kept"),
                         ["1  A-17  17.5"])
        self.assertEqual(section(output, "database: with two new orders"),
                         ["4  B-2  5", "3  A-17  19.9", "1  A-17  17.5"])
        self.assertEqual(section(output, "database: after an update and a deletion"),
                         ["3  A-17  17.5", "1  A-17  17.5"])

    def test_json_is_read_changed_and_written(self):
        self.assertEqual(json_texts(self.run_program()), JSON_TEXTS)

    def test_what_is_dropped_and_deleted_is_gone(self):
        output = self.run_program()
        self.assertIn("a dropped table: database.query_exec_error: Table does not exist\n", output)
        self.assertIn("database files before and after one is deleted: 2, 1\n", output)
        self.assertFalse((self.cache / "services/scratch.db").exists())

    def test_it_says_where_its_files_lie(self):
        output = self.run_program()
        databases = re.search(r"^databases lie in (.*)$", output, re.MULTILINE)[1]
        settings = re.search(r"^settings lie in (.*)$", output, re.MULTILINE)[1]
        self.assertTrue(pathlib.Path(databases, "orders.db").is_file())
        self.assertTrue(pathlib.Path(settings).is_file())
        self.assertTrue(pathlib.Path(settings).is_relative_to(self.data))


if __name__ == "__main__":
    unittest.main()
