"""download_example_test.py SCRIPT BUILD: what the download example prints when the demo's script
runs it against the development server: for a new file, for one that has not changed, and for one
that has."""

import base64
import hashlib
import re
import subprocess
import sys
import unittest

SCRIPT, BUILD = sys.argv.pop(1), sys.argv.pop(1)


class DownloadExample(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        done = subprocess.run([SCRIPT, BUILD], capture_output=True, text=True, timeout=50,
                              check=False)
        cls.code, cls.errors = done.returncode, done.stderr
        # An announcement, then one part a download.
        cls.downloads = re.split(r"^The first .*|^The second .*|^Changed .*", done.stdout,
                                 flags=re.MULTILINE)[1:]

    def test_the_script_ends_well_and_says_nothing_else(self):
        self.assertEqual((self.code, self.errors), (0, ""))
        self.assertEqual(len(self.downloads), 3)

    def served_from(self, download):
        return re.search(r"^  served from (.*)$", self.downloads[download], re.MULTILINE)[1]

    def test_a_new_file_is_downloaded_without_conditions(self):
        self.assertRegex(self.downloads[0], r"(?m)^  GET https://\S+/rules\.json$")
        self.assertNotIn("If-", self.downloads[0])
        self.assertIn("\n  200 OK, 15 bytes\n", self.downloads[0])
        self.assertIn('\n  which holds: {"version": 1}\n', self.downloads[0])

    def test_a_file_that_has_not_changed_is_served_from_the_cache(self):
        self.assertRegex(self.downloads[1], r"(?m)^    If-Modified-Since: .* GMT$")
        self.assertRegex(self.downloads[1], r'(?m)^    If-None-Match: ".*"$')
        self.assertIn("\n  304 Not Modified, 0 bytes\n", self.downloads[1])
        self.assertEqual(self.served_from(1), self.served_from(0))
        self.assertIn('\n  which holds: {"version": 1}\n', self.downloads[1])

    def test_a_file_that_has_changed_is_downloaded_anew(self):
        self.assertRegex(self.downloads[2], r'(?m)^    If-None-Match: ".*"$')
        self.assertIn("\n  200 OK, 32 bytes\n", self.downloads[2])
        self.assertNotEqual(self.served_from(2), self.served_from(0))
        self.assertIn('\n  which holds: {"version": 2, "changed": true}\n', self.downloads[2])

    def test_a_cached_file_is_named_after_url_date_and_tag(self):
        url = re.search(r"(?m)^  GET (.*)$", self.downloads[0])[1]
        digest = base64.b64encode(hashlib.sha256(url.encode()).digest()).decode().replace("/", "_")
        tag = re.search(r"(?m)^    If-None-Match: (.*)$", self.downloads[1])[1]
        self.assertRegex(self.served_from(0),
                         f"^{re.escape(digest)}\\.[1-9][0-9]*_{tag.encode().hex().upper()}$")


if __name__ == "__main__":
    unittest.main()
