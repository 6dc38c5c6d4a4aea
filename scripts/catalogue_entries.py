"""Makes the entries of catalogue.json from the hand-written tables in service/java/.../tool/tags, the
samples, and the findings of make_catalogue.py. Each finding is a row of text: "KIND NAME REST"."""

import json
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TABLES = ROOT / "service/java/com/orlu/orlu3rdalgoservice/tool/tags"
PLATFORM = ROOT / "host/java/android/hardware/camera2/impl"
# Most parameters depend on this tag. docs/contract.md therefore does not list it for each parameter, and the
# tag's catalogue entry has no values under "whenAbsent".
ALGORITHM_LIST = "orlu.control.algoType"
LONGEST_VALUE = 60
MOST = "more than half of the parameters of some requests"
NOBODY = "nobody: no function of the library asks for it"
# The size of the clarity scores in parameters.txt. The library writes one score per frame, or 50 zeros if the
# camera calculated no scores. It reads 50 scores back.
BY_FRAMES = "*"
# Bytes per element, for types with several elements.
ELEMENTS = {"INTS": 4, "FLOATS": 4, "LONGS": 8, "DOUBLES": 8, "BITS": 8}
# Types whose bytes are a record of jni/metadata_records.h.
RECORDS = {"EXIF": "ExifInfo", "FACES": "_tagOrluFaceInfo", "FACE_OUTLINE": "FaceOutline",
           "REFOCUS_PACK": "RefocusPackParams", "PHASE_DETECTION": "PdafInfo", "SENSOR_CROP": "SCR_Type",
           "RECT": "__tagOrluRect", "BITS": "ProcessedAlgo"}


def table(file, columns):
    """Returns the rows of a table. The last column extends to the end of the line."""
    lines = [line.strip() for line in file.read_text().splitlines()]
    return [line.split(None, columns - 1) for line in lines if line and not line.startswith("#")]


def constants(file, pattern):
    """Returns the constants of a Java enumeration, each with the argument that the pattern matches."""
    return dict(re.findall(rf"^    (\w+)\({pattern}\)[,;]", file.read_text(), re.MULTILINE))


def grouped(rows):
    """Groups rows by their first column, in order."""
    groups = {}
    for name, *rest in rows:
        groups.setdefault(name, []).append(rest)
    return groups


class Found:
    """The rows found by make_catalogue.py, by kind and name."""

    def __init__(self, rows):
        self._rows = {}
        for kind, name, rest in (row.split(" ", 2) for row in sorted(rows)):
            self._rows.setdefault((kind, name), []).append(rest)
            if kind == "depends":
                self._rows.setdefault(("of", rest), []).append(name)

    def of(self, kind, name):
        return self._rows.get((kind, name), [])

    def places(self, kind, name):
        """Returns functions with their files: "updateGra (metadata_updater_capture_features.cpp)"."""
        return [re.sub(r" jni/(.*)", r" (\1)", rest) for rest in self.of(kind, name)]


class Sample:
    """A request file in samples/."""

    def __init__(self, file):
        self.name = file.stem
        self.request = json.loads(file.read_text())
        self.frame_set = self.request["frames"]
        self.each = self.frame_set.get("each", [])
        self.frames = self.frame_set.get("count", max(1, len(self.each)))

    def images(self, part):
        """Returns the images of "inputs" or "outputs", grouped by kind: "7 NV21, shared"."""
        images = self.request[part]
        counts = {}
        if isinstance(images, dict):
            counts[self._image(images)] = self.frames * images.get("perFrame", 1)
        else:
            for image in images:
                counts[self._image(image)] = counts.get(self._image(image), 0) + 1
        return [f"{count} {image}" for image, count in counts.items()]

    @staticmethod
    def _image(image):
        text = f"{image['format']}, {image.get('memory', 'shared')}"
        text += f", stride {image['stride']}" if "stride" in image else ""
        return text + (f", {image['width']} x {image['height']}" if "width" in image else "")

    def tags(self):
        """Returns every tag of the request with its value for all frames, else its first value in a frame."""
        tags = {}
        for frame in [self.frame_set.get("common", {}), *self.each]:
            for store in ("captureResult", "composition"):
                for tag, value in frame.get(store, {}).items():
                    tags.setdefault(tag, value)
        for tag, field in ((ALGORITHM_LIST, "algorithms"), ("isFullAsync", "fullAsync")):
            if field in self.request:
                tags.setdefault(tag, self.request[field])
        return tags


def samples():
    return sorted(map(Sample, (ROOT / "samples").glob("*.json")), key=lambda sample: sample.name)


def tag_entries(found, all_samples):
    stored = constants(PLATFORM / "TagType.java", r"([\w\[\]]+)\.class")
    facts = {name: rest for name, *rest in table(TABLES / "tags.txt", 3)}
    values = grouped(table(TABLES / "values.txt", 3))
    names = {line[0]: line[1].split() for line in table(TABLES / "enumerations.txt", 2)}
    for tag, kind in sorted(table(PLATFORM / "tags.txt", 2)):
        unit, meaning = facts[tag]
        meanings = {str(number): name for number, name in enumerate(names.get(tag, []))}
        for value, text in values.get(tag, []):
            meanings[value] = f"{meanings[value]}. {text}" if value in meanings else text
        changes = [name for name in found.of("depends", tag) if name != "*"]
        put_back = found.places("puts", tag)
        absent = {name: " or ".join(found.of("absent", name)) for name in changes
                  if found.of("absent", name) and tag != ALGORITHM_LIST}
        uses = {}
        for sample in all_samples:
            if tag in sample.tags():
                uses.setdefault(shortened(sample.tags()[tag]), []).append(sample.name)
        yield {"name": tag, "type": kind, "javaType": stored[kind], "unit": unit, "meaning": meaning,
               "values": records("value", "meaning", meanings),
               "readBy": found.places("reads", tag) or ([] if put_back else [NOBODY]), "putBackBy": put_back,
               "changes": changes, "changesMost": [MOST] if "*" in found.of("depends", tag) else [],
               "whenAbsent": records("parameter", "value", absent),
               "samples": records("value", "in", {value: ", ".join(names) for value, names in uses.items()})}


