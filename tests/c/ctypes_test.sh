#!/usr/bin/env bash
# usage: ctypes_test.sh EXAMPLE PYTHON EXAMPLE.py LIBRARY
set -euo pipefail
diff <("$1") <("$2" "$3" "$4")
