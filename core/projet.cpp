// The project file.
//
// Sections: reading lines and sections; ChargeProjet and the element list;
// SauveProjet; the older binary form; names and the working directory.
#include "core/projet.h"

#include "core/chaines.h"
#include "core/chemins.h"
#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/reglages.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/texte.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

char* DonneesProjet = nullptr;
size_t TailleDonneesProjet = 0;
ProjetIncomplet ProjetTronque;

// ---- Reading lines and sections ----------------------------------------------

int LitLigneTexte(FILE* fichier, char* ligne, size_t taille) {
    if (!fgets(ligne, (int)taille, fichier)) {
        ligne[0] = 0;
        return 0;
    }
    size_t n = strlen(ligne);
    int resultat = 1;
    if (n > 0 && ligne[n - 1] == '\n') {
        ligne[--n] = 0;
    } else if (n > 0 && ligne[n - 1] == '\r') {
        // A full buffer that ends between CR and LF: the LF belongs to this line.
        int c = fgetc(fichier);
        if (c != '\n' && c != EOF) ungetc(c, fichier);
    } else if (n + 1 >= taille) {
        // The buffer is full: the line is whole when its line feed or the end
        // of the file comes next.
        const int c = fgetc(fichier);
        if (c != '\n' && c != EOF) {
            ungetc(c, fichier);
            resultat = 2;
        }
    }
    if (n > 0 && ligne[n - 1] == '\r') ligne[--n] = 0;
    return resultat;
}

namespace {

const char* SauteBlancs(const char* p) {
    while (*p == ' ' || *p == '\t') ++p;
    return p;
}

void MinusculesAscii(char* p) {
    for (; *p; ++p)
        if (*p >= 'A' && *p <= 'Z') *p = (char)(*p - 'A' + 'a');
}

// The key at the start of the text, or null; gives the rest behind it.
const char* ApresCle(const char* texte, const char* cle) {
    size_t n = CommenceParLatin1(texte, cle);
    return n ? texte + n : nullptr;
}

} // namespace

FILE* TrouveSection(const char* chemin, const char* nom) {
    FILE* fichier = OuvreFichier(chemin, "rb");
    if (!fichier) return nullptr;
    char ligne[LONGUEUR_LIGNE_PROJET + 1];
    while (LitLigneTexte(fichier, ligne, sizeof ligne)) {
        MinusculesAscii(ligne);
        const char* p = SauteBlancs(ligne);
        // ".section", any one character, then exactly the name.
        if (strncmp(p, ".section", 8) != 0 || p[8] == 0) continue;
        const char* reste = ApresCle(p + 9, nom);
        if (reste && *reste == 0) return fichier;
    }
    fclose(fichier);
    return nullptr;
}

// ---- ChargeProjet and the element list ---------------------------------------

