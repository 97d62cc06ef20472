#!/usr/bin/env python3
"""The Python module: results against the command, shapes, faults, threads.

usage: vexa_test.py VEXA   (PYTHONPATH names the folder of the package)
"""
import csv
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import unittest

import numpy as np

import vexa

COMMAND = sys.argv.pop(1)
MODEL = "/usr/share/assimp/models/glTF2/simple_skin/simple_skin.gltf"
SCENE = {
    "paths": [{"name": "p", "points": [{"position": [0, 0, 0], "after": [1, 0, 0]},
                                       {"position": [4, 4, 0], "before": [0, -1, 0]}]}],
    "values": [
        {"name": "level", "keys": [{"frame": 0, "curve": "sinus", "value": 0},
                                   {"frame": 100, "value": 8}]},
        {"name": "way", "kind": "position", "path": "p",
         "keys": [{"frame": 0, "value": 0}, {"frame": 50, "value": 1}]},
        {"name": "tint", "type": "color", "keys": [{"frame": 0, "value": [0, 0, 0, 255]},
                                                   {"frame": 10, "value": [250, 100, 50, 255]}]},
    ],
}


class Values(unittest.TestCase):
    def test_samples_are_those_of_the_command(self):
        scene = vexa.Scene(SCENE)
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "s.json"
            file.write_text(json.dumps(SCENE))
            subprocess.run([COMMAND, "run", file, "--frames", "0:100:7", "--out", folder],
                           check=True, stdout=subprocess.DEVNULL)
            with open(pathlib.Path(folder) / "values.csv") as rows:
                table = np.array([row for row in csv.reader(rows)][1:], dtype=float)
        frames = range(0, 101, 7)
        ours = np.column_stack([scene.sample(name, frames) for name in scene.values])
        np.testing.assert_array_equal(ours, table[:, 1:])

    def test_frames_are_a_number_a_range_or_a_sequence(self):
        scene = vexa.Scene(SCENE)
        whole = scene.sample("level", range(101))
        self.assertEqual(whole.shape, (101,))
        np.testing.assert_array_equal(scene.sample("level", 50), [4])
        np.testing.assert_array_equal(scene.sample("level", range(90, 10, -40)), whole[[90, 50]])
        np.testing.assert_array_equal(scene.sample("level", np.array([3, 1])), whole[[3, 1]])
        self.assertEqual(scene.sample("way", []).shape, (0, 6))
        for wrong in (-1, [0.5], "x", [[1]], range(-1, 4), [2**40], None):
            with self.assertRaises(ValueError):
                scene.sample("level", wrong)

    def test_faults_have_the_text_of_the_library(self):
        with self.assertRaisesRegex(ValueError, 'there is no value "nothing"'):
            vexa.Scene(SCENE).sample("nothing", 0)
        with self.assertRaisesRegex(RuntimeError, '/values/0/keys: expected a list'):
            vexa.Scene({"values": [{"name": "v", "keys": 3}]})
        with self.assertRaisesRegex(RuntimeError, "absent.json"):
            vexa.load("absent.json")
        with self.assertRaises(RuntimeError):
            vexa.curve("linear", 0, 1, 0, 1, [2.0])

    def test_threads_may_share_a_scene(self):
        scene = vexa.Scene(SCENE)
        expected, results = scene.sample("way", range(5000)), [None] * 4

        def work(i):
            results[i] = scene.sample("way", range(5000))

        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        for result in results:
            np.testing.assert_array_equal(result, expected)


