#!/usr/bin/env bash
# Installs a build into a scratch prefix and builds a small program against
# the installed package twice, with CMake's find_package and with
# pkg-config; each must build and run.
#   bash scripts/check-install.sh [BUILD_DIR]   (default build)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
prefix="$scratch/prefix"

cmake --install "$build" --prefix "$prefix" >/dev/null

# CMake: find_package(respcore) through CMAKE_PREFIX_PATH.
cmake -S packaging/consumer -B "$scratch/with-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/with-cmake" >/dev/null
mkdir -p "$scratch/run-cmake"
"$scratch/with-cmake/consumer" "$scratch/run-cmake"

# pkg-config: respcore.pc through PKG_CONFIG_PATH.
pc="$(dirname "$(find "$prefix" -name respcore.pc | head -n1)")"
export PKG_CONFIG_PATH="$pc"
libdir="$(pkg-config --variable=libdir respcore)"
mkdir -p "$scratch/with-pkg-config" "$scratch/run-pc"
cc -c packaging/consumer/c_entry.c $(pkg-config --cflags respcore) -o "$scratch/with-pkg-config/c_entry.o"
c++ -std=c++20 packaging/consumer/consumer.cpp "$scratch/with-pkg-config/c_entry.o" \
  $(pkg-config --cflags --libs respcore) -Wl,-rpath,"$libdir" -o "$scratch/with-pkg-config/consumer"
"$scratch/with-pkg-config/consumer" "$scratch/run-pc"

echo "check-install: the installed package builds and runs with find_package and with pkg-config"
