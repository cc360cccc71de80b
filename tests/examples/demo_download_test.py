"""demo_download_test.py SCRIPT: fails unless the script shows a file that is downloaded, found
unchanged, and downloaded anew, and the names that the cache gives it."""

import base64
import hashlib
import re
import subprocess
import sys
import unittest

SHOWN = subprocess.run([sys.argv[1]], capture_output=True, text=True, timeout=50, check=False)


def shown(pattern):
    return re.findall(rf"^ *{pattern}$", SHOWN.stdout, re.M)


class DemoDownloadTest(unittest.TestCase):
    def setUp(self):
        self.assertEqual(SHOWN.returncode, 0, SHOWN.stdout + SHOWN.stderr)
        self.urls = shown(r"GET (https://localhost:\d+/rules\.json)")
        self.names = shown(r"served from (\S+)")
        self.tags = shown(r"If-None-Match: (.+)")

    def test_the_server_answers_200_then_304_then_200(self):
        self.assertEqual(len(self.urls), 3)
        self.assertEqual(shown(r"(\d+ [A-Z].*), \d+ bytes"), ["200 OK", "304 Not Modified", "200 OK"])

    def test_the_file_stays_until_it_has_changed(self):
        first, second, third = self.names
        self.assertEqual(first, second)
        self.assertNotEqual(second, third)
        self.assertEqual(shown(r"which holds: (.*)"),
                         ['{"version": 1}', '{"version": 1}', '{"version": 2, "changed": true}'])

    def test_the_file_is_named_after_url_date_and_tag(self):
        digest = base64.b64encode(hashlib.sha256(self.urls[0].encode()).digest()).decode()
        for name, tag in zip(self.names, self.tags):
            front, _, extension = name.rpartition(".")
            seconds, _, hexadecimal = extension.partition("_")
            self.assertEqual(front, digest.replace("/", "_"))
            self.assertGreater(int(seconds), 1_700_000_000)
            self.assertEqual(hexadecimal, tag.encode().hex().upper())

    def test_what_is_cached_is_asked_for_with_its_date_and_tag(self):
        self.assertEqual(len(self.tags), 2)
        self.assertEqual(len(shown(r"If-Modified-Since: (.+ GMT)")), 2)
        self.assertEqual(self.tags[0], self.tags[1])


unittest.main(argv=sys.argv[:1])
