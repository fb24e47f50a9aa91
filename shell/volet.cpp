#include "shell/volet.h"

#include "core/chemins.h"
#include "core/elements.h"
#include "core/reglages.h"
#include "format/formats.h"
#include "editor/edition.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/surfaces.h"

#include <cstring>

char TitreCourant[TAILLE_TITRE] = "Welcome! Please select an element...";

namespace {

int Borne255(int v) { return v < 0 ? 0 : v > 255 ? 255 : v; }

void Pose(Image& s, int x, int y, uint32_t couleur) {
    uint8_t* p = s.pixels + (size_t)(s.hauteur - 1 - y) * s.pas + 3 * (size_t)x;
    p[0] = (uint8_t)(couleur >> 16);
    p[1] = (uint8_t)(couleur >> 8);
    p[2] = (uint8_t)couleur;
}

} // namespace

void DessineBandeau(Image& b) {
    if (b.largeur != BANDEAU_L || b.hauteur != BANDEAU_H || b.bits != 24)
        if (!CreeImage(b, BANDEAU_L, BANDEAU_H, 24)) return;
    for (int y = 0; y < BANDEAU_H; ++y)
        for (int x = 0; x < BANDEAU_L; ++x) {
            const int r = Borne255(3 * x / 5), g = Borne255(x / 12 + 160 - 20 * y), bl = Borne255(x / 12 - 175 + 25 * y);
            Pose(b, x, y, (uint32_t)r | (uint32_t)g << 8 | (uint32_t)bl << 16);
        }
    // Three pixels along each edge from every corner.
    const int coins[4][2] = {{0, 0}, {BANDEAU_L - 1, 0}, {0, BANDEAU_H - 1}, {BANDEAU_L - 1, BANDEAU_H - 1}};
    for (const auto& c : coins) {
        const int dx = c[0] ? -1 : 1, dy = c[1] ? -1 : 1;
        for (int k = 0; k < 3; ++k) {
            Pose(b, c[0], c[1] + k * dy, CouleurFond);
            Pose(b, c[0] + k * dx, c[1], CouleurFond);
        }
    }
}

int DebutTitre(int largeurTexte) { return largeurTexte > 370 ? 375 - largeurTexte : 5; }

int Defile(int position, RequeteDefilement requete, int valeur, int taille) {
    switch (requete) {
    case LIGNE_MOINS: position -= 32; break;
    case LIGNE_PLUS: position += 32; break;
    case PAGE_MOINS: position -= 192; break;
    case PAGE_PLUS: position += 192; break;
    case VERS_FIN: position = 32767; break;
    case VERS_DEBUT: position = 0; break;
    case POSITION: position = valeur; break;
    }
    if (position > taille - VOLET_COTE) position = taille - VOLET_COTE;
    if (position < 0) position = 0;
    return position;
}

int AjouteFichierDepose(const char* chemin) {
    static const uint32_t types[NB_SECTIONS] = {TYPE_BITMAP16, TYPE_BITMAP8, TYPE_PALETTE,
                                                TYPE_MOSAIQUE, TYPE_CARTE,   TYPE_LISTE};
    const char* ext = Extension(chemin);
    for (int f = 0; f < NbFormats; ++f)
        for (int s = 0; s < NB_SECTIONS; ++s) {
            const char* x = TableFormats[f].sections[s].ext;
            if (!x || x[0] != '.' || strcmp(x + 1, ext) != 0) continue;
            char fichier[TAILLE_CHEMIN];
            CopieBornee(fichier, chemin);
            CheminRelatif(fichier, sizeof fichier);
            char nom[TAILLE_NOM_COURT];
            NomCourt(chemin, nom);
            return AjouteElement(NouvelElement(types[s], nom, fichier, ""));
        }
    return -1;
}

bool SurvoleApercu(int mx, int my, Survol& s) {
    s = Survol{};
    if (mx < VOLET_X || mx >= VOLET_X + VOLET_COTE || my < VOLET_Y || my >= VOLET_Y + VOLET_COTE) return false;
    if (TypeApercu == APERCU_PALETTE) {
        const int c = (mx - VOLET_X) / 16, r = (my - VOLET_Y) / 16;
        if (r >= sizey) return false;
        const int x = c + CadreDessin.xOrigine, y = r + CadreDessin.yOrigine;
        const Image& a = SurfaceApercu;
        if (!a.pixels || x < 0 || y < 0 || x >= CadreDessin.xLimite || y >= CadreDessin.yLimite || x >= a.largeur ||
            y >= a.hauteur)
            return false;
        const uint8_t* p = a.pixels + (size_t)(a.hauteur - 1 - y) * a.pas + 3 * (size_t)x;
        if (((uint32_t)p[2] | (uint32_t)p[1] << 8 | (uint32_t)p[0] << 16) == CouleurFond) return false;
        FormateBorne(s.texte1, sizeof s.texte1, "Idx: %02X hex", r * 16 + c);
        FormateBorne(s.texte2, sizeof s.texte2, "%03i,%03i,%03i", p[2] >> 3, p[1] >> 3, p[0] >> 3);
        s.x1 = s.x2 = 460;
        s.y1 = 160;
        s.y2 = 180;
        return true;
    }
    if ((TypeApercu != APERCU_MOSAIQUE && TypeApercu != APERCU_CARTE) || tilex <= 0 || tiley <= 0) return false;
    const int c = (DecalageX + mx - VOLET_X) / tilex, r = (DecalageY + my - VOLET_Y) / tiley;
    if (c < 0 || r < 0 || c >= sizex / tilex || r >= sizey / tiley) return false;
    s.loupe = true;
    s.blocX = c * tilex;
    s.blocY = r * tiley;
    s.blocL = tilex;
    s.blocH = tiley;
    if (TypeApercu == APERCU_MOSAIQUE) {
        FormateBorne(s.texte1, sizeof s.texte1, "%03i  ", r * (sizex / tilex) + c);
        s.x1 = 492;
    } else {
        FormateBorne(s.texte1, sizeof s.texte1, "%02i,%02i  ", c, r);
        s.x1 = 486;
    }
    s.y1 = 176;
    return true;
}
