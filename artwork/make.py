#!/usr/bin/env python3
"""Draws the picture families that share parts: volume-*.svg, beep-*.svg, upload-strip.svg.

All other drawings are edited by hand. The files are written next to this script.
"""

import math
from pathlib import Path

BLUE, BLUE_LIGHT = "#2f7fd8", "#d6e8fb"
TEAL, AMBER, RED = "#1aa59a", "#e39a1f", "#d8453c"
AMBER_DARK = "#c9820f"  # for thin strokes: amber alone is too pale on white
SLATE, SLATE_LIGHT, SLATE_MID = "#6b7a8c", "#dfe5ec", "#a9b5c2"
LINE_COLOUR = "#8494a6"

FRAMES = 18
CELL_WIDTH, CELL_HEIGHT = 260, 40
PACKET_GAP = 54  # px between packets; a multiple of FRAMES keeps every step a whole pixel
PACKET_WIDTH = 12
LINE_START, LINE_END, LINE_Y = 40, 229, 31  # both ends lie hidden behind the devices
LAMP_ON, LAMP_OFF = "#b6f0c4", "#1f5fa8"


def svg(width, height, body):
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" fill="none"'
        ' stroke-width="2" stroke-linecap="round" stroke-linejoin="round">\n'
        f"  {body}\n</svg>\n"
    )


def lines(*parts):
    return "\n  ".join(parts)


def path(d, stroke, fill=None):
    tint = f' fill="{fill}"' if fill else ""
    return f'<path d="{d}" stroke="{stroke}"{tint}/>'


def shape(d, fill):
    return f'<path d="{d}" fill="{fill}"/>'


def arcs(x, y, radii, stroke):
    """Sound waves: arcs of 90 degrees that open to the right of (x, y)."""
    half = math.sqrt(0.5)
    d = "".join(
        f"M{x + r * half:.2f} {y - r * half:.2f}a{r} {r} 0 0 1 0 {2 * r * half:.2f}" for r in radii
    )
    return path(d, stroke)


def volume(waves):
    body, tint = (BLUE, BLUE_LIGHT) if waves else (SLATE, SLATE_LIGHT)
    speaker = path("M2 9h3l5-5v16l-5-5H2z", body, tint)
    if waves:
        return svg(24, 24, lines(speaker, arcs(9, 12, (5, 9, 13)[:waves], TEAL)))
    return svg(24, 24, lines(speaker, path("M15 9l6 6M21 9l-6 6", RED)))


def note(sounding):
    """A quaver in the upper right corner, grey and struck through when silent."""
    colour = AMBER_DARK if sounding else SLATE
    parts = [
        f'<ellipse cx="16.5" cy="9" rx="2.5" ry="2" fill="{colour}"/>',
        path("M18 9V2q1 3 4 4", colour),
    ]
    return parts if sounding else parts + [path("M13 1l10 10", RED)]


def power_sign(colour):
    return [path("M5 11a6 6 0 1 0 6 0M8 9v6", colour)]


def gear(colour, tint):
    teeth = "".join(
        f"M{8 + 5 * x:.4g} {16 + 5 * y:.4g}L{8 + 6 * x:.4g} {16 + 6 * y:.4g}"
        for x, y in ((math.cos(i * math.pi / 4), math.sin(i * math.pi / 4)) for i in range(8))
    )
    return [
        f'<circle cx="8" cy="16" r="4" stroke="{colour}" fill="{tint}"/>',
        path(teeth, colour),
    ]


def computer():
    return lines(
        f'<rect x="7" y="3" width="30" height="20" rx="2" stroke="{SLATE}" fill="{BLUE}"/>',
        path("M12 9h10M12 13h16M12 17h7", BLUE_LIGHT),
        f'<rect x="3" y="26" width="38" height="10" rx="2" stroke="{SLATE}" fill="{SLATE_MID}"/>',
        path("M8 31h8", SLATE_LIGHT),
    )


def scanner():
    return lines(
        shape("M13 15h7q1 7-4 13h-4z", AMBER),
        shape("M1 8 4 36a4 4 0 0 0 4 4h3a4 4 0 0 0 4-4l-1-15q0-4 3-6z", SLATE),
        shape("M29-1.5v20L8 16Q1 15 1 8.5T8 1.5z", BLUE),
        shape("M26-1 29-1.5q3 0 3 3v14q0 3-3 3l-3-.5z", TEAL),
    )


def upload_cell(frame):
    """One moment of the transfer: packets on the line, the scanner's lamp lit while one arrives."""
    first = LINE_START + PACKET_GAP * frame // FRAMES - PACKET_GAP
    positions = [
        x for x in range(first, LINE_END, PACKET_GAP) if x + PACKET_WIDTH > LINE_START
    ]
    receiving = positions[-1] + PACKET_WIDTH > LINE_END - 8
    return lines(
        f'<g transform="translate(0 {frame * CELL_HEIGHT})">',
        '<g clip-path="url(#clip)">',
        '<use href="#line"/>',
        *(f'<use href="#packet" x="{x}"/>' for x in positions),
        "</g>",
        '<use href="#ends"/>',
        f'<circle cx="231" cy="10" r="2" fill="{LAMP_ON if receiving else LAMP_OFF}"/>',
        "</g>",
    )


def upload_strip():
    """FRAMES cells, one below the other; the last one leads back to the first."""
    top = LINE_Y - 4
    defs = lines(
        "<defs>",
        f'<clipPath id="clip"><path d="M{LINE_START} 0H{LINE_END}V{CELL_HEIGHT}H{LINE_START}z"/>',
        "</clipPath>",
        f'<path id="line" d="M{LINE_START} {LINE_Y}H{LINE_END}" stroke="{LINE_COLOUR}"/>',
        f'<g id="packet"><rect y="{top}" width="{PACKET_WIDTH}" height="8" rx="2" fill="{TEAL}"/>',
        path(f"M4 {top + 3}v2M8 {top + 3}v2", "#d3f3ef") + "</g>",
        '<g id="ends">',
        computer(),
        f'<g transform="translate(222 4) scale(.8)">{scanner()}</g>',
        "</g>",
        "</defs>",
    )
    return svg(CELL_WIDTH, CELL_HEIGHT * FRAMES, lines(defs, *map(upload_cell, range(FRAMES))))


def main():
    folder = Path(__file__).resolve().parent
    pictures = {
        "volume-off": volume(0),
        "volume-low": volume(1),
        "volume-medium": volume(2),
        "volume-high": volume(3),
        "upload-strip": upload_strip(),
    }
    for state, sounding in (("off", False), ("on", True)):
        colour, tint = (BLUE, BLUE_LIGHT) if sounding else (SLATE, SLATE_LIGHT)
        pictures[f"beep-startup-{state}"] = svg(
            24, 24, lines(*power_sign(colour), *note(sounding)))
        pictures[f"beep-parameter-{state}"] = svg(
            24, 24, lines(*gear(colour, tint), *note(sounding)))
    for name, text in pictures.items():
        (folder / f"{name}.svg").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
