"""shop_window_test.py SCRIPT BUILD: the shop's window, used as a visitor would, by its keys and the
pointer. To be run by on_display."""

import os
import queue
import subprocess
import sys
import threading
import time
import unittest

SCRIPT, BUILD = sys.argv.pop(1), sys.argv.pop(1)
TITLE = "The QEXCore shop"
PATIENCE = 60


def xdotool(*arguments):
    done = subprocess.run(["xdotool", *arguments], capture_output=True, text=True, check=False)
    return done.stdout.strip()


def photograph(name):
    folder = os.environ.get("QEX_UI_SHOTS")
    if folder:
        os.makedirs(folder, exist_ok=True)
        subprocess.run(["import", "-window", "root", f"{folder}/{name}.png"], check=True)


class ShopWindow(unittest.TestCase):
    def setUp(self):
        self.shop = subprocess.Popen([SCRIPT, BUILD], stdout=subprocess.PIPE, text=True)
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self.read)
        self.reader.start()
        self.wait_for("The shop is open.")
        self.window = xdotool("search", "--sync", "--onlyvisible", "--name", TITLE).split()[0]

    def tearDown(self):
        self.shop.terminate()
        self.shop.wait()
        self.reader.join()
        self.shop.stdout.close()

    def read(self):
        for line in self.shop.stdout:
            self.lines.put(line.strip())

    def hears(self, wanted, seconds):
        end = time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            try:
                if self.lines.get(timeout=left) == wanted:
                    return True
            except queue.Empty:
                break
        return False

    def wait_for(self, wanted):
        self.assertTrue(self.hears(wanted, PATIENCE), wanted)

    def press_until(self, keys, wanted):
        """The rules may still be on their way at first, and a rule that fired rests."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            xdotool("key", keys)
            if self.hears(wanted, 2):
                return
        self.fail(wanted)

    def click(self, x, y):
        xdotool("mousemove", "--window", self.window, str(x), str(y), "click", "1")

    def test_a_visit(self):
        photograph("shop")
        self.press_until("alt+h", "rule hat-week: message shown")
        self.close_message()
        self.press_until("alt+s", "rule full-cart: alert shown")
        photograph("shop-alert")
        xdotool("key", "Return")
        self.wait_for("rule full-cart: alert positive")
        self.press_until("alt+p", "rule help: button fired")
        self.tap_button()
        xdotool("key", "alt+F4")
        self.assertEqual(self.shop.wait(PATIENCE), 0)

    def close_message(self):
        """Its link is at the lower edge; it is there once it has slid in."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            photograph("shop-message")
            self.click(200, 590)
            if self.hears("rule hat-week: message dismissed", 2):
                return
        self.fail("the message does not close")

    def tap_button(self):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            self.click(400 - 45, 320)
            if self.hears("rule help: button tapped", 2):
                return
        self.fail("the button does not answer")


if __name__ == "__main__":
    unittest.main()
