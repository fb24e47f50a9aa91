#!/usr/bin/env python3
"""Makes the example's pictures (python3 standard library only):
  niveau.png  256 x 64, 8 colours and the mask colour, built from a few
              repeated 8 x 8 tiles: 4-bit tiles;
  decor.png   128 x 128, 1024 colours in soft blocks, more than a palette
              holds: reduced to 255 for 8-bit tiles;
  titre.bmp   96 x 32, a 24-bit gradient with a bar (2305 colours): 16-bit
              bitmap.
The files are committed; run this again only to change them."""
import struct
import zlib

MASQUE = (255, 0, 254)


def png(chemin, largeur, hauteur, pixel):
    brut = b"".join(b"\0" + bytes(c for x in range(largeur) for c in pixel(x, y)) for y in range(hauteur))

    def bloc(genre, donnees):
        return struct.pack(">I", len(donnees)) + genre + donnees + struct.pack(">I", zlib.crc32(genre + donnees))

    with open(chemin, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n")
        f.write(bloc(b"IHDR", struct.pack(">IIBBBBB", largeur, hauteur, 8, 2, 0, 0, 0)))
        f.write(bloc(b"IDAT", zlib.compress(brut, 9)))
        f.write(bloc(b"IEND", b""))


def bmp(chemin, largeur, hauteur, pixel):
    pas = (largeur * 3 + 3) // 4 * 4
    lignes = b""
    for y in range(hauteur - 1, -1, -1):
        ligne = b"".join(bytes(reversed(pixel(x, y))) for x in range(largeur))
        lignes += ligne + b"\0" * (pas - largeur * 3)
    entete = b"BM" + struct.pack("<IHHI", 54 + len(lignes), 0, 0, 54)
    entete += struct.pack("<IiiHHIIiiII", 40, largeur, hauteur, 1, 24, 0, len(lignes), 2835, 2835, 0, 0)
    with open(chemin, "wb") as f:
        f.write(entete + lignes)


# A level: sky (mask colour), bricks, grass, a few coins.
COULEURS = [(16, 16, 24), (200, 72, 40), (232, 120, 64), (120, 40, 24), (48, 160, 48), (96, 208, 80),
            (24, 96, 32), (248, 216, 64), (255, 248, 160), (64, 64, 80), (136, 136, 152), (240, 240, 240),
            (40, 120, 200), (96, 176, 248), (168, 88, 160)]


def niveau(x, y):
    tx, ty, px, py = x // 8, y // 8, x % 8, y % 8
    if ty < 4:
        if (tx * 7 + ty * 3) % 11 == 0 and 2 <= px <= 5 and 2 <= py <= 5:
            return COULEURS[7] if (px + py) % 2 else COULEURS[8]
        return MASQUE
    if ty == 4:
        return COULEURS[5] if py < 3 else COULEURS[4] if py < 6 else COULEURS[6]
    mortier = py % 4 == 3 or (px + (4 if (py // 4) % 2 else 0)) % 8 == 7
    return COULEURS[3] if mortier else COULEURS[1] if (tx + ty) % 3 else COULEURS[2]


def decor(x, y):
    bx, by = x // 16, y // 16
    return ((bx * 32 + (x % 16) // 4 * 8) % 256, (by * 32 + (y % 16) // 4 * 8) % 256, ((bx + by) * 24) % 256)


def titre(x, y):
    if 12 <= y < 20:
        return (255, 255, 255)
    return (x * 255 // 95, 64, 255 - y * 255 // 31)


png("niveau.png", 256, 64, niveau)
png("decor.png", 128, 128, decor)
bmp("titre.bmp", 96, 32, titre)
