#!/usr/bin/env python3
"""The layering check finds what it is there to find."""

import os
import subprocess
import sys
import tempfile
import unittest

CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "check_layering.py")
RULES = "platform/ports: \nplatform/linux: platform/ports\nfoundation: platform/ports\napp: foundation\n"


class LayeringCheck(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as folder:
            rules = os.path.join(folder, "layering.txt")
            root = os.path.join(folder, "src")
            os.mkdir(root)
            with open(rules, "w", encoding="utf-8") as out:
                out.write(RULES)
            for name, text in files.items():
                path = os.path.join(root, name)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as out:
                    out.write(text)
            run = subprocess.run(
                [sys.executable, CHECK, rules, root], capture_output=True, text=True, check=False
            )
            return run.returncode, run.stdout

    def test_allowed_include_passes(self):
        status, _ = self.check(
            {"foundation/A.h": '#include "platform/ports/P.h"\n', "platform/ports/P.h": "\n"}
        )
        self.assertEqual(status, 0)

    def test_include_of_a_higher_folder_is_a_fault(self):
        status, text = self.check({"foundation/A.h": '#include "app/B.h"\n', "app/B.h": "\n"})
        self.assertEqual(status, 1)
        self.assertIn("foundation may not include app/B.h", text)

    def test_adapter_is_seen_by_main_only(self):
        files = {
            "platform/linux/L.h": "\n",
            "app/main.cpp": '#include "platform/linux/L.h"\n',
            "app/Other.cpp": '#include "platform/linux/L.h"\n',
        }
        status, text = self.check(files)
        self.assertEqual(status, 1)
        self.assertIn("app/Other.cpp: app may not include platform/linux/L.h", text)
        self.assertNotIn("main.cpp", text)

    def test_foreign_library_outside_the_adapters_is_a_fault(self):
        status, text = self.check({"foundation/A.cpp": "#include <glib.h>\n"})
        self.assertEqual(status, 1)
        self.assertIn("<glib.h>", text)

    def test_include_that_does_not_start_at_the_root_is_a_fault(self):
        status, _ = self.check({"foundation/A.cpp": '#include "A.h"\n'})
        self.assertEqual(status, 1)

    def test_empty_tree_is_a_fault(self):
        status, _ = self.check({})
        self.assertEqual(status, 1)


if __name__ == "__main__":
    unittest.main()
