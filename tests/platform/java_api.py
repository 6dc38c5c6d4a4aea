#!/usr/bin/env python3
"""Compares our stand-ins for Java classes, and the lookups of jni/, with a listing of the platform.

java_api.py [--level N] [--javap JAVAP] [--classes DIR] [--exceptions FILE] LISTING JNI_FOLDER

LISTING declares every public class of the platform in TypeScript; "@since LEVEL" precedes each class and
member newer than the oldest level. A member is found if, at level N, its class has or inherits a member that
matches in name, arguments, result and "static". FILE lists the excepted classes and members, with reasons:
"NAME  reason" on each line, where NAME is written as in the reports.
"""

import argparse
import collections
import pathlib
import re
import subprocess
import sys

NUMBERS = {"byte", "short", "int", "long", "float", "double"}
DESCRIPTORS = {"B": "byte", "S": "short", "I": "int", "J": "long", "F": "float", "D": "double",
               "Z": "boolean", "C": "char", "V": "void"}

# `arguments` is None for a field.
Member = collections.namedtuple("Member", "name arguments result static since")


class Class:
    def __init__(self, name, parents, since):
        self.name, self.parents, self.since, self.members = name, parents, since, []


def split_top(text):
    """Splits at commas outside of brackets."""
    parts, depth, part = [], 0, ""
    for char in text:
        depth += (char in "<({[") - (char in ">)}]")
        if char == "," and depth == 0:
            parts.append(part.strip())
            part = ""
        else:
            part += char
    return parts + [part.strip()] if part.strip() else parts


def bare(name):
    """Returns a name without its type arguments, which may be nested."""
    while re.search(r"<[^<>]*>", name):
        name = re.sub(r"<[^<>]*>", "", name)
    return name.strip()


def listed_type(text):
    text = re.sub(r"/\*.*?\*/", "", text).replace("| null", "").strip()
    array = re.fullmatch(r"androidNative\.Array<(.*)>", text)
    if array:
        return listed_type(array.group(1)) + "[]"
    text = bare(text)
    # The listing shows a constant's value instead of its type.
    return "number" if re.fullmatch(r"-?[\d.]+(e[+-]?\d+)?", text) else text


def type_of(java):
    """Returns the listing's name for a Java type."""
    if java.endswith("[]"):
        return type_of(java[:-2]) + "[]"
    java = bare(java).replace("$", ".")
    if java in NUMBERS:
        return "number"
    if java in ("char", "java.lang.String", "java.lang.CharSequence"):
        return "string"
    return "any" if java == "java.lang.Object" or re.fullmatch("[A-Z]", java) else java


def same_type(ours, listed):
    return listed == ours or "any" in (listed, ours)


def read_listing(path):
    """Returns all classes by name."""
    classes, scope, since = {}, [], 0
    opened = re.compile(r"(?:declare module|export module) ([\w.]+) \{")
    declared = re.compile(r"export (?:abstract )?(?:class|interface) (\w+)(<.*?>)?\s*(?:extends (.*?))?"
                          r"\s*(?:implements (.*?))?\s*\{")
    member = re.compile(r"(?:public|protected) (static )?(\w+)(?:(\(.*\))(?:: (.*))?|: (.*));")
    with open(path, encoding="utf-8") as lines:
        # Removes "=>" from function types: split_top() and bare() would read ">" as a bracket.
        for line in (line.strip().replace("=>", "") for line in lines):
            found = re.search(r"@since (\d+)", line)
            if found:
                since = int(found.group(1))
            if line.startswith(("/*", "*")):
                continue
            space, clazz, entry = opened.match(line), declared.match(line), member.match(line)
            if space:
                scope.append(space.group(1))
            elif clazz:
                name = ".".join([part for part in scope if part] + [clazz.group(1)])
                parents = [bare(parent) for group in (3, 4) for parent in split_top(clazz.group(group) or "")]
                current = classes.setdefault(name, Class(name, parents, since))
                scope.append(clazz.group(1))
            elif line == "}":
                scope.pop()
            elif line.endswith("{"):
                scope.append("")  # an object literal with the methods of an interface
            elif line.startswith("}"):
                scope.pop()
            elif entry and scope and scope[-1]:
                current = classes.get(".".join(part for part in scope if part))
                if current:
                    arguments = None
                    if entry.group(3) is not None:
                        arguments = [listed_type(argument.partition(":")[2] or "any")
                                     for argument in split_top(entry.group(3)[1:-1])]
                    current.members.append(Member(entry.group(2), arguments,
                                                  listed_type(entry.group(4) or entry.group(5) or "void"),
                                                  bool(entry.group(1)), since))
            since = 0
    return classes


