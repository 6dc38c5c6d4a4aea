#!/usr/bin/env python3
"""Tests that java_api.py finds our classes and members that differ from the platform's."""

import pathlib
import tempfile
import unittest

import java_api

LISTING = """
declare module android {
	export module os {
		/** @since 27 */
		export class Memory extends android.os.Base implements java.io.Closeable {
			public static class: java.lang.Class<android.os.Memory>;
			public static SIZE: 67;
			public constructor(size: number, name: string);
			public map(callback: (a: number, b: string) => void, prot: number): java.nio.ByteBuffer;
			/** @since 31 */
			public static open(names: androidNative.Array<string> | null): android.os.Memory;
		}
		/** @since 33 */
		export class Late<T>  extends java.lang.Object {
		}
		export class Base extends java.lang.Object {
			public constructor();
			/** @deprecated */
			public get(key: any): boolean;
		}
	}
}
"""

SOURCE = """CLASS("android/os/Memory", a),
METHOD("<init>", "(JLjava/lang/String;)V", b),
METHOD("get", "(Ljava/util/List;)Z", b),
STATIC_METHOD("get", "(Ljava/util/List;)Z", b),
METHOD("get", "(I)I", b),
STATIC_METHOD("open", "([Ljava/lang/String;)Landroid/os/Memory;",
              b),
METHOD("map", "(I)Ljava/nio/ByteBuffer;", b),
FIELD("SIZE", "I", b),
CLASS("[Landroid/os/Late;", a),
CLASS("[I", a),
CLASS("android/os/Gone", a),
METHOD("<init>", "()V", b),
"""

EXPECTED = {
    3: None, 2: None, 1: None,
    4: "the platform has it with (any): boolean",  # the platform's get() is not static
    5: "the platform has it with (any): boolean",
    6: "added in level 31, missing from level 30",
    8: "the platform has it with ((a: number, b: string)  void, number): java.nio.ByteBuffer",
    9: "the platform has it with static (): number",
    10: "added in level 33, missing from level 30",
    12: "the platform lists no such class",
    13: "the platform lists no such class",
}


class JavaApiTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name)
        (self.path / "listing.d.ts").write_text(LISTING, encoding="utf-8")
        (self.path / "lookups.cpp").write_text(SOURCE, encoding="utf-8")
        self.platform = java_api.Platform(self.path / "listing.d.ts", 30)

    def tearDown(self):
        self.folder.cleanup()

    def test_lookups(self):
        problems = {int(place.rsplit(":", 1)[1]): self.platform.problem(clazz, member)
                    for place, clazz, member in java_api.read_lookups(self.path)}
        self.assertEqual(EXPECTED, problems)

    def test_own_members(self):
        text = """Compiled from "Memory.java"
public final class android.os.Memory implements java.io.Closeable {
  public static final int SIZE;
  public android.os.Memory(int, java.lang.String);
  public android.os.Memory();
  public native boolean get(java.lang.Object);
  public <T> T get(T[]) throws java.io.IOException;
}
"""
        problems = [(java_api.shown(clazz, member), self.platform.problem(clazz, member))
                    for clazz, member in java_api.read_javap(text)]
        self.assertEqual([
            ("android.os.Memory", None),
            ("android.os.Memory.SIZE", None),
            ("android.os.Memory.constructor(number,string)", None),
            ("android.os.Memory.constructor()", "the platform has it with (number, string): void"),
            ("android.os.Memory.get(any)", None),
            ("android.os.Memory.get(any[])", None),  # an array is an object
        ], problems)


if __name__ == "__main__":
    unittest.main()
