#!/usr/bin/env python3
"""Reads Android.bp, which can't be built here, and compares it with what CMake builds.

android_bp_test.py ANDROID_BP SOURCE... (relative to the file's folder)
"""

import os
import re
import sys
import unittest

TOKEN = re.compile(r'\s+|//[^\n]*|(?P<text>"(?:[^"\\\n]|\\.)*")|(?P<word>[A-Za-z_]\w*)|(?P<mark>[{}\[\]:,])')

DEVICE_LIBRARIES = {
    "libandroid", "libcutils", "libhidlbase", "liblog", "libnativewindow",
    "liborlu.algo.metadata", "liborlu.camera3rd.log",
    "vendor.orlu.hardware.camera3rd.context@1.0", "vendor.orlu.hardware.camera3rd.provider@1.0",
}


class Parser:
    """Modules of properties: texts, booleans, lists and maps."""

    def __init__(self, text):
        self._tokens = list(self._split(text))

    @staticmethod
    def _split(text):
        place = 0
        while place < len(text):
            match = TOKEN.match(text, place)
            if match is None:
                line = text.count("\n", 0, place) + 1
                raise SyntaxError(f"line {line}: not understood: {text[place:place + 20]!r}")
            place = match.end()
            if match.lastgroup:
                yield match.lastgroup, match.group()

    def _next(self, kind=None, token=None):
        if not self._tokens:
            raise SyntaxError("the file ends too early")
        found = self._tokens.pop(0)
        if (kind and found[0] != kind) or (token and found[1] != token):
            raise SyntaxError(f"{found[1]} where {token or kind} belongs")
        return found[1]

    def _at(self, token):
        return bool(self._tokens) and self._tokens[0] == ("mark", token)

    def modules(self):
        while self._tokens:
            yield self._next("word"), self._properties()

    def _properties(self):
        properties = {}
        self._next("mark", "{")
        while not self._at("}"):
            name = self._next("word")
            if name in properties:
                raise SyntaxError(f"{name} stands twice")
            self._next("mark", ":")
            properties[name] = self._value()
            self._separator("}")
        self._next("mark", "}")
        return properties

    def _list(self):
        values = []
        self._next("mark", "[")
        while not self._at("]"):
            values.append(self._value())
            self._separator("]")
        self._next("mark", "]")
        return values

    def _separator(self, end):
        if not self._at(end):
            self._next("mark", ",")

    def _value(self):
        if self._at("{"):
            return self._properties()
        if self._at("["):
            return self._list()
        token = self._next()
        if token.startswith('"'):
            return token[1:-1]
        return {"true": True, "false": False}[token]


class AndroidBpTest(unittest.TestCase):
    path = ""
    sources = []

    def setUp(self):
        with open(self.path, encoding="utf-8") as file:
            modules = list(Parser(file.read()).modules())
        self.assertEqual(1, len(modules))
        self.kind, self.module = modules[0]

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
    AndroidBpTest.path, *AndroidBpTest.sources = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
