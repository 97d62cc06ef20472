#!/usr/bin/env bash
# Installs a build, moves the tree to another prefix, and builds clients against it: by find_package
# (as C++17) and by pkg-config (as C++20), with gcc and clang. Nothing is told where the tree went
# beyond CMAKE_PREFIX_PATH and PKG_CONFIG_PATH. Then looks at what the library exports.
# usage: consumer_test.sh BUILD_DIR
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset LD_LIBRARY_PATH
prefix=$scratch/moved/tree

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
mkdir "$scratch/moved"
mv "$scratch/prefix" "$prefix"
pkgconfig=$(dirname "$(find "$prefix" -name vexa.pc)")
export PKG_CONFIG_PATH=$pkgconfig

components=()
if [ -x "$prefix/bin/vexa" ]; then
  components=(importer scene)
  "$prefix/bin/vexa" --version | grep -q '^vexa [0-9]'
  man=$(find "$prefix" -name vexa.1)
  grep -q 'vexa run SCENE' "$man"
  bash -c '. "$1"; COMP_WORDS=(vexa run --pl); COMP_CWORD=2; _vexa; test "${COMPREPLY[*]}" = --plot' \
    bash "$(find "$prefix" -path '*completions/vexa')"
fi

for cxx in g++ clang++; do
  command -v "$cxx" >/dev/null || continue
  client=$scratch/client_$cxx
  list=$(IFS=';'; echo "${components[*]}")
  cmake -G Ninja -S "$here/consumer" -B "$client" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$cxx" -DREADME="$here/../../README.md" -DCOMPONENTS="$list" >/dev/null
  cmake --build "$client" >"$client.log" || { cat "$client.log"; exit 1; }
  "$client/client"
  "$client/first" | grep -q '^ 50 0.5000$'
  if [ ${#components[@]} -gt 0 ]; then
    "$client/importing" /usr/share/assimp/models/glTF2/simple_skin/simple_skin.gltf "$client/skin"
  fi

  # shellcheck disable=SC2046
  "$cxx" -std=c++20 "$here/consumer/client.cpp" -o "$client/client20" \
         $(pkg-config --cflags --libs --static vexa) -Wl,-rpath,"$(pkg-config --variable=libdir vexa)"
  "$client/client20"
  # shellcheck disable=SC2046
  "$cxx" -std=c++17 "$client/first.cpp" -o "$client/first17" $(pkg-config --cflags --libs vexa-refhost) \
         -Wl,-rpath,"$(pkg-config --variable=libdir vexa)"
  "$client/first17" | grep -q '^ 50 0.5000$'
done

if [ -e "$pkgconfig/vexa_c.pc" ]; then
  # shellcheck disable=SC2046
  cc -std=c99 -Wall -Wextra -pedantic -Werror "$here/../../c/example.c" -o "$scratch/example" \
     $(pkg-config --cflags --libs vexa_c) -Wl,-rpath,"$(pkg-config --variable=libdir vexa_c)"
  "$scratch/example" | grep -q '^height 10 8.00$'
fi
module=$(find "$prefix" -path '*/vexa/__init__.py')
if [ -n "$module" ]; then
  PYTHONPATH=$(dirname "$(dirname "$module")") /usr/bin/python3 -c 'import vexa; vexa.Scene({})'
fi

library=$(dirname "$pkgconfig")/libvexa.so.0
if [ -e "$library" ]; then
  foreign=$(nm -DC --defined-only "$library" | cut -d' ' -f3- |
    grep -vE '^VEXA_0|^((non-)?virtual thunk to |vtable for |typeinfo (name )?for |guard variable for )?(Norvel|UXS|UxZel|Oru)::' || true)
  if [ -n "$foreign" ]; then
    echo "symbols that the library should not export:"
    echo "$foreign" | head
    exit 1
  fi
  if nm -D --defined-only "$library" | grep ' u '; then
    echo "unique symbols keep the library from being unloaded"
    exit 1
  fi
fi
echo "consumer: all clients run, no foreign symbol"
