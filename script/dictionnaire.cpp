// The dictionary of the script language: every name a statement can use,
// with its kind and what it refers to. Nearly every name stands twice, in
// French and in English. Names are lower case; accents are Latin-1 and the
// interpreter also accepts their UTF-8 spelling.
//
// Tables: fonds / maps, modehexa, system, convert, editeur / editor,
// dossiers / folders, specimen, bits, liste, then the top level.
#include "core/arbre.h"
#include "core/elements.h"
#include "core/reglages.h"
#include "script/crochets.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"

namespace {

constexpr LigneDictionnaire Noeud(const char* nom, int racine) {
    LigneDictionnaire l{nom, GENRE_NOEUD};
    l.controle = racine;
    return l;
}
constexpr LigneDictionnaire Controle(const char* nom, int genre, int controle) {
    LigneDictionnaire l{nom, genre};
    l.controle = controle;
    return l;
}
constexpr LigneDictionnaire Fonction(const char* nom, FonctionScript* f) {
    LigneDictionnaire l{nom, GENRE_FONCTION};
    l.fonction = f;
    return l;
}
constexpr LigneDictionnaire Entier(const char* nom, int32_t* v) {
    LigneDictionnaire l{nom, GENRE_ENTIER};
    l.entier = v;
    return l;
}
constexpr LigneDictionnaire Chaine(const char* nom, char* v) {
    LigneDictionnaire l{nom, GENRE_CHAINE};
    l.chaine = v;
    return l;
}
constexpr LigneDictionnaire Objet(const char* nom, const TableDictionnaire* t) {
    LigneDictionnaire l{nom, GENRE_OBJET};
    l.membres = t;
    return l;
}
constexpr LigneDictionnaire Tableau(const char* nom, const TableauScript* t) {
    LigneDictionnaire l{nom, GENRE_TABLEAU};
    l.tableau = t;
    return l;
}
template <size_t N> constexpr TableDictionnaire Table(const LigneDictionnaire (&lignes)[N]) {
    return {(int)N, lignes};
}


// ---- fonds / maps: the plane of the statement's index ----------------------------

const TableauScript PlansVisibles = {NB_PLANS_MAX, GENRE_ENTIER, ReglagesPlans.visible};

const LigneDictionnaire LignesFonds[] = {
    Entier("alphapremplan", &ReglagesPlans.alphaPremierPlan),
    Entier("alphaforeground", &ReglagesPlans.alphaPremierPlan),
    Entier("proprepalette", &ReglagesPlans.proprePalette),
    Entier("multipalettes", &ReglagesPlans.proprePalette),
    Entier("transparence", &ReglagesPlans.transparence),
    Entier("transparency", &ReglagesPlans.transparence),
    Fonction("ajoute", &Fonctions.fondsAjoute),
    Fonction("add", &Fonctions.fondsAjoute),
    Fonction("reinit", &Fonctions.fondsReinit),
    Fonction("reset", &Fonctions.fondsReinit),
    Fonction("liemap", &Fonctions.fondsLie),
    Fonction("link", &Fonctions.fondsLie),
    Fonction("vitessedefil", &Fonctions.fondsVitesse),
    Fonction("scrollrate", &Fonctions.fondsVitesse),
    Fonction("ajcondition", &Fonctions.fondsCondition),
    Fonction("addcondition", &Fonctions.fondsCondition),
    Fonction("grille", &Fonctions.fondsGrille),
    Fonction("stepping", &Fonctions.fondsGrille),
    Fonction("grid", &Fonctions.fondsGrille),
    Entier("alphahex", &ReglagesPlans.alphaHex),
    Entier("alphagfx", &ReglagesPlans.alphaGfx),
    Tableau("visible", &PlansVisibles),
    Fonction("emulgba", &Fonctions.fondsEmulGba),
};
const TableDictionnaire TableFonds = Table(LignesFonds);

// ---- modehexa ----------------------------------------------------------------

const LigneDictionnaire LignesModeHexa[] = {
    Entier("actif", &ReglagesHexa.actif),
    Entier("enabled", &ReglagesHexa.actif),
    Entier("comblezeros", &ReglagesHexa.combleZeros),
    Entier("fillzeros", &ReglagesHexa.combleZeros),
    Entier("fondactif", &ReglagesHexa.fondActif),
    Entier("activemap", &ReglagesHexa.fondActif),
};
const TableDictionnaire TableModeHexa = Table(LignesModeHexa);

// ---- system ------------------------------------------------------------------

const LigneDictionnaire LignesSysteme[] = {
    Chaine("r\xE9pertoire", RepertoireNote),
    Chaine("directory", RepertoireNote),
    Fonction("objetsmax", &Fonctions.objetsMax),
    Fonction("maxobjects", &Fonctions.objetsMax),
    Entier("sauverparamsmaps", &ReglagesSys.sauverParamsMaps),
    Entier("savemapsparams", &ReglagesSys.sauverParamsMaps),
    Entier("sauverparamsmapsauto", &ReglagesSys.sauverParamsMapsAuto),
    Entier("savemapsparamsauto", &ReglagesSys.sauverParamsMapsAuto),
    Fonction("memoiremax", &Fonctions.memoireMax),
    Fonction("maxmemory", &Fonctions.memoireMax),
    Entier("selectionformatauto", &ReglagesSys.selectionFormatAuto),
    Entier("autoformatselection", &ReglagesSys.selectionFormatAuto),
    Fonction("emulgba", &Fonctions.systemeEmulGba),
};
const TableDictionnaire TableSysteme = Table(LignesSysteme);

// ---- convert -----------------------------------------------------------------

const LigneDictionnaire LignesConvert[] = {
    Fonction("couleurmasque", &Fonctions.couleurMasque),
    Fonction("maskcolor", &Fonctions.couleurMasque),
    Fonction("couleurzero", &Fonctions.couleurZero),
    Fonction("zerocolor", &Fonctions.couleurZero),
    Entier("utilmaxcoul", &ReglagesConv.utilMaxCoul),
    Entier("usemaxcolors", &ReglagesConv.utilMaxCoul),
    Fonction("luminosite", &Fonctions.luminosite),
    Fonction("lighting", &Fonctions.luminosite),
    Fonction("nuances", &Fonctions.nuances),
    Fonction("shades", &Fonctions.nuances),
    Fonction("nuancesavant", &Fonctions.nuancesAvant),
    Fonction("shadesbefore", &Fonctions.nuancesAvant),
    Fonction("mode", &Fonctions.mode),
    Fonction("quantization", &Fonctions.mode),
    Fonction("tronquer", &Fonctions.tronquer),
    Fonction("truncate", &Fonctions.tronquer),
    Entier("precisionmax", &ReglagesConv.precisionMax),
    Entier("maxprecision", &ReglagesConv.precisionMax),
    Entier("tilex", &tilex),
    Entier("tiley", &tiley),
};
const TableDictionnaire TableConvert = Table(LignesConvert);

// ---- editeur / editor --------------------------------------------------------

const LigneDictionnaire LignesEditeur[] = {
    Entier("popupinfos", &ReglagesEdit.popupInfos),
    Entier("tempspopup", &ReglagesEdit.tempsPopup),
    Entier("popuptime", &ReglagesEdit.tempsPopup),
    Entier("blocinvisible", &ReglagesEdit.blocInvisible),
    Entier("invisibleblock", &ReglagesEdit.blocInvisible),
    Entier("zoomprecis", &ReglagesEdit.zoomPrecis),
    Entier("precisezoom", &ReglagesEdit.zoomPrecis),
    Entier("grille", &ReglagesEdit.grille),
    Entier("grid", &ReglagesEdit.grille),
    Entier("couleurgrille", &ReglagesEdit.couleurGrille),
    Entier("gridcolor", &ReglagesEdit.couleurGrille),
    Entier("alphagrille", &ReglagesEdit.alphaGrille),
    Entier("alphagrid", &ReglagesEdit.alphaGrille),
    Entier("masquezero", &ReglagesEdit.masqueZero),
    Entier("zeromask", &ReglagesEdit.masqueZero),
    Entier("timing", &ReglagesEdit.timing),
    Fonction("deplace", &Fonctions.editeurDeplace),
    Fonction("move", &Fonctions.editeurDeplace),
    Fonction("zoom", &Fonctions.editeurZoom),
};
const TableDictionnaire TableEditeur = Table(LignesEditeur);

// ---- dossiers / folders: default folders by element type ---------------------------

const TableauScript TableauDossiers = {NB_DOSSIERS_DEFAUT, GENRE_CHAINE, DossierDefaut};

const LigneDictionnaire LignesDossiers[] = {
    Chaine("cartes", DossierDefaut[TYPE_CARTE]),
    Chaine("maps", DossierDefaut[TYPE_CARTE]),
    Chaine("mosaiques", DossierDefaut[TYPE_MOSAIQUE]),
    Chaine("tilesets", DossierDefaut[TYPE_MOSAIQUE]),
    Chaine("listes", DossierDefaut[TYPE_LISTE]),
    Chaine("lists", DossierDefaut[TYPE_LISTE]),
    Chaine("bitmaps8", DossierDefaut[TYPE_BITMAP8]),
    Chaine("bitmaps16", DossierDefaut[TYPE_BITMAP16]),
    Chaine("palettes", DossierDefaut[TYPE_PALETTE]),
    Tableau("dossier", &TableauDossiers),
    Tableau("folder", &TableauDossiers),
};
const TableDictionnaire TableDossiers = Table(LignesDossiers);

// ---- specimen ------------------------------------------------------------------

const LigneDictionnaire LignesSpecimen[] = {
    Fonction("affiche", &Fonctions.specimenAffiche),
    Fonction("show", &Fonctions.specimenAffiche),
    Fonction("ajoutemap", &Fonctions.specimenAjouteMap),
    Fonction("addmap", &Fonctions.specimenAjouteMap),
    Fonction("deplace", &Fonctions.specimenDeplace),
    Fonction("move", &Fonctions.specimenDeplace),
};
const TableDictionnaire TableSpecimen = Table(LignesSpecimen);

// ---- bits --------------------------------------------------------------------

const LigneDictionnaire LignesBits[] = {
    Fonction("affiche", &Fonctions.bitsAffiche),
    Fonction("show", &Fonctions.bitsAffiche),
    Fonction("textebit", &Fonctions.bitsTexte),
    Fonction("bittext", &Fonctions.bitsTexte),
    Fonction("bitactif", &Fonctions.bitsActif),
    Fonction("bitenabled", &Fonctions.bitsActif),
    Entier("masquezero", &ReglagesEdit.bitsMasqueZero),
    Entier("zeromask", &ReglagesEdit.bitsMasqueZero),
    Fonction("deplace", &Fonctions.bitsDeplace),
    Fonction("move", &Fonctions.bitsDeplace),
};
const TableDictionnaire TableBits = Table(LignesBits);

// ---- liste -------------------------------------------------------------------

const LigneDictionnaire LignesListe[] = {
    Fonction("reinitparams", &Fonctions.reinitParams),
    Fonction("resetparams", &Fonctions.reinitParams),
    Fonction("ajparam", &Fonctions.ajParam),
    Fonction("addparam", &Fonctions.ajParam),
};
const TableDictionnaire TableListe = Table(LignesListe);

// ---- Top level -----------------------------------------------------------------

const LigneDictionnaire LignesPrincipales[] = {
    // French block.
    Noeud("arbre-mosaiques", RACINE_MOSAIQUES),
    Noeud("arbre-cartes", RACINE_CARTES),
    Noeud("arbre-bitmaps8", RACINE_BITMAPS8),
    Noeud("arbre-bitmaps16", RACINE_BITMAPS16),
    Controle("texte-01", GENRE_TEXTE, CONTROLE_TEXTE_01),
    Controle("texte-source", GENRE_TEXTE, CONTROLE_TEXTE_01),
    Controle("texte-02", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("texte-dest", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("texte-tileset", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("texte-taillex", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("texte-03", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("texte-palette", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("texte-tailley", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("texte-04", GENRE_TEXTE, CONTROLE_TEXTE_04),
    Controle("texte-map", GENRE_TEXTE, CONTROLE_TEXTE_04),
    Controle("texte-05", GENRE_TEXTE, CONTROLE_TEXTE_05),
    Controle("texte-couleurs", GENRE_TEXTE, CONTROLE_TEXTE_05),
    Controle("check-palette", GENRE_COCHE, CONTROLE_CHECK_PALETTE),
    Controle("check-map", GENRE_COCHE, CONTROLE_CHECK_MAP),
    Controle("check-tileset", GENRE_COCHE, CONTROLE_CHECK_TILESET),
    Controle("check-optimise", GENRE_COCHE, CONTROLE_CHECK_OPTIMISE),
    Controle("check-16", GENRE_COCHE, CONTROLE_CHECK_16),
    Controle("radio-texte", GENRE_RADIO, CONTROLE_RADIO_TEXTE),
    Controle("radio-rotation", GENRE_RADIO, CONTROLE_RADIO_ROTATION),
    Controle("combo-palette", GENRE_COMBO, CONTROLE_COMBO_PALETTE),
    Controle("combo-tileset", GENRE_COMBO, CONTROLE_COMBO_TILESET),
    Controle("combo-taille", GENRE_COMBO, CONTROLE_COMBO_TAILLE),
    Controle("combo-tiles", GENRE_COMBO, CONTROLE_COMBO_TILES),
    Controle("combo-map", GENRE_COMBO, CONTROLE_COMBO_MAP),
    Fonction("ok", &Fonctions.ok),
    Fonction("msgbox", &Fonctions.msgbox),
    Fonction("visible", &Fonctions.visible),
    Fonction("quitte", &Fonctions.quitte),
    Fonction("fin", &Fonctions.fin),
    Fonction("exec", &Fonctions.exec),
    Fonction("goto", &Fonctions.aller),
    Entier("messages", &messages),
    Chaine("r\xE9pertoire", RepertoireNote),
    Chaine("script", ScriptPrincipal),
    Chaine("aideperso", AideUtilisateur),
    Fonction("retour", &Fonctions.retour),
    Objet("dossiers", &TableDossiers),
    Tableau("dossierd\xE9" "f", &TableauDossiers),
    Fonction("effets", &Fonctions.effets),
    Fonction("defformat", &Fonctions.defformat),
    Fonction("defmodele", &Fonctions.defmodele),
    Fonction("format", &Fonctions.format),
    Fonction("modele", &Fonctions.modele),
    Fonction("selformat", &Fonctions.selformat),
    Fonction("selmodele", &Fonctions.selmodele),
    Fonction("inclure", &Fonctions.inclure),
    // English block.
    Noeud("tree-tilesets", RACINE_MOSAIQUES),
    Noeud("tree-maps", RACINE_CARTES),
    Noeud("tree-bitmaps8", RACINE_BITMAPS8),
    Noeud("tree-bitmaps16", RACINE_BITMAPS16),
    Controle("text-01", GENRE_TEXTE, CONTROLE_TEXTE_01),
    Controle("text-source", GENRE_TEXTE, CONTROLE_TEXTE_01),
    Controle("text-02", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("text-dest", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("text-tileset", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("text-sizex", GENRE_TEXTE, CONTROLE_TEXTE_02),
    Controle("text-03", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("text-palette", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("text-sizey", GENRE_TEXTE, CONTROLE_TEXTE_03),
    Controle("text-04", GENRE_TEXTE, CONTROLE_TEXTE_04),
    Controle("text-map", GENRE_TEXTE, CONTROLE_TEXTE_04),
    Controle("text-05", GENRE_TEXTE, CONTROLE_TEXTE_05),
    Controle("text-colors", GENRE_TEXTE, CONTROLE_TEXTE_05),
    Controle("check-optimize", GENRE_COCHE, CONTROLE_CHECK_OPTIMISE),
    Controle("radio-text", GENRE_RADIO, CONTROLE_RADIO_TEXTE),
    Controle("combo-size", GENRE_COMBO, CONTROLE_COMBO_TAILLE),
    Fonction("quit", &Fonctions.quitte),
    Fonction("end", &Fonctions.fin),
    Chaine("directory", RepertoireNote),
    Chaine("userhelp", AideUtilisateur),
    Fonction("return", &Fonctions.retour),
    Objet("folders", &TableDossiers),
    Tableau("deffolder", &TableauDossiers),
    Fonction("effects", &Fonctions.effets),
    Fonction("definefmt", &Fonctions.defformat),
    Fonction("definemodel", &Fonctions.defmodele),
    Fonction("model", &Fonctions.modele),
    Fonction("setformat", &Fonctions.selformat),
    Fonction("setmodel", &Fonctions.selmodele),
    Fonction("include", &Fonctions.inclure),
    // Objects.
    Fonction("conv", &Fonctions.conv),
    Objet("fonds", &TableFonds),
    Objet("modehexa", &TableModeHexa),
    Objet("system", &TableSysteme),
    Objet("convert", &TableConvert),
    Objet("editeur", &TableEditeur),
    Objet("specimen", &TableSpecimen),
    Objet("bits", &TableBits),
    Objet("liste", &TableListe),
    Objet("maps", &TableFonds),
    Objet("editor", &TableEditeur),
};

} // namespace

const TableDictionnaire DictionnairePrincipal = Table(LignesPrincipales);
