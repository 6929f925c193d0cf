#!/bin/sh
# The sample run of 'make run': real places in Great Britain from longitude and
# latitude (WGS 84) to the UTM zone of each, then to the British National Grid.
set -e
kvcart=${1:-build/kvcart}
places=${2:-examples/places.txt}

echo "== LONG/LAT (WGS 84) to the UTM zone of each place"
grep -v '^#' "$places" | while read -r lon lat name; do
  [ -n "$lon" ] || continue
  zone=$("$kvcart" zone "$lon")
  printf '%-7s ' "$zone"
  echo "$lon $lat $name" | "$kvcart" transform LONG/LAT "$zone" --precision 2
done

echo
echo "== LONG/LAT (WGS 84) to the British National Grid (OSGB 1936, EPSG transformation 1314)"
"$kvcart" transform LONG/LAT "British National Grid" --precision 2 \
  --towgs84-to 446.448,-125.157,542.06,0.15,0.247,0.842,-20.489 "$places"
