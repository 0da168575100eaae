#!/usr/bin/env python3
"""Makes the folder of font files a web page carries (page_fonts.cmake runs it).

The page has no fontconfig: its catalogue is this folder (font_catalogue_web.cpp). It
gets the very files fontconfig finds on the build machine, so that text drawn in the
faces below has the same pixels natively and in the page:
  - Liberation Sans, regular, bold, italic and bold italic (Arial, the stock fonts and
    the default family), copied whole;
  - Noto Sans Mono CJK KR and SC (the Korean and Chinese default faces and the
    fallbacks for Hangul and Han characters), cut down by fontTools' pyftsubset to
    what the code pages of those languages can hold: every Hangul syllable and the
    characters of KS X 1001 for Korean, the characters of GB 2312 for Chinese, with
    ASCII in both. The glyphs keep their outlines and hints, the missing-glyph box
    included; only layout tables, which the engine does not use, are dropped.

usage: page_fonts.py OUTPUT_FOLDER
"""
import os
import shutil
import subprocess
import sys
import tempfile

HANGUL_SYLLABLES = range(0xAC00, 0xD7A4)


def double_byte_characters(codec):
    """Every character of the code page's double-byte (EUC) area, and ASCII."""
    characters = set(range(0x20, 0x7F))
    for lead in range(0xA1, 0xFF):
        for trail in range(0xA1, 0xFF):
            try:
                characters.update(ord(c) for c in bytes([lead, trail]).decode(codec))
            except UnicodeDecodeError:
                pass
    return characters


# (family, style, characters to keep or None for the whole file, output name)
PAGE_FACES = [
    ("Liberation Sans", "Regular", None, "LiberationSans-Regular.ttf"),
    ("Liberation Sans", "Bold", None, "LiberationSans-Bold.ttf"),
    ("Liberation Sans", "Italic", None, "LiberationSans-Italic.ttf"),
    ("Liberation Sans", "Bold Italic", None, "LiberationSans-BoldItalic.ttf"),
    ("Noto Sans Mono CJK KR", "Regular",
     lambda: double_byte_characters("euc_kr") | set(HANGUL_SYLLABLES), "NotoSansMonoCJKkr-Regular-subset.otf"),
    ("Noto Sans Mono CJK SC", "Regular", lambda: double_byte_characters("gb2312"),
     "NotoSansMonoCJKsc-Regular-subset.otf"),
]


def installed_face(family, style):
    """The file and face index fontconfig gives for the face; exits if it is missing."""
    found = subprocess.run(["fc-match", "-f", "%{family}\n%{style}\n%{file}\n%{index}", f"{family}:style={style}"],
                           check=True, capture_output=True, text=True).stdout.split("\n")
    families, styles, path, index = found[0].split(","), found[1].split(","), found[2], int(found[3])
    if family not in families or style not in styles:
        sys.exit(f"page_fonts.py: {family} {style} is not installed (fontconfig offers {found[0]} {found[1]}); "
                 "run scripts/setup.sh")
    return path, index


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    output = sys.argv[1]
    os.makedirs(output, exist_ok=True)
    for family, style, characters, name in PAGE_FACES:
        path, index = installed_face(family, style)
        target = os.path.join(output, name)
        if characters is None:
            shutil.copyfile(path, target)
            continue
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as unicodes:
            unicodes.write("\n".join(f"U+{c:04X}" for c in sorted(characters())))
            unicodes.flush()
            subprocess.run(["pyftsubset", path, f"--font-number={index}", f"--unicodes-file={unicodes.name}",
                            "--layout-features=", "--notdef-outline", f"--output-file={target}"], check=True)


if __name__ == "__main__":
    main()
