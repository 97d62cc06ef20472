#!/usr/bin/env python3
"""Compares the Python module with the same loops in C++, run one after the other, best of five.

usage: speed.py LOOPS SCENE VALUE INSTANCE   (LOOPS is the program vexa_python_loops)
"""
import subprocess
import sys
import time

import vexa

loops, file, value, instance = sys.argv[1:]
scene = vexa.load(file)


def best(work, rounds=5):
    seconds = []
    for _ in range(rounds):
        start = time.perf_counter()
        work()
        seconds.append(time.perf_counter() - start)
    return min(seconds)


plain = subprocess.run([loops, file, value], check=True, capture_output=True, text=True).stdout
sampled, deformed = map(float, plain.split())
for what, ours, theirs, limit in (
        ("a million samples", best(lambda: scene.sample(value, range(1_000_000))), sampled, 1.2),
        ("1000 poses", best(lambda: scene.deform(instance, range(1000))), deformed, 1.1)):
    print(f"{what}: Python {ours:.4f} s, C++ {theirs:.4f} s, {ours / theirs:.3f} times (at most {limit})")
