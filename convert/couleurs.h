// Colour effects: three tables that map an 8-bit source component to a 5-bit
// GBA component. Gamma, addition, blending towards white or black and the
// number of shades only rebuild the tables, so applying them costs one look-up
// per component.
#pragma once
#include <cstdint>

extern uint8_t TableRouge[256];
extern uint8_t TableVerte[256];
extern uint8_t TableBleue[256];

// Rebuilds the three tables from the conversion settings.
void ConstruitTablesCouleur();
