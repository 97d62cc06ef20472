"""The command `vexa`, run as a person would run it.

usage: command_test.py PATH_OF_VEXA
"""
import base64
import json
import os
import pathlib
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

VEXA = str(pathlib.Path(sys.argv.pop(1)).resolve())
IDENTITY = [1.0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]


def animation_file(frames, vertices, axis=1):
    """One node that moves all vertices by one unit a frame, upwards unless told otherwise."""
    data = struct.pack("<II16dII", 101, 1, *IDENTITY, frames, 1)
    for frame in range(frames):
        matrix = list(IDENTITY)
        matrix[6], matrix[9], matrix[5], matrix[10] = 1, 1, 0, 0  # the runtime crosses y and z
        matrix[12 + axis] = frame
        data += struct.pack("<16d", *matrix)
    data += struct.pack("<I", vertices)
    return data + b"".join(struct.pack("<Id", v, 1.0) for v in range(vertices))


SCENE = {
    "paths": [{"name": "line", "points": [
        {"position": [0, 0, 0], "after": [1, 0, 0]},
        {"position": [3, 0, 0], "before": [-1, 0, 0]}]}],
    "objects": [{"name": "flag", "mesh": "flag.obj", "animation": "flag.amo",
                 "takes": [{"name": "rise", "frames": 5, "rate": 25}]}],
    "instances": [{"name": "red", "object": "flag", "position": [10, 0, 0]}],
    "values": [
        {"name": "size", "keys": [{"frame": 0, "value": 0}, {"frame": 10, "value": 5}]},
        {"name": "camera", "kind": "position", "path": "line",
         "keys": [{"frame": 0, "value": 0}, {"frame": 10, "value": 1}]},
        {"name": "frame", "kind": "takeFrame", "instance": "red", "cyclic": True, "repeat": 9,
         "keys": [{"frame": 0, "value": 0}, {"frame": 5, "value": 4}]}],
}


def slide(name, colour=0.5, kind="translation"):
    """A triangle as glTF, on a node that the clip "slide" moves by 4 along X in two seconds."""
    data = struct.pack("<9f2f6f", 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 4, 0, 0)
    uri = "data:application/octet-stream;base64," + base64.b64encode(data).decode()
    views = [(0, 36), (36, 8), (44, 24)]
    counts = [(3, "VEC3"), (2, "SCALAR"), (2, "VEC3")]
    return json.dumps({
        "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": name, "mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "material": 0}]}],
        "materials": [{"name": "paint", "pbrMetallicRoughness": {
            "baseColorFactor": [colour, 0, 1, 1], "baseColorTexture": {"index": 0}}}],
        "textures": [{"source": 0}], "images": [{"uri": "lost.png"}],
        "buffers": [{"uri": uri, "byteLength": len(data)}],
        "bufferViews": [{"buffer": 0, "byteOffset": o, "byteLength": n} for o, n in views],
        "accessors": [{"bufferView": i, "componentType": 5126, "count": n, "type": t}
                      for i, (n, t) in enumerate(counts)],
        "animations": [{"name": "slide", "samplers": [{"input": 1, "output": 2}], "channels": [
            {"sampler": 0, "target": {"node": 0, "path": kind}}]}]})


