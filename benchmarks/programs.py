"""Rows of scripts/bench about whole programs: how long the command takes and how much memory.

A row has `measure`, which gives the two numbers of a ratio; the minimum of five runs counts.
"""
import filecmp
import os
import shutil
import subprocess
import time

MODEL = "/usr/share/assimp/models/X/Testwuson.X"
RUNS = 5


def run(command, env=None):
    """Seconds and peak memory in bytes of a command."""
    begin = time.perf_counter()
    with open(os.devnull, "wb") as nothing:
        child = subprocess.Popen([str(part) for part in command], stdout=nothing, env=env)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        raise SystemExit(f"bench: failed: {' '.join(map(str, command))}")
    return time.perf_counter() - begin, 1024 * usage.ru_maxrss


def nanoseconds(command, env=None, prepare=lambda: None):
    times = []
    for _ in range(RUNS):
        prepare()
        times.append(run(command, env)[0])
    return 1e9 * min(times)


class Demo:
    """The bison of scripts/demo, imported once."""

    def __init__(self, build, root):
        self.vexa = build / "cli/vexa"
        self.folder = build / "programs"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir()
        run([self.vexa, "import", MODEL, "--clip", "Wuson_Walk", "--travel", "0,-1.3",
             "--out", self.folder / "bison"])
        shutil.copy(root / "examples/scenes/bison_walk.json", self.folder / "scene.json")

    def command(self, frames, mesh, *options, out="out"):
        return [self.vexa, "run", self.folder / "scene.json", "--frames", f"0:{frames - 1}",
                "--mesh", mesh, "--out", self.folder / out, *options]

    def threads(self):
        clear = lambda: [shutil.rmtree(self.folder / out, ignore_errors=True)
                         for out in ("one", "two")]
        one = nanoseconds(self.command(540, "obj", "--jobs", "1", out="one"), prepare=clear)
        two = nanoseconds(self.command(540, "obj", "--jobs", "2", out="two"))
        run(self.command(540, "obj", "--jobs", "1", out="one"))
        names = sorted(os.listdir(self.folder / "one"))
        if names != sorted(os.listdir(self.folder / "two")) or filecmp.cmpfiles(
                self.folder / "one", self.folder / "two", names, shallow=False)[1:] != ([], []):
            raise SystemExit("bench: two threads write other bytes than one")
        clear()
        return two, one

    def memory(self, mesh):
        long, short = (run(self.command(frames, mesh))[1] for frames in (10000, 100))
        shutil.rmtree(self.folder / "out")
        return long, short


def rows(build, root):
    demo = []

    def on_demo(measure):
        def measured():
            if not demo:
                demo.append(Demo(build, root))
            return measure(demo[0])
        return measured

    library = build / "vexa/libvexa.so"
    text = lambda: int(subprocess.run(["size", library], capture_output=True, text=True,
                                      check=True).stdout.splitlines()[1].split()[0])
    empty = lambda env=None: nanoseconds(["/bin/true"], env)
    preloaded = {**os.environ, "LD_PRELOAD": str(library)}
    result = [
        {"number": 24, "operation": "540 frames of the demo as OBJ, two threads / one",
         "direction": "times faster", "limit": 1.8, "measure": on_demo(Demo.threads),
         "note": "the same bytes"},
        {"number": 28, "operation": "vexa --version - an empty program, ms",
         "direction": "extra ms", "limit": 5,
         "measure": lambda: (nanoseconds([build / "cli/vexa", "--version"]), empty())},
        {"number": 28, "operation": "an empty program with libvexa.so - without, ms",
         "direction": "extra ms", "limit": 1, "measure": lambda: (empty(preloaded), empty())},
        {"number": 28, "operation": "text of libvexa.so by size, kB", "direction": "at most",
         "limit": 600, "measure": lambda: (text(), 1000)},
    ]
    for mesh, name in (("none", "CSV"), ("obj", "OBJ"), ("glb", "GLB")):
        result.append({"number": 26, "direction": "at most", "limit": 1.1,
                       "operation": f"peak memory of vexa run, {name}, 10,000 frames / 100",
                       "measure": on_demo(lambda d, mesh=mesh: d.memory(mesh))})
    return [{"subsystem": "programs", "repetitions": 1, **row} for row in result]