namespace {

// Notes the first limit a project passed on reading.
void NoteLimite(const char* chemin, const char* raison) {
    if (ProjetTronque.raison[0]) return;
    CopieBornee(ProjetTronque.raison, raison);
    if (!CheminComplet(chemin, ProjetTronque.chemin, sizeof ProjetTronque.chemin))
        CopieBornee(ProjetTronque.chemin, chemin);
}

// Copies a field of a row, noting a value cut at the field's width.
void CopieChamp(char* champ, size_t taille, const char* valeur, const char* chemin) {
    if (CopieBornee(champ, taille, valeur) < strlen(valeur))
        NoteLimite(chemin, "an element's name, folder or path is longer than its field (30, 32 and 259 characters)");
}

// Reads the rows of the `fichiers` section. Keys may stand in any order; any
// other line ends a row and is used up; a line that begins with "fin" or
// ".section" ends the list.
void LitListeElements(FILE* fichier, const char* chemin) {
    char ligne[LONGUEUR_LIGNE_PROJET + 1];
    auto lit = [&] {
        const int lu = LitLigneTexte(fichier, ligne, sizeof ligne);
        if (lu == 2) NoteLimite(chemin, "a line of its element list is longer than 2047 characters");
        return lu != 0;
    };
    bool encore = lit();
    while (encore) {
        const char* p = SauteBlancs(ligne);
        const char* nom = ApresCle(p, "El\xE9ment: ");
        if (!nom) {
            char* q = (char*)p;
            MinusculesAscii(q);
            if (strncmp(q, "fin", 3) == 0 || strncmp(q, ".section", 8) == 0) return;
            encore = lit();
            continue;
        }
        ElementProjet e{};
        CopieChamp(e.nom, sizeof e.nom, nom, chemin);
        bool garde = true;
        for (;;) {
            encore = lit();
            if (!encore) break; // the end of the file ends the row
            const char* q = SauteBlancs(ligne);
            const char* reste;
            if ((reste = ApresCle(q, "Type: "))) {
                if (strncmp(reste, "dossier", 7) == 0) {
                    e.type |= ELEMENT_DOSSIER;
                    continue;
                }
                int t = 0;
                while (t < NB_TYPES_ELEMENT && strcmp(reste, TextesTypes[t]) != 0) ++t;
                if (t < NB_TYPES_ELEMENT) {
                    e.type = (e.type & ~TYPE_MASQUE) | (uint32_t)t;
                    continue;
                }
                // An unknown type drops the row; the next line is read as any other.
                garde = false;
                encore = lit();
                break;
            } else if ((reste = ApresCle(q, "Fichier: "))) {
                CopieChamp(e.fichier, sizeof e.fichier, reste, chemin);
            } else if ((reste = ApresCle(q, "Base: "))) {
                CopieChamp(e.fichierBase, sizeof e.fichierBase, reste, chemin);
            } else if ((reste = ApresCle(q, "Dossier: "))) {
                CopieChamp(e.dossier, sizeof e.dossier, reste, chemin);
                e.type |= ELEMENT_RANGE;
            } else {
                // Any other line ends the row and is used up.
                encore = lit();
                break;
            }
        }
        if (garde && AjouteElementBrut(e) < 0) NoteLimite(chemin, "it holds more than 1000 elements");
    }
}

void AvertitSiTronque(const char* chemin) {
    if (ProjetTronque.raison[0])
        BoiteMessageF("Project file", BOITE_OK | ICONE_ATTENTION,
                      "%s could not be read whole: %s.\nIt will not be saved over, so nothing in it is lost; "
                      "elements added now are not recorded in it.",
                      chemin, ProjetTronque.raison);
}

bool EstEntete(char* premiere) {
    char* p = premiere;
    if ((unsigned char)p[0] == 0xEF && (unsigned char)p[1] == 0xBB && (unsigned char)p[2] == 0xBF) p += 3;
    // Read in text mode: a CR LF line end is a line feed.
    size_t n = strlen(p);
    if (n >= 2 && p[n - 2] == '\r' && p[n - 1] == '\n') {
        p[n - 2] = '\n';
        p[n - 1] = 0;
    }
    return strcmp(p, ENTETE_PROJET) == 0;
}

} // namespace

