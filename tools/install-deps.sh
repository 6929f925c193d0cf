#!/bin/sh
# Installs the Debian packages the build needs, when they are missing.
# Only the compilers (clang for the fuzz targets), CMake, pkg-config (the install
# test builds a host with it) and the test/benchmark
# frameworks, and for the Python package pybind11, numpy and pytest (pyproj is
# its tests' reference), Dask, distributed and pandas for its Dask module: the library itself
# depends on the C++ standard library and libm alone.
set -e
need=""
for pkg in g++ cmake make pkgconf libgtest-dev libbenchmark-dev locales clang libclang-rt-14-dev \
           pybind11-dev python3-dev python3-numpy python3-pytest python3-pyproj python3-dask python3-distributed python3-pandas; do
  dpkg -s "$pkg" >/dev/null 2>&1 || need="$need $pkg"
done
[ -z "$need" ] && exit 0
echo "installing:$need"
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null 2>&1 && SUDO=sudo || { echo "please install:$need" >&2; exit 1; }
fi
${SUDO:-} apt-get update -q
DEBIAN_FRONTEND=noninteractive ${SUDO:-} apt-get install -y -q $need
