#!/usr/bin/env python3
"""A run in parts: merged to the bytes of one run, resumed by checksum, and refused when parts are
missing, there twice, damaged or of another run; and the layout of a point cache.

usage: parts_test.py VEXA
"""
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

VEXA = sys.argv.pop(1)
MODEL = "/usr/share/assimp/models/glTF2/simple_skin/simple_skin.gltf"


def vexa(*arguments, expect=0):
    done = subprocess.run([VEXA, *map(str, arguments)], capture_output=True, text=True)
    assert done.returncode == expect, (arguments, done.stdout, done.stderr)
    return done.stdout if expect == 0 else done.stderr


class Parts(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self.folder.name)
        vexa("import", MODEL, "--out", self.root / "skin")
        self.scene, self.out = self.root / "skin.json", self.root / "out"

    def tearDown(self):
        self.folder.cleanup()

    def run_parts(self, mesh, tasks, skip=()):
        for task in set(range(tasks)) - set(skip):
            self.run_part(mesh, f"{task}/{tasks}")

    def run_part(self, mesh, task, *more, frames="3:60:3"):
        return vexa("run", self.scene, "--frames", frames, "--mesh", mesh, "--out", self.out,
                    "--task", task, *more)

    def test_merged_parts_are_the_bytes_of_one_run(self):
        for mesh, tasks, *more in (("none", 1), ("glb", 3), ("pc2", 7), ("obj", 4),
                                   ("glb", 33, "--glb", "morph")):
            whole = self.root / "whole"
            vexa("run", self.scene, "--frames", "3:60:3", "--mesh", mesh, "--out", whole, *more)
            for task in range(tasks):
                self.run_part(mesh, f"{task}/{tasks}", *more)
            vexa("merge", self.out)
            for file in whole.iterdir():
                self.assertEqual((self.out / file.name).read_bytes(), file.read_bytes(),
                                 (mesh, tasks, file.name))
            shutil.rmtree(whole)
            shutil.rmtree(self.out)

    def test_gaps_doubles_damage_and_other_runs_are_named(self):
        self.run_parts("pc2", 4, skip=[1, 2])
        fault = vexa("merge", self.out, expect=1)
        self.assertIn("missing: part_1_of_4 (frames 18 to 30), part_2_of_4 (frames 33 to 45)", fault)
        self.run_part("pc2", "1/4")
        self.run_part("pc2", "2/4")
        shutil.copytree(self.out / "part_2_of_4", self.out / "part_2_again")
        self.assertIn("has the same frames 33 to 45 as", vexa("merge", self.out, expect=1))
        shutil.rmtree(self.out / "part_2_again")
        with open(self.out / "part_3_of_4" / "values.csv", "a") as file:
            file.write("x")
        self.assertIn("part_3_of_4/values.csv: is not as the run wrote it",
                      vexa("merge", self.out, expect=1))
        self.run_part("pc2", "3/4", frames="3:63:3")
        self.assertIn("is a part of another run", vexa("merge", self.out, expect=1))
        self.assertFalse((self.out / "values.csv").exists())

    def test_only_what_is_not_whole_is_played_again(self):
        self.run_part("pc2", "0/2")
        self.assertIn("is whole", self.run_part("pc2", "0/2", "--resume"))
        points = self.out / "part_0_of_2" / next((self.out / "part_0_of_2").glob("*.pc2")).name
        good = points.read_bytes()
        points.write_bytes(good[:-1] + bytes([good[-1] ^ 1]))
        self.assertNotIn("is whole", self.run_part("pc2", "0/2", "--resume"))
        self.assertEqual(points.read_bytes(), good)

    def test_wrong_tasks_are_bad_usage(self):
        for task in ("2/2", "-1/2", "0/0", "1", "a/2", "0/2x", "0/1000001"):
            vexa("run", self.scene, f"--task={task}", "--out", self.out, expect=2)
        vexa("run", self.scene, "--resume", expect=2)
        self.assertIn("there is no part of a run", vexa("merge", self.root, expect=1))

    def test_a_point_cache_has_its_layout(self):
        vexa("run", self.scene, "--frames", "3:9:3", "--mesh", "pc2", "--out", self.out)
        vexa("run", self.scene, "--frames", "6", "--mesh", "obj", "--out", self.out)
        cache = next(self.out.glob("*.pc2")).read_bytes()
        mark, version, points, first, step, samples = struct.unpack("<12siiffi", cache[:32])
        self.assertEqual((mark, version, first, step, samples), (b"POINTCACHE2\0", 1, 3, 3, 3))
        self.assertEqual(len(cache), 32 + 12 * points * samples)
        lines = (self.out / "frame_000006.obj").read_text().splitlines()
        written = [float(x) for line in lines if line.startswith("v ") for x in line.split()[1:4]]
        second = struct.unpack(f"<{3 * points}f", cache[32 + 12 * points:32 + 24 * points])
        self.assertEqual(list(second), [struct.unpack("<f", struct.pack("<f", x))[0]
                                        for x in written])


unittest.main()
