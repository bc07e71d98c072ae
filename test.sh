#!/usr/bin/env bash
# Installs what is missing, builds the program with its tests and runs them.
#   ./test.sh [arguments of ctest, for instance -R sqlite]
set -euo pipefail

cd -- "$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")"
tools/install-packages.sh test
cmake --preset dev
cmake --build --preset dev
ctest --preset dev "$@" # a run that finds no test is an error, by the preset