class Platform:
    def __init__(self, listing, level):
        self.classes, self.level = read_listing(listing), level

    def problem(self, class_name, member=None):
        """Returns why the platform lacks a class or member at this level; None if the platform has it."""
        name = class_name.replace("$", ".")
        clazz = self.classes.get(name)
        if clazz is None:
            return "the platform lists no such class"
        if clazz.since > self.level:
            return f"added in level {clazz.since}, missing from level {self.level}"
        if member is None:
            return None
        candidates = [m for m in self.inherited(name, member.name)
                      if (m.arguments is None) == (member.arguments is None)]
        if not candidates:
            return "the platform lists no such member"
        fitting = [m for m in candidates if self.fits(member, m)]
        if not fitting:
            listed = "; ".join(f"{'static ' if m.static else ''}({', '.join(m.arguments or [])}): {m.result}"
                               for m in candidates)
            return f"the platform has it with {listed}"
        since = min(m.since for m in fitting)
        return f"added in level {since}, missing from level {self.level}" if since > self.level else None

    def inherited(self, name, member):
        found, todo, done = [], [name], set()
        while todo:
            current = self.classes.get(todo.pop())
            if current is None or current.name in done:
                continue
            done.add(current.name)
            found += [m for m in current.members if m.name == member]
            todo += current.parents if member != "constructor" else []
        return found

    @staticmethod
    def fits(ours, listed):
        if ours.arguments is not None and (
                len(ours.arguments) != len(listed.arguments) or
                not all(map(same_type, ours.arguments, listed.arguments))):
            return False
        return ours.static == listed.static and (
            ours.name == "constructor" or same_type(ours.result, listed.result))


def read_javap(text):
    """Yields (class, member or None) for each public class and member printed by javap."""
    clazz = None
    for line in text.splitlines():
        header = re.match(r"public .*?(?:class|interface) ([\w.$]+)", line)
        entry = re.match(r"  (?:public|protected) (.*?)([\w.$]+)(\(.*\))?(?: throws .*)?;", line)
        if header:
            clazz = header.group(1)
            yield clazz, None
        elif entry and clazz:
            modifiers, name, arguments = entry.groups()
            static = "static " in modifiers
            # A method's own type parameters precede its result.
            result = re.sub(r"\b(static|final|abstract|native|synchronized|default)\b", "", modifiers)
            result = re.sub(r"^\s*<.*?> (?=\S)", "", result).strip()
            types = None
            if arguments is not None:
                types = [type_of(a) for a in split_top(arguments[1:-1].replace("...", "[]"))]
            name = "constructor" if name == clazz else name
            yield clazz, Member(name, types, type_of(result), static, 0)


def read_descriptor(text):
    """Returns the Java types of a descriptor, in order."""
    types = []
    for array, code, name in re.findall(r"(\[*)(?:([BSIJFDZCV])|L([^;]+);)", text):
        types.append((DESCRIPTORS[code] if code else name.replace("/", ".")) + "[]" * len(array))
    return types


def field_of(name, signature):
    return Member(name, None, type_of(read_descriptor(signature)[0]), False, 0)


