#!/usr/bin/env python3
"""Checks that the platform defines each undefined symbol of the objects for a phone.

symbols.py --nm NM --headers FOLDER... --bionic FILE... --runtime LIBRARY... --others FILE OBJECT...

OBJECT  code for a phone, compiled but not linked
FOLDER  headers of the platform; all functions that they declare are assumed to be defined
--bionic   functions of Android's C library, as declared by the Rust package libc
--runtime  C++ libraries: Debian's libc++ and libc++abi, in place of the phone's
--others   file that lists additional symbols, and where each is defined
"""

import argparse
import pathlib
import re
import subprocess
import sys

# Symbols that no library of the platform needs to define: the compiler's helpers, and GoogleTest's,
# which the conformance kit contains.
BROUGHT_ALONG = re.compile(r"__aeabi_|__emutls_|_Unwind_|_GLOBAL_OFFSET_TABLE_$|_Z\w*7testing")


def symbols(nm, files, *flags):
    """Returns the names that nm lists, without versions."""
    if not files:
        return set()
    listed = subprocess.run([nm, "-P", *flags, *files], capture_output=True, text=True, check=True).stdout
    return {re.split(r"[@ ]", line)[0] for line in listed.splitlines() if " " in line}


def words(pattern, files):
    return {name for file in files for name in re.findall(pattern, file.read_text(errors="replace"))}


def offered(options):
    headers = [file for folder in options.headers for file in pathlib.Path(folder).rglob("*.h")]
    return (words(r"\b([A-Za-z_]\w*)\s*\(", headers)
            | words(r"\bfn (\w+)\(", options.bionic)
            | words(r"(?m)^(\w+) ", [options.others])
            | symbols(options.nm, options.runtime, "--dynamic", "--defined-only"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--nm", required=True)
    parser.add_argument("--headers", nargs="+", required=True)
    for name in ("--bionic", "--runtime"):
        parser.add_argument(name, nargs="+", required=True, type=pathlib.Path)
    parser.add_argument("--others", required=True, type=pathlib.Path)
    parser.add_argument("objects", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    own = symbols(options.nm, options.objects, "--defined-only")
    wanted = symbols(options.nm, options.objects, "--undefined-only") - own
    missing = sorted(name for name in wanted - offered(options) if not BROUGHT_ALONG.match(name))
    for name in missing:
        users = [file.name for file in options.objects
                 if name in symbols(options.nm, [file], "--undefined-only")]
        print(f"{users[0]}: error: {name} is in no library of the platform; expected it in the "
              f"platform's headers, the C library's listing, a C++ library or {options.others}")
    unused = words(r"(?m)^(\w+) ", [options.others]) - wanted
    for name in sorted(unused):
        print(f"{options.others}: error: remove {name}: no object for a phone uses it")
    if missing or unused:
        sys.exit(1)
    print(f"{len(wanted)} undefined symbols have a definition")


if __name__ == "__main__":
    main()
