#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks to build and test respcore.
set -euo pipefail
pkgs=(g++ cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
      libopenblas-dev liblapack-dev libcli11-dev python3
      python3-dev python3-pybind11 pybind11-dev python3-numpy python3-meshio python3-dask
      python3-distributed python3-pytest)
missing=()
for p in "${pkgs[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi
