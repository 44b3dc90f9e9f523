#!/usr/bin/env bash
# demo.sh: installs what is missing, builds Tolmara, reverberates the demo sound into out/ and draws
# what happened, and the editor. Run again, it only builds what has changed.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh build
[[ -f build/release/build.ninja ]] || cmake --preset release >/dev/null
cmake --build --preset release --target Tolmara tolmara plot_data

tolmara=build/release/tolmara
plot_data=build/release/tools/plot_data
dry=resources/demo/dry.flac
out=out
columns=$(mktemp -d)
trap 'rm -rf "$columns"' EXIT
mkdir -p "$out"

# name of the file, preset, gain in dB that brings it about as loud as the others
while read -r name preset gain; do
  "$tolmara" render "$dry" "$out/$name.flac" --preset "$preset" --set "Gain=$gain"
done <<'TABLE'
hall       Hall        0
plate      Plate-long  9
cathedral  Cathedral  12
five-dim   Y-zone      9
TABLE
"$tolmara" response "$out/hall-response.wav" --preset Hall
cp "$dry" "$out/dry.flac"

for kind in envelope level spectrogram; do
  "$plot_data" $kind "$dry" >"$columns/dry.$kind"
  "$plot_data" $kind "$out/hall.flac" >"$columns/wet.$kind"
  "$plot_data" $kind "$out/hall-response.wav" >"$columns/response.$kind"
done
"$plot_data" decay "$out/hall-response.wav" >"$columns/response.decay"
"$tolmara" screenshot "$out/editor.png" --preset Hall
gnuplot -e "folder='$columns'; picture='$out/hall.png'; name='Hall'" resources/demo/plot.gp

cat <<END

Listen to these, the dry sound first:
  $PWD/$out/dry.flac
  $PWD/$out/hall.flac       a concert hall
  $PWD/$out/plate.flac      a long plate
  $PWD/$out/cathedral.flac  four dimensions
  $PWD/$out/five-dim.flac   five dimensions, which no real room has
and look at $PWD/$out/hall.png and, for the editor, $PWD/$out/editor.png.
The hall's impulse response is hall-response.wav beside them.
END
