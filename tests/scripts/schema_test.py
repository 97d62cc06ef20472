#!/usr/bin/env python3
"""Checks the example scenes, and what `vexa info --json` prints, against the installed schemas.

usage: schema_test.py VEXA SOURCE_DIR
"""
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

VEXA, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])
MODEL = "/usr/share/assimp/models/glTF2/simple_skin/simple_skin.gltf"


def validator(name):
    schema = json.loads((SOURCE / "docs" / f"{name}.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


scene, info = validator("scene"), validator("info")
for file in sorted((SOURCE / "examples/scenes").glob("*.json")):
    scene.validate(json.loads(file.read_text()))
with tempfile.TemporaryDirectory() as folder:
    stem = f"{folder}/skin"
    subprocess.run([VEXA, "import", MODEL, "--out", stem], check=True, stdout=subprocess.DEVNULL)
    scene.validate(json.loads(pathlib.Path(stem + ".json").read_text()))
    for file in (MODEL, stem + ".amo", stem + ".obj", stem + ".json"):
        printed = subprocess.run([VEXA, "info", file, "--json"], check=True,
                                 capture_output=True, text=True).stdout
        info.validate(json.loads(printed))
        broken = {**json.loads(printed), "formatVersion": 2}
        assert not info.is_valid(broken), "another version passes"
print("schemas: fine")