void ChargeProjet(const char* chemin) {
    free(DonneesProjet);
    DonneesProjet = nullptr;
    TailleDonneesProjet = 0;
    ProjetTronque = ProjetIncomplet{};

    FILE* fichier = OuvreFichier(chemin, "rb");
    if (!fichier) {
        // No project yet: the empty project stays. One that is there but
        // cannot be read is not written over either.
        if (errno != ENOENT) NoteLimite(chemin, strerror(errno));
        AvertitSiTronque(chemin);
        return;
    }
    char premiere[LONGUEUR_LIGNE_PROJET + 1];
    bool lue = fgets(premiere, sizeof premiere, fichier) != nullptr;
    fclose(fichier);
    if (!lue) return;
    if (!EstEntete(premiere)) {
        BoiteMessage("This is an older project file version (or newer)\nTessellarium will try to update of "
                     "this file, but will first back it up as Projet.tsl.bak, ok?",
                     "Attention", BOITE_OK | ICONE_ATTENTION);
        ConvertitAncienProjet(chemin);
        return;
    }

    NbElements = 0;
    if ((fichier = TrouveSection(chemin, "fichiers"))) {
        LitListeElements(fichier, chemin);
        fclose(fichier);
    }
    if ((fichier = TrouveSection(chemin, "infos"))) Crochets.executeScript(fichier, nullptr);
    if ((fichier = TrouveSection(chemin, "donn\xE9" "es"))) {
        DonneesProjet = (char*)malloc(TAILLE_DONNEES_MAX);
        long position = ftell(fichier);
        if (DonneesProjet && position >= 0) {
            size_t lus = fread(DonneesProjet, 1, TAILLE_DONNEES_MAX, fichier);
            // Read in text mode: a CR LF line end is a line feed.
            size_t n = 0;
            for (size_t i = 0; i < lus; ++i)
                if (!(DonneesProjet[i] == '\r' && i + 1 < lus && DonneesProjet[i + 1] == '\n'))
                    DonneesProjet[n++] = DonneesProjet[i];
            TailleDonneesProjet = n;
            if (lus == TAILLE_DONNEES_MAX && fgetc(fichier) != EOF)
                NoteLimite(chemin, "its donn\xE9" "es section is longer than 1000000 bytes");
            fseek(fichier, position, SEEK_SET);
        }
        Crochets.executeScript(fichier, nullptr);
    }
    AvertitSiTronque(chemin);
}

// ---- SauveProjet -------------------------------------------------------------

