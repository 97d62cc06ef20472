"""scripts/check_layers: the real tree is clean, and every kind of planted violation is found."""
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

PLANTED = {
    "a layer below": ("vexa/math/planted.h", '#include "vexa/host/CZelPoint.h"',
                      'vexa/math may not include "vexa/host/CZelPoint.h"'),
    "more than the clock": ("vexa/mesh/planted.cpp", '#include "vexa/support/UxThrow.h"',
                            'vexa/mesh may not include "vexa/support/UxThrow.h"'),
    "the umbrella": ("vexa/math/planted.cpp", '#include "vexa/vexa.h"', "umbrella"),
    "a path that is not from the root": ("vexa/math/planted.cpp", '#include "conversion.h"',
                                         "does not start at the root"),
    "a file-system call": ("vexa/mesh/planted.cpp", "#include <dirent.h>",
                           "<dirent.h> belongs to vexa/support"),
    "intrinsics": ("vexa/mesh/planted.cpp", "#include <immintrin.h>", "belongs to vexa/math/simd"),
    "a room that another may not know": ("scene/planted.cpp", '#include "importer/model_import.h"',
                                         'scene may not include "importer/model_import.h"'),
    "Assimp outside the importer": ("scene/planted.cpp", "#include <assimp/scene.h>",
                                    "<assimp/scene.h> belongs to importer"),
    "Cairo outside the plots": ("formats/planted.cpp", "#include <cairo.h>",
                                "<cairo.h> belongs to plot"),
    "the importer behind the page": ("web/planted.cpp", '#include "importer/model_import.h"',
                                     'web may not include "importer/model_import.h"'),
    "Emscripten outside the page": ("scene/planted.cpp", "#include <emscripten/emscripten.h>",
                                    "<emscripten/emscripten.h> belongs to web"),
    "pybind11 outside the module": ("scene/planted.cpp", "#include <pybind11/stl.h>",
                                    "<pybind11/stl.h> belongs to python"),
    "a script that imports from another folder": (
        "verify/planted.mjs", "import { a } from '../web/src/scene.ts';",
        'verify may not import "web/src/scene.ts"'),
    "a cycle": ("vexa/math/planted.h", '#include "vexa/math/planted.h"', "cycle: "),
    "a header missing from the umbrella": ("vexa/math/planted.h", "", "lacks vexa/math/planted.h"),
}


def check(root):
    return subprocess.run([ROOT / "scripts/check_layers", root], capture_output=True, text=True)


class CheckLayers(unittest.TestCase):
    def test_the_tree_is_clean(self):
        result = check(ROOT)
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_planted_violations_are_found(self):
        for name, (path, line, text) in PLANTED.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as temporary:
                tree = pathlib.Path(temporary)
                for folder in ("vexa", "importer", "scene", "formats"):
                    shutil.copytree(ROOT / folder, tree / folder)
                (tree / path).parent.mkdir(exist_ok=True)
                (tree / path).write_text(line + "\n")
                result = check(tree)
                self.assertEqual(result.returncode, 1)
                self.assertIn(text, result.stdout)


if __name__ == "__main__":
    unittest.main()
