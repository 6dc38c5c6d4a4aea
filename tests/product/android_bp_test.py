#!/usr/bin/env python3
"""Compares Android.bp, which cannot be built here, with CMake's targets.

android_bp_test.py ANDROID_BP GENERATED MODULE=SOURCE;SOURCE...
SOURCE is relative to the folder of ANDROID_BP. GENERATED is the folder of the tables that CMake makes for the
conformance kit.
android_bp_test.py --read ANDROID_BP    prints the modules as JSON, like read_android_bp.go
"""

import glob
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

DEVICE_LIBRARIES = {
    "libandroid", "libcutils", "libhidlbase", "liblog", "libnativewindow",
    "liborlu.algo.metadata", "liborlu.camera3rd.log",
    "vendor.orlu.hardware.camera3rd.context@1.0", "vendor.orlu.hardware.camera3rd.provider@1.0",
}


def without_repetition(pairs):
    names = [name for name, _ in pairs]
    if len(names) != len(set(names)):
        raise SyntaxError(f"a property is repeated: {names}")
    return dict(pairs)


def read_modules(text):
    """Returns the modules, each with its kind and properties. In the text, a module is its kind and a JSON
    object; comments, names without quotes and trailing commas are allowed."""
    text = re.sub(r"^\s*//[^\n]*", "", text, flags=re.MULTILINE)
    text = re.sub(r",(\s*\n\s*[}\]])", r"\1", text)
    text = re.sub(r"^(\s+)(\w+):", r'\1"\2":', text, flags=re.MULTILINE)
    return [{"kind": kind, **json.loads(properties, object_pairs_hook=without_repetition)}
            for kind, properties in re.findall(r"^(\w+) (\{.*?^\})", text, flags=re.MULTILINE | re.DOTALL)]


class AndroidBpTest(unittest.TestCase):
    path = ""
    generated = ""
    sources = {}

    def setUp(self):
        with open(self.path, encoding="utf-8") as file:
            self.modules = {module["name"]: module for module in read_modules(file.read())}
        self.module = self.modules["liborlu.vas.native.interface"]

    def test_is_the_32_bit_library(self):
        self.assertEqual("cc_library_shared", self.module["kind"])
        self.assertEqual("32", self.module["compile_multilib"])
        self.assertEqual("c++17", self.module["cpp_std"])

    def test_builds_the_sources_that_cmake_builds(self):
        for name, sources in self.sources.items():
            self.assertEqual(sorted(sources), sorted(self.modules[name]["srcs"]), name)

    def test_all_sources_are_there(self):
        for name, module in self.modules.items():
            for source in module.get("srcs", []):
                files = glob.glob(os.path.join(os.path.dirname(self.path), source))
                self.assertTrue(files, f"{name}: {source}")

    def test_names_the_devices_libraries(self):
        self.assertEqual(sorted(DEVICE_LIBRARIES), sorted(self.module["shared_libs"]))

    def test_names_modules_that_are_there(self):
        for name, module in self.modules.items():
            lists = [module.get(key, []) for key in ("defaults", "static_libs", "generated_headers", "required")]
            for used in sum(lists, []):
                self.assertTrue(used == "libgtest" or used in self.modules, f"{name}: {used}")

    def test_makes_the_tables_that_cmake_makes(self):
        rules = [module for module in self.modules.values() if module["kind"] == "genrule"]
        self.assertEqual(2, len(rules))
        folder = os.path.dirname(self.path)
        for rule in rules:
            with tempfile.TemporaryDirectory() as work:
                made = os.path.join(work, rule["out"][0])
                files = [file for pattern in rule["srcs"]
                         for file in sorted(glob.glob(os.path.join(folder, pattern)))]
                command = rule["cmd"].replace("$(in)", " ".join(map(shlex.quote, files)))
                command = command.replace("$(out)", shlex.quote(made)).replace("$$", "$")
                subprocess.run(["bash", "-euc", command], check=True)
                with open(made, encoding="utf-8") as ours, \
                        open(os.path.join(self.generated, rule["out"][0]), encoding="utf-8") as cmakes:
                    self.assertEqual(sorted(cmakes), sorted(ours), rule["name"])


if __name__ == "__main__":
    if sys.argv[1] == "--read":
        with open(sys.argv[2], encoding="utf-8") as bp:
            modules = read_modules(bp.read())
        print(json.dumps(modules, indent=1, sort_keys=True, ensure_ascii=False))
        sys.exit()
    AndroidBpTest.path, AndroidBpTest.generated, *lists = sys.argv[1:]
    AndroidBpTest.sources = {name: files.split(";") for name, files in (text.split("=", 1) for text in lists)}
    unittest.main(argv=sys.argv[:1])