namespace {

const char* OuiNon(int valeur) { return valeur ? "true" : "false"; }

void EcritInfos(FILE* f) {
    char repertoire[TAILLE_CHEMIN_PROJET];
    if (!RepertoireCourant(repertoire, sizeof repertoire)) repertoire[0] = 0;
    fputs("\n#Useful informations about the last session\n .section infos\n", f);
    fprintf(f, "  Directory = \"%s\"\n  Script = \"%s\"\n  UserHelp = \"%s\"\n", repertoire, ScriptPrincipal,
            AideUtilisateur);

    const ReglagesConversion& c = ReglagesConv;
    // Gamma is kept as its reciprocal and written as the value the user gave.
    fprintf(f,
            "\n  convert.couleurMasque = RGB(%i,%i,%i)\n  convert.luminosite   GAMMA=RGB(%.3f,%.3f,%.3f)  "
            "ADD=RGB(%.1f,%.1f,%.1f)  ALPHA=RGB(%.1f,%.1f,%.1f)\n  convert.mode = %i\n\n",
            c.masque[0], c.masque[1], c.masque[2], 1.0 / c.gamma[0], 1.0 / c.gamma[1], 1.0 / c.gamma[2], c.add[0],
            c.add[1], c.add[2], c.alpha[0], c.alpha[1], c.alpha[2], (int)c.mode);

    const ReglagesSysteme& s = ReglagesSys;
    if (s.sauverParamsMaps == 0) fprintf(f, "  system.sauverParamsMaps = %s\n", OuiNon(0));
    fprintf(f, "  system.sauverParamsMapsAuto = %s\n", OuiNon(s.sauverParamsMapsAuto));
    if (s.objetsMax != 1024) fprintf(f, "  system.objetsMax = %i\n", s.objetsMax);
    if (ReglagesEdit.timing != 10) fprintf(f, "  editeur.Timing = %i\n", ReglagesEdit.timing);
    if (s.memoireMax != MEMOIRE_MAX_DEFAUT) {
        char taille[64];
        TexteTailleMemoire(s.memoireMax, taille, sizeof taille);
        fprintf(f, "  system.MemoireMax = %s\n", taille);
    }
    if (s.selectionFormatAuto == 0) fprintf(f, "  system.selectionFormatAuto = %s\n", OuiNon(0));
    if (c.nuances != 32) fprintf(f, "  convert.nuances = %i\n", c.nuances);
    if (c.nuancesAvant) fprintf(f, "  convert.nuancesAvant = %s\n", OuiNon(1));
    if (c.tronquer) fprintf(f, "  convert.tronquer = %s\n", OuiNon(1));
    if (c.utilMaxCoul) fprintf(f, "  convert.utilMaxCoul = %s\n", OuiNon(1));
    if (c.precisionMax != 512) fprintf(f, "  convert.precisionMax = %i\n", c.precisionMax);

    for (int i = 0; i < NB_DOSSIERS_DEFAUT; ++i)
        if (DossierDefaut[i][0]) fprintf(f, "  DefFolder[%i] = \"%s\"\n", i + 1, DossierDefaut[i]);

    if (const char* format = Crochets.nomFormatCourant()) fprintf(f, "  Format = \"%s\"\n\n", format);

    for (int m = 0; m < NbModeles && m < NB_MODELES_MAX; ++m) {
        const ModeleParametres& modele = TableModeles[m];
        fprintf(f, "  DefModele \"%s\"\t\t{\n", modele.nom);
        for (int i = 0; i < modele.nbParametres && i < NB_PARAMETRES_MAX; ++i) {
            char nom[1024], defaut[1024];
            EcritChaineEchappee(nom, modele.noms[i], '"', sizeof nom);
            EcritChaineEchappee(defaut, modele.defauts[i], '"', sizeof defaut);
            fprintf(f, "  \t%i, %i, %s, %s\n", modele.genres[i], modele.tailles[i], nom, defaut);
        }
        fputs("  }\n\n", f);
    }
    int selection = ModeleSelectionne >= 0 && ModeleSelectionne < NB_MODELES_MAX ? ModeleSelectionne : 0;
    fprintf(f, "  Modele = \"%s\"\n", TableModeles[selection].nom);
    fputs("  Fin\n", f);
}

void EcritFichiers(FILE* f) {
    fputs("\n#Project tree elements\n .section fichiers\n", f);
    for (int i = 0; i < NbElements; ++i) {
        const ElementProjet& e = Elements[i];
        if (EstDossier(e)) {
            fprintf(f, " #--------------\n  El\xE9ment: %s\n  Type: dossier\n", e.nom);
        } else {
            uint32_t t = TypeDe(e);
            fprintf(f, " #--------------\n  El\xE9ment: %s\n  Type: %s\n  Fichier: %s\n  Base: %s\n", e.nom,
                    TextesTypes[t < (uint32_t)NB_TYPES_ELEMENT ? t : TYPE_AUCUN], e.fichier, e.fichierBase);
        }
        if (EstRange(e)) fprintf(f, "  Dossier: %s\n", e.dossier);
    }
    fputs(" Fin\n", f);
}

} // namespace

int SauveProjet(const char* chemin) {
    char choisi[TAILLE_CHEMIN_PROJET];
    if (!chemin || !*chemin) {
        ChoisitNomProjet(choisi, sizeof choisi);
        if (!choisi[0]) return 0;
        chemin = choisi;
    }
    if (ProjetTronque.raison[0] && MemeFichier(chemin, ProjetTronque.chemin)) {
        SignaleEchec("%s: not saved: %s", chemin, ProjetTronque.raison);
        return 0;
    }
    // Made in memory first: a file that holds these very bytes is left alone.
    char* texte = nullptr;
    size_t taille = 0;
    FILE* f = open_memstream(&texte, &taille);
    if (!f) return 0;
    fputs(ENTETE_PROJET, f);
    EcritInfos(f);
    EcritFichiers(f);
    fputs("\n#Section where you can enter any script command. It permits you to set here different variables.\n"
          " .section donn\xE9" "es\n",
          f);
    if (DonneesProjet)
        fwrite(DonneesProjet, 1, TailleDonneesProjet, f);
    else
        fputs("  End\n\n\n\n", f);
    bool fait = fclose(f) == 0 && texte;
    if (fait && !FichierEgal(chemin, texte, taille)) {
        // Written whole or not at all: a failed save leaves the old project.
        EcritureSure ecriture;
        FILE* sortie = CommenceEcritureSure(ecriture, chemin);
        if (sortie) fwrite(texte, 1, taille, sortie);
        if (!sortie || !TermineEcritureSure(ecriture)) {
            SignaleEchec("cannot write %s: %s", chemin, strerror(ecriture.erreur));
            fait = false;
        }
    }
    free(texte);
    return fait ? 1 : 0;
}