def records(key, value, pairs):
    return [{key: name, value: text} for name, text in pairs.items()]


def shortened(value):
    text = json.dumps(value, separators=(",", ":"), ensure_ascii=False)
    return text if len(text) <= LONGEST_VALUE else text[:LONGEST_VALUE] + " ..."


def parameter_entries(found):
    types = constants(TABLES / "ParameterType.java", r'"([^"]+)"')
    for section, key, kind, size, direction in table(TABLES / "parameters.txt", 5):
        name = f"{section}/{key}"
        by_frames = size == BY_FRAMES
        elements = "50, or one a frame" if by_frames else int(size) // ELEMENTS.get(kind, int(size))
        text = types[kind]
        yield {"name": name, "section": f"orlu.algo.{section}", "key": key,
               "type": text if by_frames else re.sub(r"\[\]$", f"[{elements}]", text),
               "bytes": "400 or 8 x frames" if by_frames else int(size), "record": RECORDS.get(kind, ""),
               "direction": direction.split(","), "elements": elements,
               "writtenBy": found.places("writes", name), "readBackBy": found.places("returns", name),
               "tags": found.of("of", name), "withoutTags": found.of("absent", name)}


def algorithm_names():
    return list(grouped(table(TABLES / "algorithms.txt", 3)))


def algorithm_entries(found):
    for name, rows in grouped(table(TABLES / "algorithms.txt", 3)).items():
        facts = {kind: [text for each, text in rows if each == kind]
                 for kind in ("is", "added", "removed", "does", "returns")}
        fates = dict(row.split(" ", 1) for row in found.of("algorithm", name))
        ends = {fate.split()[-1] for fate in fates.values()}
        yield {"name": name, "is": " ".join(facts["is"]),
               "standIn": "runs" if "ran" in ends else "skips" if "skipped" in ends else "in no sample",
               **{kind: facts[kind] for kind in ("added", "removed", "does", "returns")},
               "samples": records("sample", "fate", fates)}


def format_entries(all_samples):
    for name, rows in grouped(table(TABLES / "formats.txt", 3)).items():
        uses = {part: [sample.name for sample in all_samples
                       if any(re.match(rf"\d+ {name},", image) for image in sample.images(part))]
                for part in ("inputs", "outputs")}
        yield {"name": name, **dict(rows), "inputsOf": uses["inputs"], "outputsOf": uses["outputs"]}


def sample_entries(all_samples):
    uses = [tag for sample in all_samples for tag in sample.tags()]
    for sample in all_samples:
        rare = [tag for tag in sample.tags() if uses.count(tag) <= len(all_samples) // 4]
        yield {"name": sample.name, "about": sample.request.get("about", ""),
               "file": f"samples/{sample.name}.json",
               "shape": f"{sample.frames} frame" + ("" if sample.frames == 1 else "s"),
               "inputs": sample.images("inputs"), "outputs": sample.images("outputs"),
               "algorithms": sample.request.get("algorithms", []), "tags": sorted(rare)}


def parts(rows):
    """Returns the catalogue: the entries of each part."""
    found, all_samples = Found(rows), samples()
    return {"tags": list(tag_entries(found, all_samples)), "algorithms": list(algorithm_entries(found)),
            "parameters": list(parameter_entries(found)), "formats": list(format_entries(all_samples)),
            "samples": list(sample_entries(all_samples))}


def text(catalogue):
    """Returns the text of the catalogue's file, with one entry per line."""
    lists = (f'"{part}": [\n' + ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries) + "\n]"
             for part, entries in catalogue.items())
    return "{\n" + ",\n".join(lists) + "\n}\n"


def as_row(place):
    """Returns the function and file of a row: "updateGra jni/metadata_updater_capture_features.cpp"."""
    return re.sub(r" \((\w+\.cpp)\)$", r" jni/\1", place)


def rows_of(catalogue):
    """Restores the rows that the entries were made from."""
    rows = set()

    def add(kind, name, rests):
        rows.update(f"{kind} {name} {as_row(rest)}" for rest in rests)

    for tag in catalogue["tags"]:
        add("depends", tag["name"], tag["changes"] + ["*"] * len(tag["changesMost"]))
        add("reads", tag["name"], [place for place in tag["readBy"] if place != NOBODY])
        add("puts", tag["name"], tag["putBackBy"])
    for parameter in catalogue["parameters"]:
        rows.update(f"absent {parameter['name']} {value}" for value in parameter["withoutTags"])
        add("writes", parameter["name"], parameter["writtenBy"])
        add("returns", parameter["name"], parameter["readBackBy"])
    for algorithm in catalogue["algorithms"]:
        add("algorithm", algorithm["name"], [f"{each['sample']} {each['fate']}" for each in algorithm["samples"]])
    return rows
