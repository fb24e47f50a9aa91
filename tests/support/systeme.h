// Test support: the system set up as start-up sets it (hooks, formats,
// colour tables, the editor's script rows, picture libraries), for suites
// that run conversions, the editor or the window in process.
#pragma once
#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "editor/plans.h"
#include "format/formats.h"
#include "script/crochets.h"
#include "script/interpreteur.h"

inline void InstalleSysteme() {
    InstalleInterpreteur();
    InstalleFormats();
    CrochetsScript.conv = [](const char* t) { ExecuteConv(t); };
    CrochetsScript.reconstruitTablesCouleur = ConstruitTablesCouleur;
    InstalleEditeur();
    ConstruitTablesCouleur();
    InitialiseFormats();
    InitialiseImages();
}