// ---- The older binary form ---------------------------------------------------

namespace {

constexpr char MAGIQUE_ANCIEN[] = "Tessellarium 02"; // 15 bytes, no terminator in the file
constexpr size_t TAILLE_MAGIQUE = sizeof MAGIQUE_ANCIEN - 1;
constexpr size_t TAILLE_ENREGISTREMENT = 560;

uint32_t Lit32(const unsigned char* p) {
    return (uint32_t)p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16 | (uint32_t)p[3] << 24;
}

} // namespace

int ChargeAncienProjet(const char* chemin) {
    FILE* f = OuvreFichier(chemin, "rb");
    if (!f) return 0;
    unsigned char entete[TAILLE_MAGIQUE + 4];
    if (fread(entete, 1, sizeof entete, f) != sizeof entete || memcmp(entete, MAGIQUE_ANCIEN, TAILLE_MAGIQUE) != 0) {
        fclose(f);
        return 0;
    }
    uint32_t n = Lit32(entete + TAILLE_MAGIQUE);
    if (n > (uint32_t)NB_ELEMENTS_MAX) n = NB_ELEMENTS_MAX; // the table holds no more
    unsigned char rec[TAILLE_ENREGISTREMENT];
    for (uint32_t i = 0; i < n && fread(rec, 1, sizeof rec, f) == sizeof rec; ++i) {
        ElementProjet e{};
        CopieBorneeN(e.fichierBase, sizeof e.fichierBase, (const char*)rec + 4, 260);
        CopieBorneeN(e.fichier, sizeof e.fichier, (const char*)rec + 264, 260);
        CopieBorneeN(e.nom, sizeof e.nom, (const char*)rec + 524, 32);
        e.type = (Lit32(rec + 556) + 1) & TYPE_MASQUE;
        AjouteElement(e);
    }
    fclose(f);
    return 1;
}

void ConvertitAncienProjet(const char* chemin) {
    NbElements = 0;
    char sauvegarde[TAILLE_CHEMIN_PROJET + 8];
    FormateBorne(sauvegarde, sizeof sauvegarde, "%s.bak", chemin);
    CopieFichier(chemin, sauvegarde);
    if (!ChargeAncienProjet(chemin))
        BoiteMessage("None of the built-in filters can load the project file.\nTessellarium will now start with a "
                     "new (empty) project.",
                     "Error", BOITE_OK | ICONE_ARRET);
}

// ---- Names and the working directory -----------------------------------------

void ChoisitNomProjet(char* sortie, size_t taille) {
    static const char filtre[] = "\x01Tessellarium project files *.tsl\0*.tsl\0";
    sortie[0] = 0;
    if (!ChoisitFichierSauve(sortie, taille, filtre)) {
        sortie[0] = 0;
        return;
    }
    if (!strchr(sortie, '.')) AjouteBorne(sortie, taille, ".tsl");
}

void DefinitProjet(const char* chemin) {
    char complet[TAILLE_CHEMIN_PROJET];
    if (!CheminComplet(chemin, complet, sizeof complet)) CopieBornee(complet, chemin);
    CopieBornee(CheminProjet, complet);
    bool absolu = EstSeparateur(complet[0]);
    RepertoireDe(complet);
    if (complet[0])
        ChangeRepertoire(complet);
    else if (absolu)
        ChangeRepertoire("/"); // a project at the file system's root
}
