"""Facts about the stage of a screenshot, for the end-to-end scripts.

Usage: python3 png_stage.py A.png            ->  "stage_colours=N red=M"
       python3 png_stage.py A.png B.png      ->  "stage_diff=N"
The stage is the band between the HUD line and the help bar (rows 18 to 385).
"red" counts the pixels of the Defence Line's hue: strong red, little green and blue.
Decoding is that of png_pixels.py (8-bit RGBA, filter 0, as the game writes them).
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from png_pixels import rows  # noqa: E402

STAGE_TOP, STAGE_BOTTOM = 18, 386


def main():
    first = rows(sys.argv[1])[STAGE_TOP:STAGE_BOTTOM]
    if len(sys.argv) > 2:
        second = rows(sys.argv[2])[STAGE_TOP:STAGE_BOTTOM]
        diff = sum(1 for a, b in zip(first, second)
                   for x in range(0, len(a), 4) if a[x:x + 3] != b[x:x + 3])
        print(f"stage_diff={diff}")
        return
    colours, red = set(), 0
    for row in first:
        for x in range(0, len(row), 4):
            r, g, b = row[x], row[x + 1], row[x + 2]
            colours.add((r, g, b))
            if r >= 150 and g <= 80 and b <= 70:
                red += 1
    print(f"stage_colours={len(colours)} red={red}")


if __name__ == "__main__":
    main()