def read_lookups(folder):
    """Yields (file:line, class, member or None) for each lookup in jni/."""
    row = re.compile(r'\b(CLASS|METHOD|STATIC_METHOD|FIELD|FindClass|GetFieldID)(?:_WITH)?'
                     r'\((?:\w+,\s*)?"([^"]+)"(?:,\s*"([^"]+)")?', re.DOTALL)
    # Matches descriptors and class names, to find those that `row` misses. Skips a string constant: it
    # describes a method of our own service.
    named = re.compile(r'(?<!\[\] = )"(?:\([^"()]*\)[\w\[/$;]+|\[*L?(?:android|java)/[\w/$]+;?)"')
    for path in sorted(path for kind in ("cpp", "h", "inc") for path in pathlib.Path(folder).glob(f"*.{kind}")):
        text, clazz = path.read_text(encoding="utf-8"), None
        rest = row.sub("", text)
        if named.search(rest):
            sys.exit(f"{path}: error: java_api.py can't parse the lookup with {named.search(rest).group()}")
        for match in row.finditer(text):
            kind, name, signature = match.groups()
            place = f"{path}:{text.count(chr(10), 0, match.start()) + 1}"
            if kind in ("CLASS", "FindClass"):
                # An array's class exists if its element's class exists. An array of a primitive type, such as
                # "[I", needs no check: jni/ looks up no members of it.
                element = re.fullmatch(r"\[+L(.*);", name)
                clazz = (element.group(1) if element else name).replace("/", ".")
                if clazz.startswith("["):
                    continue
                yield place, clazz, None
            elif kind.startswith("GetField"):
                # CaptureResult.mResults: jni/ looks up all other members in tables.
                yield place, "android.hardware.camera2.CaptureResult", field_of(name, signature)
            elif signature.startswith("("):
                inside, result = signature[1:].split(")")
                arguments = [type_of(java) for java in read_descriptor(inside)]
                yield place, clazz, Member("constructor" if name == "<init>" else name, arguments,
                                           type_of(read_descriptor(result)[0]), kind == "STATIC_METHOD", 0)
            else:
                yield place, clazz, field_of(name, signature)


def shown(clazz, member):
    if member is None:
        return clazz
    arguments = "" if member.arguments is None else f"({','.join(member.arguments)})"
    return f"{clazz}.{member.name}{arguments}"


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--level", type=int, default=30)
    parser.add_argument("--javap", default="javap")
    parser.add_argument("--classes")
    parser.add_argument("--exceptions")
    parser.add_argument("listing")
    parser.add_argument("jni")
    options = parser.parse_args()

    reasons = {}
    if options.exceptions:
        for line in pathlib.Path(options.exceptions).read_text(encoding="utf-8").splitlines():
            if line and not line.startswith("#"):
                name, reason = line.split(None, 1)
                reasons[name] = reason
    platform = Platform(options.listing, options.level)
    asked = [(place, clazz, member) for place, clazz, member in read_lookups(options.jni)
             if not clazz.startswith("com.orlu.")]
    lookups = len(asked)
    if options.classes:
        files = sorted(str(path) for path in pathlib.Path(options.classes).rglob("*.class"))
        text = subprocess.run([options.javap, "-public", *files], check=True, stdout=subprocess.PIPE,
                              text=True).stdout
        asked += [("host/java", clazz, member) for clazz, member in read_javap(text)]
    if not lookups or (options.classes and lookups == len(asked)):
        sys.exit(f"java_api.py: expected lookups and members of our classes, found {lookups} and "
                 f"{len(asked) - lookups}")

    failures, excepted = 0, set()
    for place, clazz, member in asked:
        problem = platform.problem(clazz, member)
        name = shown(clazz, member)
        owner = next((key for key in (name, clazz) if key in reasons), None)
        if problem and owner:
            excepted.add(owner)
        elif problem:
            failures += 1
            print(f"{place}: error: {name}: {problem}", file=sys.stderr)
    for name in sorted(set(reasons) - excepted):
        failures += 1
        print(f"{options.exceptions}: error: {name}: remove it: the platform lists it, or nothing uses it",
              file=sys.stderr)
    if failures:
        sys.exit(1)
    print(f"{lookups} lookups of jni/ and {len(asked) - lookups} of our classes and members agree with the "
          f"platform, except {len(excepted)} listed exceptions")


if __name__ == "__main__":
    main()
