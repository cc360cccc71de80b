"""tools/check_layers on small trees that break one rule each."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK_LAYERS = sys.argv.pop(1)


class CheckLayers(unittest.TestCase):
    def check(self, path, line):
        """Runs the script on a tree of one file; returns its exit code and output."""
        with tempfile.TemporaryDirectory() as root:
            file = pathlib.Path(root, path)
            file.parent.mkdir(parents=True)
            file.write_text(line + "\n", "utf-8")
            done = subprocess.run([CHECK_LAYERS, "--root", root], capture_output=True, text=True,
                                  check=False)
            return done.returncode, done.stdout

    def assert_refused(self, path, line):
        code, output = self.check(path, line)
        self.assertEqual(code, 1, output)
        self.assertIn(path, output)

    def assert_accepted(self, path, line):
        code, output = self.check(path, line)
        self.assertEqual(code, 0, output)

    def test_a_service_may_look_down(self):
        self.assert_accepted("src/services/json/A.cpp", '#include "interop/VariantConversion.h"')

    def test_a_service_may_not_look_sideways(self):
        self.assert_refused("src/services/json/A.cpp", '#include "services/system/B.h"')

    def test_a_service_may_not_look_up(self):
        self.assert_refused("src/services/json/A.cpp", '#include "bridge/PlatformServices.h"')

    def test_gtk_stays_in_its_folder(self):
        self.assert_accepted("src/platform/gtk/A.cpp", "#include <gtk/gtk.h>")
        self.assert_accepted("src/platform/gtk/A.cpp", "#include <webkit/webkit.h>")
        self.assert_refused("src/platform/linux/A.cpp", "#include <gtk/gtk.h>")
        self.assert_refused("include/QEXCore_gtk/A.h", "#include <gtk/gtk.h>")
        self.assert_refused("src/services/ui/A.cpp", "#include <webkit/webkit.h>")

    def test_gtk_takes_nothing_of_linux_but_the_owners_of_glib(self):
        self.assert_accepted("src/platform/gtk/A.cpp", '#include "platform/linux/GlibPointers.h"')
        self.assert_refused("src/platform/gtk/A.cpp", '#include "platform/linux/GlibMainQueue.h"')
        self.assert_refused("src/platform/DefaultHost.cpp", '#include "QEXCore_gtk/Gtk.h"')

    def test_nobody_names_the_linux_ports(self):
        self.assert_refused("src/services/json/A.cpp", '#include "platform/linux/LinuxBundle.h"')
        self.assert_refused("src/bridge/A.cpp", '#include "platform/linux/LinuxBundle.h"')
        self.assert_refused("src/platform/Host.cpp", '#include "platform/linux/LinuxBundle.h"')

    def test_the_composition_root_names_the_ports(self):
        self.assert_accepted("src/platform/DefaultHost.cpp",
                             '#include "platform/linux/LinuxBundle.h"')

    def test_the_core_knows_nothing_of_the_layer_above(self):
        self.assert_refused("core/src/hub/A.cpp", '#include "QEXCore_iOS/QEXCore.h"')
        self.assert_refused("core/include/VelmoraCore/A.h",
                            '#include "QEXCore_iOS/Platform/Value.h"')

    def test_a_port_header_knows_no_core_type(self):
        self.assert_refused("include/QEXCore_iOS/Platform/A.h", '#include "VelmoraCore/Variant.h"')

    def test_a_borrowed_library_stays_in_its_folder(self):
        self.assert_refused("src/services/json/A.cpp", "#include <simdjson.h>")
        self.assert_refused("include/QEXCore_iOS/Platform/A.h", "#include <glib.h>")
        self.assert_accepted("src/platform/linux/A.cpp", "#include <simdjson.h>")

    def test_only_the_platform_asks_for_the_platform(self):
        self.assert_refused("src/services/json/A.cpp", "#ifdef __linux__")
        self.assert_refused("src/services/json/A.cpp", "#if defined(__APPLE__)")
        self.assert_accepted("src/platform/linux/A.cpp", "#ifdef __linux__")


if __name__ == "__main__":
    unittest.main()
