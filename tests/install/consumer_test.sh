#!/bin/sh
# Installs the build into a scratch prefix, then builds and runs a small host
# program against it twice: with CMake's find_package(KvCart) and with
# pkg-config. The installed kvcart program must find its catalogue unaided,
# and the installation must work from wherever it was moved to.
# Usage: consumer_test.sh BUILD_DIR SOURCE_DIR SCRATCH_DIR
set -eu
build=$1
source=$2
scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
prefix=$scratch/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
for f in include/kvcart/interface/KvCart.h share/kvcart/ellipsoid.gxr share/kvcart/map_projection.gxr \
         share/man/man1/kvcart.1 bin/kvcart; do
  test -e "$prefix/$f" || { echo "not installed: $f"; exit 1; }
done
libdir=$(find "$prefix" -name 'libkvcart.so.0' -print | head -n 1)
test -n "$libdir" || { echo "libkvcart.so.0 not installed"; exit 1; }
libdir=$(dirname "$libdir")
soname=$(objdump -p "$libdir/libkvcart.so.0" | awk '/SONAME/ {print $2}')
test "$soname" = "libkvcart.so.0" || { echo "SONAME is '$soname'"; exit 1; }

# find_package
cmake -S "$source/tests/install/consumer" -B "$scratch/with-cmake" -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_BUILD_RPATH="$libdir" >/dev/null
cmake --build "$scratch/with-cmake" >/dev/null
"$scratch/with-cmake/consumer"

# pkg-config, after moving the installation: the .pc file finds its prefix itself.
mv "$prefix" "$scratch/moved"
prefix=$scratch/moved
libdir=$prefix/${libdir#"$scratch/prefix/"}
export PKG_CONFIG_PATH="$libdir/pkgconfig"
version=$(sed -n "s/^project(KvCart VERSION \([0-9.]*\).*/\1/p" "$source/CMakeLists.txt")
test "$(pkg-config --modversion kvcart)" = "$version" || { echo "pkg-config gives the wrong version"; exit 1; }
c++ -std=c++17 -o "$scratch/with-pkgconfig" "$source/tests/install/consumer/consumer.cpp" \
    -DCATALOGUE_DIR="\"$(pkg-config --variable=datadir kvcart)/\"" \
    $(pkg-config --cflags --libs kvcart) -Wl,-rpath,"$libdir"
"$scratch/with-pkgconfig"

# The moved program finds the catalogue beside it and writes nothing unasked.
out=$(echo "9.5 47.5" | XDG_CONFIG_HOME="$scratch/config" "$prefix/bin/kvcart" transform LONG/LAT UTM-32)
test "$out" = "537656.6740 5260850.8753" || { echo "installed kvcart gave '$out'"; exit 1; }
test ! -e "$scratch/config" || { echo "a read-only run created the user directory"; exit 1; }
# The Python package, when built: the moved installation's package finds the
# catalogue beside it (share/kvcart, relative to the package).
package=$(find "$prefix" -path '*/dist-packages/kvcart/__init__.py' -print | head -n 1)
if [ -f "$build/CMakeCache.txt" ] && grep -q '^KVCART_PYTHON:BOOL=ON' "$build/CMakeCache.txt"; then
  test -n "$package" || { echo "the Python package was built but not installed"; exit 1; }
  for f in _config.py py.typed __init__.pyi dask.py; do
    test -e "$(dirname "$package")/$f" || { echo "not installed: kvcart/$f"; exit 1; }
  done
  python=$(sed -n 's/^Python3_EXECUTABLE:FILEPATH=//p' "$build/CMakeCache.txt")
  out=$(cd "$scratch" && env -u KVCART_DATA_DIR PYTHONPATH="$(dirname "$(dirname "$package")")" \
        KVCART_USER_DIR="$scratch/py-user/" "$python" -c "import kvcart; print('%.3f %.3f' % kvcart.Transformer.from_crs('EPSG:4326','EPSG:27700', always_xy=True).transform(-0.1281, 51.5080))")
  test "$out" = "530006.222 180446.284" || { echo "installed Python package gave '$out'"; exit 1; }
  echo "installed Python package: ok"
fi
echo "install, find_package, pkg-config and the installed program: ok"
