#!/bin/sh
# The sample run of 'make run': real places in Great Britain from longitude and
# latitude on WGS 84 (EPSG:4326) to the UTM zone of each, then to the British
# National Grid (EPSG:27700), both by their EPSG codes.
set -e
kvcart=${1:-build/kvcart}
places=${2:-examples/places.txt}

echo "== WGS 84 (EPSG:4326) to the UTM zone of each place"
grep -v '^#' "$places" | while read -r lon lat name; do
  [ -n "$lon" ] || continue
  # "UTM-30 EPSG:32630": the zone's name and its code.
  set -- $("$kvcart" zone "$lon" "$lat")
  printf '%-7s %-10s ' "$1" "$2"
  echo "$lon $lat $name" | "$kvcart" transform EPSG:4326 "$2" --precision 2
done

echo
echo "== WGS 84 (EPSG:4326) to the British National Grid (EPSG:27700; OSGB36 by the registry's Helmert, EPSG:1314)"
"$kvcart" transform EPSG:4326 EPSG:27700 --precision 2 "$places"
