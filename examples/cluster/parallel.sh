#!/usr/bin/env bash
# The same on one machine with GNU parallel. Started again, it plays only the parts that are missing.
# usage: parallel.sh SCENE FRAMES OUT TASKS
set -euo pipefail
seq 0 $(($4 - 1)) | parallel --halt now,fail=1 --jobs "$(nproc)" \
  vexa run "$1" --frames "$2" --out "$3" --jobs 1 --resume --task "{}/$4"
vexa merge "$3"