class Command(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = pathlib.Path(self.temporary.name)
        (self.folder / "flag.obj").write_text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")
        (self.folder / "flag.amo").write_bytes(animation_file(5, 3))
        self.write_scene(SCENE)

    def write_scene(self, scene):
        (self.folder / "scene.json").write_text(json.dumps(scene))

    def vexa(self, *arguments, expect=0, **options):
        options.setdefault("stdout", subprocess.PIPE)
        result = subprocess.run([VEXA, *arguments], cwd=self.folder, text=True, timeout=60,
                                stderr=subprocess.PIPE, **options)
        self.assertEqual(result.returncode, expect, result.stderr)
        if expect != 0:
            self.assertRegex(result.stderr, r"\Avexa: .+\n\Z")
            self.assertEqual(result.stderr.count("\n"), 1)
        return result

    def read(self, name):
        return (self.folder / name).read_bytes()

    def test_values_placements_and_meshes_of_a_run(self):
        self.vexa("run", "scene.json", "--frames", "0:10:2", "--mesh", "obj", "--out", "out")
        rows = [line.split(",") for line in self.read("out/values.csv").decode().splitlines()]
        self.assertEqual(rows[0], ["frame", "size", "camera.x", "camera.y", "camera.z",
                                   "camera.directionX", "camera.directionY", "camera.directionZ",
                                   "frame"])
        self.assertEqual(rows[3][:3], ["4", "2", "1.2000000476837158"])  # 2/5 of 3 units, in float
        self.assertEqual([row[-1] for row in rows[1:]], ["0", "2", "4", "1", "3", "0"])
        self.assertTrue(self.read("out/placements.csv").splitlines()[3].startswith(b"4,red,0,4,10,0,0"))
        points = [line for line in self.read("out/frame_000004.obj").splitlines() if line[:2] == b"v "]
        self.assertEqual(points[1], b"v 11 0 4")  # placed at x = 10 and risen by four frames

    def test_a_range_split_over_runs_gives_the_same_bytes(self):
        for frames, out in ("0:9", "whole"), ("0:4", "first"), ("5:9", "second"):
            self.vexa("run", "scene.json", "--frames", frames, "--mesh", "obj", "--out", out)
        for name in "values.csv", "placements.csv":
            second = self.read("second/" + name).split(b"\n", 1)[1]
            self.assertEqual(self.read("first/" + name) + second, self.read("whole/" + name))
        for frame in range(10):
            name = "frame_%06d.obj" % frame
            half = "first/" if frame < 5 else "second/"
            self.assertEqual(self.read(half + name), self.read("whole/" + name))

    def test_a_walker_inside_a_walker_is_the_same_in_a_split_run(self):
        (self.folder / "flag.amo").write_bytes(animation_file(5, 3, axis=0))
        walk = {"kind": "walk", "path": "line",
                "keys": [{"frame": 0, "value": 0}, {"frame": 9, "value": 4}]}
        self.write_scene({
            **SCENE, "instances": [{"name": "red", "object": "flag", "scale": 0.3},
                                   {"name": "child", "object": "flag", "parent": "red"}],
            "values": [{**walk, "name": "second", "instance": "child"},
                       {**walk, "name": "first", "instance": "red"}]})
        for frames, out in ("0:5", "whole"), ("3:5", "part"):
            self.vexa("run", "scene.json", "--frames", frames, "--out", out)
        part = self.read("part/placements.csv").split(b"\n", 1)[1]
        self.assertTrue(self.read("whole/placements.csv").endswith(part))

    def test_pictures_and_glb(self):
        self.vexa("run", "scene.json", "--frames", "0:4", "--plot", "--mesh", "glb", "--out", "out")
        self.assertEqual(self.read("out/scene.glb")[:4], b"glTF")
        self.assertEqual(self.read("out/poses.png")[:4], b"\x89PNG")
        for name in "curves.svg", "paths.svg":
            self.assertTrue(self.read("out/" + name).rstrip().endswith(b"</svg>"))
        self.vexa("sample", "scene.json", "size", "--frames", "0:10", "--plot", "size.svg")
        self.assertIn(b"</svg>", self.read("size.svg"))

    def test_tables_of_the_small_commands(self):
        table = self.vexa("sample", "scene.json", "size", "--frames", "0:10:5").stdout.split()
        self.assertEqual(table, ["frame", "value", "0", "0", "5", "2.5", "10", "5"])
        self.vexa("sample", "scene.json", "size", "--plot", "size.png")
        self.assertEqual(self.read("size.png")[:4], b"\x89PNG")
        self.vexa("sample", "scene.json", "size", "--plot", "size.gif", expect=2)
        self.assertIn("Usage:", self.vexa("presets").stdout)
        sun = self.vexa("sun", "--latitude", "0", "--longitude", "0", "--date", "2024-03-20T12:00")
        self.assertIn("altitude", sun.stdout)
        presets = self.vexa("presets", "--levels", "3,3,1,4,4").stdout
        self.assertIn("ambiance  1\nsettings  2\n", presets)
        facts = json.loads(self.vexa("info", "flag.amo", "--json").stdout)
        self.assertEqual((facts["takes"], facts["framesPerTake"], facts["links"]), (1, [5], 3))
        self.assertIn("values", self.vexa("info", "scene.json").stdout)

    def test_a_model_is_described_and_imported(self):
        (self.folder / "body.gltf").write_text(slide("body"))
        facts = json.loads(self.vexa("info", "body.gltf", "--json").stdout)
        self.assertEqual(facts["clips"], [{"name": "slide", "seconds": 2.0, "nodes": 1, "keys": 4}])
        self.assertEqual(facts["notes"],
                         ["the picture 'lost.png' of material 'paint' is not there"])
        self.vexa("import", "body.gltf", "--out", "out", "--fps", "12.5", "--scale", "10")
        self.assertEqual((self.folder / "out.mtl").read_text(),
                         "newmtl paint\nKd 0.735357 0 1\n")
        self.assertTrue((self.folder / "out.obj").read_text().startswith("mtllib out.mtl\nv 0 0 0\n"))
        self.assertEqual(json.loads((self.folder / "out.json").read_text())["objects"][0]["takes"],
                         [{"name": "slide", "frames": 26, "rate": 13}])
        self.vexa("run", "out.json", "--frames", "25", "--mesh", "obj", "--out", "run")
        self.assertIn("v 40 0 0", (self.folder / "run" / "frame_000025.obj").read_text())

    def test_clips_of_other_files_and_strict(self):
        for name in ("body", "other"):
            (self.folder / f"{name}.gltf").write_text(slide(name))
        (self.folder / "walk.gltf").write_text(slide("body"))
        told = self.vexa("import", "body.gltf", "--motion", "walk.gltf", "--out", "out").stdout
        self.assertIn('take "walk": 61 frames', told)
        for arguments, text in (
                (["--motion", "other.gltf"], "'other.gltf' moves no node that the model has: 'other'"),
                (["--clip", "slid"], "it has no clip 'slid'; did you mean 'slide'? its clips are 'slide'"),
                (["--strict"], "it cannot be shown exactly as the file means it: the picture "
                               "'lost.png' of material 'paint' is not there")):
            result = self.vexa("import", "body.gltf", "--out", "no", *arguments, expect=1)
            self.assertEqual(result.stderr, f"vexa: body.gltf: {text}\n")
        self.assertEqual(list(self.folder.glob("no*")), [])

    def test_an_import_names_the_files_that_it_was_asked_for(self):
        (self.folder / "slide.gltf").write_text(slide("node"))

        def full_disk():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)

        fault = self.vexa("import", "slide.gltf", "--out", "m", expect=1, preexec_fn=full_disk)
        self.assertRegex(fault.stderr, r"\Avexa: m\.\w+: ")
        self.vexa("import", "slide.gltf", "--out", "m.amo")
        self.assertTrue((self.folder / "m.json").exists() and (self.folder / "m.amo").exists())

    def test_a_walker_inside_a_moved_turned_and_scaled_parent_stays_on_its_path(self):
        (self.folder / "flag.amo").write_bytes(animation_file(5, 3, axis=0))
        self.write_scene({
            **SCENE,
            "instances": [{"name": "ship", "position": [100, 50, 3], "rotationDegrees": 57,
                           "scale": [2, 2, 2]},
                          {"name": "red", "object": "flag", "parent": "ship", "scale": 0.1}],
            "values": [{"name": "walk", "kind": "walk", "path": "line", "instance": "red",
                        "keys": [{"frame": 0, "value": 0}, {"frame": 9, "value": 4}]}]})
        self.vexa("run", "scene.json", "--frames", "0:4", "--mesh", "obj", "--out", "out")
        for frame in range(5):
            anchor = self.read("out/frame_%06d.obj" % frame).split(b"\n")[0].split()[1:]
            self.assertAlmostEqual(float(anchor[1]), 0, places=4)
            self.assertAlmostEqual(float(anchor[0]), min(frame, 3), places=4)

    def test_an_import_without_standard_streams_works(self):
        (self.folder / "body.gltf").write_text(slide("body"))
        subprocess.run(["sh", "-c", f"{VEXA} import body.gltf --out out <&- >&- 2>&-"],
                       cwd=self.folder)
        self.assertIn("v 0 0 0", (self.folder / "out.obj").read_text())
        self.vexa("info", "out.amo")
        self.vexa("import", "body.gltf", "--out", "named.amo")
        self.assertTrue((self.folder / "named.obj").exists())

    def test_bad_input_is_one_line_and_exit_1(self):
        (self.folder / "cut.amo").write_bytes(self.read("flag.amo")[:200])
        self.vexa("info", "cut.amo", expect=1)
        self.vexa("info", "absent.amo", expect=1)
        self.vexa("run", ".", expect=1)
        self.vexa("info", "/dev/zero", expect=1)
        self.vexa("sample", "scene.json", "absent", expect=1)
        self.vexa("sun", "--latitude", "0", "--longitude", "0", "--date", "2023-02-29", expect=1)
        with open("/dev/full", "w") as full:
            self.vexa("info", "flag.amo", expect=1, stdout=full)
            self.vexa("run", "--help", expect=1, stdout=full)

    def test_scenes_that_cannot_be_played_are_refused(self):
        def with_value(**value):
            return {**SCENE, "values": [{"name": "v", "keys": [], **value}]}

        key = {"frame": 0, "value": 0}
        for scene, text in (
                (with_value(), "has no key"),
                (with_value(kind="takeFrame", instance="red", keys=[key]), "needs a key at the start"),
                (with_value(keys=[{"frame": -1, "value": 0}]), "no key at a frame from 0"),
                (with_value(keys=[key, {"frame": 1, "value": float("inf")}]), "parse error"),
                ({**SCENE, "settings": {"timeScale": 10 ** 400}}, "number overflow"),
                ({**SCENE, "paths": [{"name": "line", "points": [{"position": [1, 1, 1]}] * 2}],
                  "values": [{"name": "v", "kind": "walk", "path": "line", "instance": "red",
                              "keys": [key, {**key, "frame": 9}]}]}, "path of length 0"),
                ({**SCENE, "objects": [{**SCENE["objects"][0],
                                        "takes": SCENE["objects"][0]["takes"] * 2}]}, "more takes"),
                (with_value(kind="position", path="line", keys=[{"frame": 0, "value": 2}]),
                 "outside 0 to 1"),
                ({**SCENE, "objects": [{**SCENE["objects"][0], "animation": "absent.amo"}]},
                 "no such animation file"),
                ({**SCENE, "objects": [{**SCENE["objects"][0], "animation": "scene.json"}]},
                 "not the good version")):
            self.write_scene(scene)
            self.assertIn(text, self.vexa("run", "scene.json", expect=1).stderr)
        self.assertFalse((self.folder / "out").exists())
        (self.folder / "flag.amo").write_bytes(animation_file(5, 4))
        self.write_scene(SCENE)
        self.assertIn("bad vertex index", self.vexa("run", "scene.json", expect=1).stderr)

    def test_bad_usage_is_exit_2(self):
        for frames in "5:1", "1:2:0", "-1:2", "a", "0:1:2:3", "0:99999999":
            self.vexa("run", "scene.json", "--frames=" + frames, expect=2)
        self.vexa(expect=2)
        self.vexa("run", expect=2)
        self.vexa("presets", "--levels", "1,2,3", expect=2)
        self.vexa("sun", "--latitude", "nan", "--longitude", "0", "--date", "2024-03-20", expect=2)
        self.assertIn('"walk" is no command', self.vexa("walk", expect=2).stderr)
        self.assertIn("Example: ", self.vexa("run", "--help").stdout)

    def tree(self):
        """Every file under the folder with its bytes."""
        return {p.relative_to(self.folder).as_posix(): p.read_bytes() if p.is_file() else None
                for p in self.folder.rglob("*")}

    def fails_and_changes_nothing(self, *arguments, **options):
        before = self.tree()
        result = self.vexa(*arguments, expect=1, **options)
        self.assertEqual(self.tree(), before)
        return result.stderr

    def test_a_failed_run_leaves_an_older_one_as_it_was(self):
        self.vexa("run", "scene.json", "--frames", "0:4", "--mesh", "obj", "--out", "out")
        run = ["run", "scene.json", "--frames", "0:40", "--mesh", "obj", "--jobs", "2", "--out"]
        self.assertIn("/proc", self.fails_and_changes_nothing(*run, "/proc/out"))

        def full_disk():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)

        for out in "out", "new/folder":
            fault = self.fails_and_changes_nothing(*run, out, preexec_fn=full_disk)
            self.assertIn("vexa: " + out + "/values.csv", fault)
        (self.folder / "out/frame_000030.obj").mkdir()
        self.assertIn("out/frame_000030.obj: Is a directory", self.fails_and_changes_nothing(*run, "out"))
        (self.folder / "file").write_text("kept")
        self.fails_and_changes_nothing(*run, "file")
        self.fails_and_changes_nothing("sample", "scene.json", "size", "--plot", "x.svg",
                                       preexec_fn=full_disk)
        far = {**SCENE["instances"][0], "position": [1e300, 0, 0]}
        self.write_scene({**SCENE, "instances": [far]})
        for mesh in "obj", "glb":
            run[5] = mesh
            self.assertIn("no finite point", self.fails_and_changes_nothing(*run, "far"))

    def test_a_signal_at_any_moment_leaves_all_or_nothing(self):
        run = [VEXA, "run", "scene.json", "--frames", "0:60", "--mesh", "obj", "--out"]
        started = time.monotonic()
        subprocess.run([*run, "whole"], cwd=self.folder, stdout=subprocess.DEVNULL, check=True)
        length = time.monotonic() - started
        names, before = {p.name for p in (self.folder / "whole").iterdir()}, self.tree()
        ended = 0
        for moment in range(100):
            out = "deep/new" if moment % 2 else "whole"
            process = subprocess.Popen([*run, out], cwd=self.folder, stdout=subprocess.DEVNULL)
            time.sleep(min(length, 1) * moment / 100)
            number = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)[moment % 3]
            process.send_signal(number)
            self.assertIn(process.wait(60), (0, -number))
            # A signal may also end a command whose files are all in their places.
            if moment % 2 and (process.returncode == 0 or (self.folder / "deep").exists()):
                self.assertEqual({p.name for p in (self.folder / out).iterdir()}, names)
                shutil.rmtree(self.folder / "deep")
            ended += process.returncode != 0
            self.assertEqual(self.tree(), before, moment)
        self.assertGreater(ended, 10)

    def test_jobs_write_the_same_bytes(self):
        for mesh in "obj", "glb":
            trees = []
            for jobs in "1", "2", "7":
                self.vexa("run", "scene.json", "--frames", "0:9", "--mesh", mesh, "--plot",
                          "--jobs", jobs, "--out", "out")
                trees.append(self.tree())
                shutil.rmtree(self.folder / "out")
            self.assertEqual(trees[0], trees[1])
            self.assertEqual(trees[0], trees[2])
        far = {**SCENE["instances"][0], "scale": 1e300}
        self.write_scene({**SCENE, "instances": [far]})
        self.vexa("run", "scene.json", "--mesh", "obj", "--jobs", "5", expect=1)

    def test_takes_and_the_length_of_a_scene(self):
        frames = lambda name: self.read(name + "/values.csv").count(b"\n") - 1
        self.vexa("run", "scene.json", "--out", "all")
        self.assertEqual(frames("all"), 11)
        short = {**SCENE["objects"][0], "takes": [{"name": "rise", "frames": 3, "rate": 25}]}
        self.write_scene({**SCENE, "objects": [short], "values": SCENE["values"][2:]})
        for take, expected in (None, 5), ("rise", 3):
            self.vexa("run", "scene.json", *(["--take", take] if take else []), "--out", "one")
            self.assertEqual(frames("one"), expected)
        self.assertIn("no instance has", self.vexa("run", "scene.json", "--take", "x", expect=1).stderr)

    def test_a_scene_without_objects_is_an_empty_glb(self):
        self.write_scene({"values": SCENE["values"][:1]})
        self.vexa("run", "scene.json", "--mesh", "glb", "--out", "out")
        self.assertEqual(len(self.read("out/scene.glb")) % 4, 0)
        self.assertIn(b'"scenes":[{}]', self.read("out/scene.glb"))

    def test_closed_streams_and_names_with_escape_sequences(self):
        command = 'exec "$0" run scene.json --out out <&- >&- 2>&-'
        subprocess.run(["sh", "-c", command, VEXA], cwd=self.folder, check=True)
        self.assertTrue(self.read("out/values.csv").startswith(b"frame"))
        evil = "\x1b]0;x\x07"
        self.write_scene({"values": [{"name": evil, "keys": []}]})
        result = self.vexa("info", "scene.json", expect=1)
        self.assertNotIn("\x1b", result.stdout + result.stderr)
        self.assertIn("\\x1b]0;x\\x07", result.stdout)
        self.assertEqual(json.loads(self.vexa("info", "--json", "scene.json", expect=1).stdout)["values"],
                         [evil])
        for arguments in ("info", evil), ("run", "scene.json"), ("sample", "scene.json", evil + "x"):
            self.assertNotIn("\x1b", self.vexa(*arguments, expect=1).stderr)

    @unittest.skipIf(os.environ.get("VEXA_TEST_SANITIZE"), "the sanitizer needs room")
    def test_huge_files_are_refused_unread(self):
        def little_memory():
            resource.setrlimit(resource.RLIMIT_AS, (1 << 29, 1 << 29))

        (self.folder / "a.amo").write_bytes(self.read("flag.amo"))
        (self.folder / "b.amo").touch()
        (self.folder / "c.json").write_text("[" * 5_000_000)
        for name, size, fault in (("a.amo", 40e9, "more than the 4294967296 that are read"),
                                  ("a.amo", 4e9, "bytes after the last node"),
                                  ("b.amo", 4e9, "the version is not 101"),
                                  ("d.obj", 40e9, "more than the"), ("e.json", 1e9, "bytes of JSON"),
                                  ("c.json", 5e6, "bytes of JSON; there is memory for")):
            with open(self.folder / name, "ab") as file:
                file.truncate(int(size))
            result = self.vexa("info", name, expect=1, preexec_fn=little_memory)
            self.assertIn(fault, result.stderr)


if __name__ == "__main__":
    unittest.main()