class Meshes(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.stem = self.folder.name + "/skin"
        self.found = vexa.import_model(MODEL, self.stem)

    def tearDown(self):
        self.folder.cleanup()

    def test_deformed_points_are_those_of_the_command(self):
        scene = vexa.load(self.stem + ".json")
        name = scene.meshes[0]
        points = scene.deform(name, [0, 7])
        self.assertEqual(points.shape, (2, self.found["vertices"], 3))
        self.assertEqual(scene.triangles(name).shape, (self.found["triangles"], 3))
        self.assertLess(scene.triangles(name).max(), points.shape[1])
        out = self.folder.name + "/out"
        subprocess.run([COMMAND, "run", self.stem + ".json", "--frames", "7", "--mesh", "obj",
                        "--out", out], check=True, stdout=subprocess.DEVNULL)
        lines = pathlib.Path(out, "frame_000007.obj").read_text().splitlines()
        written = np.array([line.split()[1:4] for line in lines if re.match("v ", line)])
        np.testing.assert_array_equal(points[1], written.astype(np.float32))
        placed = scene.placements(name, range(3))
        self.assertEqual(placed["world"].shape, (3, 3))

    def test_an_animation_file_survives_arrays(self):
        read = vexa.read_animation(self.stem + ".amo")
        copy = self.folder.name + "/copy.amo"
        vexa.write_animation(copy, **read)
        self.assertEqual(pathlib.Path(copy).read_bytes(),
                         pathlib.Path(self.stem + ".amo").read_bytes())
        read["nodes"][0]["weights"] = np.zeros(1)
        with self.assertRaisesRegex(ValueError, "same length"):
            vexa.write_animation(copy, **read)

    def test_a_glb_is_that_of_the_command(self):
        vexa.load(self.stem + ".json").write_glb(self.folder.name + "/a.glb", range(0, 10, 2))
        out = self.folder.name + "/out"
        subprocess.run([COMMAND, "run", self.stem + ".json", "--frames", "0:9:2", "--mesh", "glb",
                        "--glb", "morph", "--out", out], check=True, stdout=subprocess.DEVNULL)
        self.assertEqual(pathlib.Path(self.folder.name, "a.glb").read_bytes(),
                         pathlib.Path(out, "scene.glb").read_bytes())


class Tools(unittest.TestCase):
    def test_matrices_have_rows_and_columns(self):
        turn = vexa.rotation([0, 0, 1], np.pi / 2)
        np.testing.assert_allclose(vexa.transform(turn, [[1, 0, 0]]), [[0, 1, 0]], atol=1e-15)
        view = vexa.look_at([3, 0, 0], [0, 0, 0], [0, 0, 1])
        np.testing.assert_allclose(vexa.transform(view, [0, 0, 0]), [0, 0, -3], atol=1e-15)
        np.testing.assert_allclose(vexa.inverse(view) @ view, np.eye(4), atol=1e-12)
        with self.assertRaises(OverflowError):
            vexa.inverse(np.zeros((2, 4, 4)))
        with self.assertRaises(ValueError):
            vexa.inverse(np.zeros((3, 3)))

    def test_a_straight_path_has_its_length(self):
        path = vexa.BezierPath([[0, 0, 0], [3, 0, 0]], [[0, 0, 0], [-1, 0, 0]],
                               [[1, 0, 0], [0, 0, 0]])
        self.assertAlmostEqual(path.length, 3, places=5)
        np.testing.assert_allclose(path.at([[0, 0.5, 1]])[0, :, 0], [0, 1.5, 3], atol=1e-5)
        with self.assertRaises(ValueError):
            vexa.BezierPath([[0, 0, 0]], [[0, 0, 0]], [[0, 0, 0]])

    def test_the_sun_at_noon_is_in_the_south(self):
        noon = np.array(["2024-06-21T12:00", "2024-12-21T12:00"], dtype="datetime64[s]")
        summer, winter = vexa.sun_direction(48, 0, noon)
        self.assertLess(summer[1], 0)
        self.assertGreater(summer[2], winter[2] + 0.5)

    def test_presets_come_back(self):
        levels = vexa.preset_levels(1, 0, 2)
        self.assertEqual(vexa.level_presets(1, levels), (0, 2))
        with self.assertRaises(ValueError):
            vexa.level_values(1, [0, 0, 0, 0, 9])


unittest.main()
