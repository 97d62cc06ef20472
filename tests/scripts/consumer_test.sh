#!/usr/bin/env bash
# Installs to a scratch prefix, then builds and runs one client against it with find_package (as
# C++17) and with pkg-config (as C++20), and looks at what the library shows.
# usage: consumer_test.sh BUILD_DIR CXX
set -euo pipefail
build=$1
cxx=$2
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null

cmake -G Ninja -S "$here/consumer" -B "$scratch/client" -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_CXX_COMPILER="$cxx" -DREADME="$here/../../README.md" >/dev/null
cmake --build "$scratch/client" >/dev/null
"$scratch/client/client"
"$scratch/client/first" | grep -q '^ 50 0.5000$'

libdir=$(dirname "$(find "$prefix" -name vexa.pc)")
export PKG_CONFIG_PATH=$libdir
# The scratch prefix is not the one that was configured.
flags=$(pkg-config --define-variable=prefix="$prefix" --cflags --libs vexa)
# shellcheck disable=SC2086
"$cxx" -std=c++20 "$here/consumer/client.cpp" -o "$scratch/client20" $flags
LD_LIBRARY_PATH=$(dirname "$libdir") "$scratch/client20"

library=$(dirname "$libdir")/libvexa.so.0
foreign=$(nm -DC --defined-only "$library" | cut -d' ' -f3- |
  grep -vE '^VEXA_0|^((non-)?virtual thunk to |vtable for |typeinfo (name )?for |guard variable for )?(Norvel|UXS|UxZel|Oru)::' || true)
if [ -n "$foreign" ]; then
  echo "symbols that the library should not show:"
  echo "$foreign" | head
  exit 1
fi
if nm -D --defined-only "$library" | grep ' u '; then
  echo "unique symbols keep the library from being unloaded"
  exit 1
fi
echo "consumer: both clients run, no foreign symbol"
