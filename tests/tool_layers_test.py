#!/usr/bin/env python3
"""Checks that no package of the command uses a package of a higher layer: tool_layers_test.py"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent / "service/java/com/orlu/orlu3rdalgoservice/tool"
# From bottom to top.
LAYERS = ("text", "json", "tags", "imagefile", "request", "image", "check", "run", "model", "judge",
          "explain", "compare", "importer", "catalogue", "view", "cli")
IMPORT = re.compile(r"^import (?:static )?com\.orlu\.orlu3rdalgoservice\.tool\.(?:(\w+)\.)?[A-Z]\w*", re.MULTILINE)

wrong = [f"{folder.name}: no such layer" for folder in ROOT.iterdir()
         if folder.is_dir() and folder.name not in LAYERS]
for file in sorted(ROOT.rglob("*.java")):
    layer = file.parent.name if file.parent != ROOT else ""
    for used in set(IMPORT.findall(file.read_text())):
        if layer in LAYERS and used in LAYERS and LAYERS.index(used) > LAYERS.index(layer):
            wrong.append(f"{file.relative_to(ROOT)} uses {used}, which is above {layer}")
print("\n".join(wrong) or "All passed")
sys.exit(bool(wrong))
