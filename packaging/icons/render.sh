#!/usr/bin/env bash
# Renders the pictures of the icons in the sizes that desktops ask for. They stand in the repository,
# so that no build needs a renderer; run this after a drawing has changed.
set -euo pipefail

icons=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
for name in com.orbelt.Quorvane application-x-quorvane; do
    for size in 16 22 24 32 48 64 128 256 512; do
        case $size in
            16) drawing=$name-16 ;;
            22 | 24) drawing=$name-24 ;;
            *) drawing=$name ;;
        esac
        picture=$icons/$size/$name.png
        mkdir -p "$icons/$size"
        if [ "$size" = 22 ]; then # the drawing without its empty rim
            rsvg-convert -w 24 -h 24 --left=-1 --top=-1 --page-width=22 --page-height=22 \
                "$icons/$drawing.svg" -o "$picture"
        else
            rsvg-convert -w "$size" -h "$size" "$icons/$drawing.svg" -o "$picture"
        fi
    done
done
