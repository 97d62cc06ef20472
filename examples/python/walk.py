#!/usr/bin/env python3
# %% [markdown]
# A model is imported, led along a path, plotted and written as GLB. Run it as a script, or cell by
# cell in an editor that knows "# %%".
#
# usage: walk.py [MODEL] [FOLDER]

# %%
import sys
from pathlib import Path

import matplotlib
import numpy as np

import vexa

matplotlib.use("Agg")
import matplotlib.pyplot as plt

model = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/assimp/models/X/Testwuson.X"
folder = Path(sys.argv[2] if len(sys.argv) > 2 else "out/python")
folder.mkdir(parents=True, exist_ok=True)

# %% Import one clip. It walks in place, so it is given the stride of its feet.
stem = str(folder / "bison")
found = vexa.import_model(model, stem, clips=["Wuson_Walk"], travel=(0, -1.3, 0))
take, frames, rate = found["takes"][0]
rate = round(rate)
print(f"{found['vertices']} vertices, take {take}: {frames} frames at {rate} per second")

# %% A scene is a dict in the form of a scene file.
scene = vexa.Scene(
    {
        "settings": {"timeScale": rate},
        "paths": [{"name": "bend", "points": [{"position": [0, 0, 0], "after": [4, 0, 0]},
                                              {"position": [8, 6, 0], "before": [0, -4, 0]}]}],
        "objects": [{"name": "bison", "mesh": "bison.obj", "animation": "bison.amo", "anchorVertex": 1191,
                     "takes": [{"name": take, "frames": frames, "rate": rate}]}],
        "instances": [{"name": "walker", "object": "bison"}],
        "values": [
            {"name": "walk", "kind": "walk", "path": "bend", "instance": "walker",
             "keys": [{"frame": 0, "value": 0}, {"frame": 300, "value": 0}]},
            {"name": "glow", "keys": [{"frame": 0, "curve": "sinus", "value": 0},
                                      {"frame": 200, "curve": "oneMinusSquare", "value": 1},
                                      {"frame": 300, "value": 0.2}]},
        ],
    },
    str(folder),
)

# %% A value over frames, and the way of the walker seen from above.
shown = range(0, 301)
places = scene.placements("walker", shown)["world"]
figure, (left, right) = plt.subplots(1, 2, figsize=(9, 4))
left.plot(shown, scene.sample("glow", shown))
left.set(title="glow", xlabel="frame")
right.plot(places[:, 0], places[:, 1])
right.set(title="walker from above", aspect="equal")
figure.savefig(folder / "walk.png", dpi=100)

# %% Deformed points are one array: frames, points, coordinates.
poses = scene.deform("walker", range(0, 300, 10))
print(f"poses {poses.shape}, lowest point {poses[..., 2].min():.3f}")
assert np.isfinite(poses).all()

# %% The walk as a file for any viewer.
scene.write_glb(str(folder / "walk.glb"), range(0, 300, 4))
print(folder / "walk.png", folder / "walk.glb")
