#!/usr/bin/env python3
"""Reads Android.bp, which can't be built here, and compares it with what CMake builds.

android_bp_test.py ANDROID_BP SOURCE... (relative to the file's folder)
android_bp_test.py --read ANDROID_BP    prints what it reads, as read_android_bp.go does with the platform's parser
"""

import json
import os
import re
import sys
import unittest

DEVICE_LIBRARIES = {
    "libandroid", "libcutils", "libhidlbase", "liblog", "libnativewindow",
    "liborlu.algo.metadata", "liborlu.camera3rd.log",
    "vendor.orlu.hardware.camera3rd.context@1.0", "vendor.orlu.hardware.camera3rd.provider@1.0",
}


def without_repetition(pairs):
    names = [name for name, _ in pairs]
    if len(names) != len(set(names)):
        raise SyntaxError(f"a property stands twice: {names}")
    return dict(pairs)


def read_module(text):
    """The one module as its kind and its properties: JSON but for comments, bare names and last commas."""
    text = re.sub(r"//[^\n]*", "", text)
    text = re.sub(r",(\s*[}\]])", r"\1", text)
    text = re.sub(r"^(\s*)(\w+):", r'\1"\2":', text, flags=re.MULTILINE)
    kind, properties = text.split(None, 1)
    return kind, json.loads(properties, object_pairs_hook=without_repetition)


class AndroidBpTest(unittest.TestCase):
    path = ""
    sources = []

    def setUp(self):
        with open(self.path, encoding="utf-8") as file:
            self.kind, self.module = read_module(file.read())

    def test_is_the_32_bit_library(self):
        self.assertEqual("cc_library_shared", self.kind)
        self.assertEqual("liborlu.vas.native.interface", self.module["name"])
        self.assertEqual("32", self.module["compile_multilib"])
        self.assertEqual("c++17", self.module["cpp_std"])

    def test_builds_the_sources_that_cmake_builds(self):
        self.assertEqual(sorted(self.sources), sorted(self.module["srcs"]))
        for source in self.module["srcs"]:
            self.assertTrue(os.path.isfile(os.path.join(os.path.dirname(self.path), source)), source)

    def test_names_the_devices_libraries(self):
        self.assertEqual(sorted(DEVICE_LIBRARIES), sorted(self.module["shared_libs"]))


if __name__ == "__main__":
    if sys.argv[1] == "--read":
        with open(sys.argv[2], encoding="utf-8") as bp:
            module_kind, properties = read_module(bp.read())
        print(json.dumps({"kind": module_kind, **properties}, indent=1, sort_keys=True, ensure_ascii=False))
        sys.exit()
    AndroidBpTest.path, *AndroidBpTest.sources = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
