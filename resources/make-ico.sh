#!/bin/sh
# Makes windows/sorvanto-lite.ico from svg/I_2.svg, in the sizes that Windows asks for. Run by hand after the
# drawing has changed; the icon is kept in the repository, so that a build needs neither of the programs.
# Needs rsvg-convert (librsvg2-bin) and icotool (icoutils).
set -eu
cd "$(dirname "$0")"

pngs=$(mktemp -d)
trap 'rm -rf "$pngs"' EXIT

for size in 16 20 24 32 40 48 64; do
    rsvg-convert -w $size -h $size -o "$pngs/$size.png" svg/I_2.svg
done
rsvg-convert -w 256 -h 256 -o "$pngs/large.png" svg/I_2.svg

# The large one as it is: as a bitmap it would be ten times the size.
icotool --create --output windows/sorvanto-lite.ico \
    "$pngs"/16.png "$pngs"/20.png "$pngs"/24.png "$pngs"/32.png "$pngs"/40.png "$pngs"/48.png "$pngs"/64.png \
    --raw "$pngs/large.png"
