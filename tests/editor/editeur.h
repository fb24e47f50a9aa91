// Test support for the editor: a project folder with the whole system set up
// as start-up sets it, maps made by conv from pictures drawn here, and a
// clock that the test moves by hand.
#pragma once
#include "convert/conv.h"
#include "convert/couleurs.h"
#include "core/modeles.h"
#include "editor/composition.h"
#include "editor/edition.h"
#include "editor/editeur.h"
#include "editor/notifications.h"
#include "editor/plans.h"
#include "format/formats.h"
#include "platform/imagefichier.h"
#include "render/apercus.h"
#include "render/chargeurs.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"
#include "tests/support/enregistreur.h"
#include "tests/support/images.h"
#include "tests/support/scripts.h"
#include "tests/support/systeme.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

inline int64_t HorlogeEssai = 0;

struct EditeurEssai : testing::Test {
    DossierTemporaire dossier;
    EnregistreurMessages journal;

    void SetUp() override {
        PlateformeCourante.millisecondes = [] { return HorlogeEssai; };
        HorlogeEssai = 100000;
        InstalleSysteme();
        SauveVariables();
        ASSERT_EQ(CreeSurfaceApercu(), 1);
        ASSERT_EQ(CreeSurfacesEditeur(), 1);
        messages = 0;
    }
    void TearDown() override {
        FermePlans();
        EditeurOuvert = false;
        Fonctions = FonctionsParDefaut;
        LacheMotif();
        Vue = VueEditeur{};
        DecalageX = DecalageY = 0;
        OctetsAnnulationMax = INT64_MAX;
    }

    // A picture of colonnes x lignes cells of 8 x 8, each cell one of a few
    // patterns of at most 15 colours, chosen by the seed: conv gives a map
    // whose cells repeat the patterns' tiles.
    static void Dessine(const std::string& nom, int colonnes, int lignes, uint32_t graine) {
        ImageLocale image(colonnes * 8, lignes * 8);
        const uint32_t couleurs[6] = {0x102030, 0xF0F0F0, 0x801010, 0x10A040, 0x2040F0, 0xE0C000};
        for (int cy = 0; cy < lignes; ++cy)
            for (int cx = 0; cx < colonnes; ++cx) {
                const uint32_t motif = (uint32_t)(cx * 7 + cy * 13) * graine % 9;
                for (int y = 0; y < 8; ++y)
                    for (int x = 0; x < 8; ++x) {
                        uint32_t c = couleurs[(x / (1 + motif % 4) + y * (motif / 4 + 1) + motif) % 6];
                        // A few pixels of the mask colour: transparent in the tiles.
                        if (motif == 3 && (x + y) % 3 == 0) c = 0xFF00FE;
                        image.Pose(cx * 8 + x, cy * 8 + y, c);
                    }
            }
        ASSERT_EQ(EcritBmp(nom.c_str(), image.image, image.image.largeur, image.image.hauteur), 1);
    }

    // conv of a picture drawn here; gives the map's row.
    static int Carte(const std::string& nom, int colonnes, int lignes, uint32_t graine, const std::string& options = "") {
        Dessine(nom + ".bmp", colonnes, lignes, graine);
        ExecuteConv(("tset src=" + nom + ".bmp " + options).c_str());
        return TrouveElement(TYPE_CARTE, nom.c_str());
    }

    static std::vector<uint32_t> Cellules(int plan) {
        const Plan& p = Plans[plan];
        return std::vector<uint32_t>(p.cellules, p.cellules + (size_t)p.sizex * p.sizey);
    }

    // Cells of a map file read back by the loader.
    static std::vector<uint32_t> Relues(int element) {
        uint8_t palette[768];
        uint32_t *tuiles = nullptr, *cellules = nullptr;
        std::vector<uint32_t> v;
        if (ChargeCarte(palette, &tuiles, &cellules, element)) v.assign(cellules, cellules + (size_t)sizex * sizey);
        free(tuiles);
        free(cellules);
        return v;
    }
};
