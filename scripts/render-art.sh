#!/usr/bin/env bash
# Renders the editor's pictures from resources/art/ into resources/img/.
#   render-art.sh           render all of them
#   render-art.sh --check   render elsewhere and fail if a picture in resources/img/ differs
# Needs librsvg2-bin and fonts-inter and installs them where they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."

art=resources/art
img=resources/img
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Name, width and height of all frames together, which stand one above the other. The switches' height
# of 32 a frame and the handles' of 22 keep the rows of the dimensions clear of each other.
sizes="
Tolmara_v2_small 960 600
Circle_small 62 62
Triangle_small 36 22
TriangleUp_small 36 22
V1_small 32 64
V2_small 32 64
V3_small 32 64
V4_small 32 64
V5_small 32 64
Fastmode_small 54 40
"

fonts=/usr/share/fonts/opentype/inter
if ! command -v rsvg-convert > /dev/null || [ ! -d "$fonts" ]; then
  root=$([ "$(id -u)" -eq 0 ] || echo sudo)
  $root apt-get install -y --no-install-recommends librsvg2-bin fonts-inter
fi

# One font folder and no settings of the machine or user, so that every machine draws the same letters.
cat > "$scratch/fonts.conf" << END
<fontconfig><dir>$fonts</dir><cachedir>$scratch/cache</cachedir></fontconfig>
END
export FONTCONFIG_FILE="$scratch/fonts.conf"

failed=0
while read -r name width height; do
  png="$scratch/$name.png"
  rsvg-convert --output "$png" "$art/$name.svg"
  read -r w h < <(od -An -j16 -N8 -tu4 --endian=big "$png")
  if [ "$w $h" != "$width $height" ]; then
    echo "$name: $w by $h pixels, the layout needs $width by $height" >&2
    failed=1
  elif [ "${1:-}" != --check ]; then
    cp "$png" "$img/$name.png"
  elif ! cmp -s "$png" "$img/$name.png"; then
    echo "$img/$name.png is not what $art/$name.svg gives" >&2
    failed=1
  fi
done < <(grep . <<< "$sizes")
exit $failed
