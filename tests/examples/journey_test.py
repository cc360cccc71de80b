"""journey_test.py DEMO BUILD WORK: what the sample shop's journey shows, and what it leaves."""

import json
import os
import pathlib
import re
import subprocess
import sys
import time
import unittest

DEMO, BUILD, WORK = sys.argv[1:4]
del sys.argv[1:4]

SERVICES = ["system information", "crypto", "JSON", "encoding", "URLs", "network", "logging",
            "screen", "local storage", "remote files", "compressed files", "file system",
            "database"]


class Journey(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        begin = time.monotonic()
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        cls.done = subprocess.run([DEMO, BUILD, WORK], env=environment, capture_output=True,
                                  text=True, timeout=100, check=False)
        cls.seconds = time.monotonic() - begin
        chapters = cls.done.stdout.split("\n=== ")
        cls.first, cls.second, cls.third = chapters[2:5]

    def hits(self):
        lines = pathlib.Path(WORK, "collected.jsonl").read_text().splitlines()
        return [json.loads(json.loads(line)["body"]) for line in lines]

    def test_it_runs_to_its_end_by_itself(self):
        self.assertEqual(self.done.returncode, 0, self.done.stderr)
        self.assertLess(self.seconds, 30)

    def test_every_service_leaves_a_trace(self):
        table = self.third.split("What the services did, and where:\n\n")[1].split("\n\n")[0]
        rows = table.splitlines()[::2]
        places = table.splitlines()[1::2]
        self.assertEqual([row[2:22].strip() for row in rows], SERVICES)
        for row in rows:
            self.assertNotIn("NOTHING", row)
        paths = [place.strip() for place in places if place.strip().startswith("/")]
        self.assertEqual(len(paths), 5)
        for path in paths:
            self.assertTrue(pathlib.Path(path).exists(), path)

    def test_the_previous_installation_lives_on(self):
        self.assertIn("moved from the previous generation: 2014-05-13", self.third)
        migrations = re.findall("Full migrating of NSUserDefaults successful.", self.done.stderr)
        self.assertEqual(len(migrations), 1)
        launch = next(hit for hit in self.hits() if hit.get("action") == "lifecycle")
        self.assertEqual(launch["contextdata"]["installDate"], "1400000000")
        self.assertEqual(launch["contextdata"]["launches"], "13")
        self.assertNotIn("install", launch["contextdata"])

    def test_what_is_tracked_without_a_network_comes_later_and_in_order(self):
        self.assertRegex(self.first, r"hits: 4 sent during this visit, 0 wait on the device")
        self.assertRegex(self.second, r"hits: 0 sent during this visit, 3 wait on the device")
        self.assertRegex(self.third, r"hits: 6 sent during this visit, 0 wait on the device")
        tracked = [hit.get("action", hit.get("state")) for hit in self.hits()]
        visit = ["catalogue", "addToCart", "checkout"]
        self.assertEqual(tracked, ["lifecycle"] + 3 * visit)
        self.assertEqual(len({hit["hitId"] for hit in self.hits()}), len(tracked))

    def test_rules_fire_without_a_network_too_and_once_where_they_say_so(self):
        fired = r'outcome: "fired", rule: "([a-z-]+)"'
        self.assertEqual(re.findall(fired, self.first),
                         ["free-delivery", "thank-you", "come-back"])
        self.assertEqual(re.findall(fired, self.second), ["thank-you"])

    def test_extensions_answer_and_read_each_others_state(self):
        self.assertIn('the cart answers: cart changed {"items": 1}', self.first)
        self.assertIn('another extension reads the cart\'s state: count {"items": 1}', self.first)


if __name__ == "__main__":
    unittest.main()
