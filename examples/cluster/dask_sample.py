#!/usr/bin/env python3
"""Samples a value of a scene on the workers of a Dask cluster; each loads the scene once per task.

usage: dask_sample.py SCENE VALUE FRAMES TASKS
"""
import sys

import numpy as np
from dask.distributed import Client, LocalCluster

import vexa


def sample(file, value, first, last):
    return vexa.load(file).sample(value, range(first, last))


if __name__ == "__main__":
    file, value, frames, tasks = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
    cuts = [frames * i // tasks for i in range(tasks + 1)]
    # A cluster of one's own: Client("tcp://scheduler:8786").
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        parts = client.map(lambda a, b: sample(file, value, a, b), cuts[:-1], cuts[1:])
        whole = np.concatenate(client.gather(parts))
    assert np.array_equal(whole, vexa.load(file).sample(value, range(frames)), equal_nan=True)
    print(f"{frames} frames of {value} in {tasks} tasks: the same as in one process")
