// The two bit layouts of the GBA that the whole system reads: the text
// background map cell and the 15-bit colour. Nobody else spells these masks.
#pragma once
#include <cstdint>

// ---- Map cells -------------------------------------------------------------------
// A text background cell: tile 0-9, horizontal mirror 10, vertical mirror 11,
// palette bank 12-15. Cells are 32-bit in memory whatever their width in the
// file; only the editor's GBA emulation and the bits display read these bits.
constexpr uint32_t CELLULE_TUILE = 0x3FF;
constexpr uint32_t CELLULE_MIROIR_H = 1u << 10;
constexpr uint32_t CELLULE_MIROIR_V = 1u << 11;
constexpr int CELLULE_DECALAGE_BANQUE = 12;
constexpr uint32_t CELLULE_BANQUE = 0xFu << CELLULE_DECALAGE_BANQUE;

constexpr uint32_t TuileDeCellule(uint32_t c) { return c & CELLULE_TUILE; }
constexpr int BanqueDeCellule(uint32_t c) { return (int)(c >> CELLULE_DECALAGE_BANQUE & 0xF); }
constexpr bool MiroirHDeCellule(uint32_t c) { return (c & CELLULE_MIROIR_H) != 0; }
constexpr bool MiroirVDeCellule(uint32_t c) { return (c & CELLULE_MIROIR_V) != 0; }
constexpr uint32_t Cellule(uint32_t tuile, bool miroirH, bool miroirV, int banque) {
    return (tuile & CELLULE_TUILE) | (miroirH ? CELLULE_MIROIR_H : 0) | (miroirV ? CELLULE_MIROIR_V : 0) |
           ((uint32_t)banque & 0xF) << CELLULE_DECALAGE_BANQUE;
}

// ---- Colours ----------------------------------------------------------------------
// A GBA colour: red in bits 0-4, green 5-9, blue 10-14, each 0..31. It is
// shown in 24 bits by multiplying each component by 8.
constexpr uint32_t COMPOSANTE_GBA = 31;

constexpr uint32_t CouleurGba(uint32_t rouge, uint32_t vert, uint32_t bleu) {
    return (rouge & COMPOSANTE_GBA) | (vert & COMPOSANTE_GBA) << 5 | (bleu & COMPOSANTE_GBA) << 10;
}
constexpr int RougeGba(uint32_t c) { return (int)(c & COMPOSANTE_GBA); }
constexpr int VertGba(uint32_t c) { return (int)(c >> 5 & COMPOSANTE_GBA); }
constexpr int BleuGba(uint32_t c) { return (int)(c >> 10 & COMPOSANTE_GBA); }
