#include "tests/support/enregistreur.h"

#include <algorithm>

namespace {

EnregistreurMessages* EnregistreurActif = nullptr;
ArbreMemoire* ArbreActif = nullptr;

int BoiteEnregistree(const char* texte, const char* titre, int style) {
    EnregistreurMessages& e = *EnregistreurActif;
    e.messages.push_back(std::string("[") + (titre ? titre : "") + "] " + (texte ? texte : ""));
    e.styles.push_back(style);
    if (!e.reponses.empty()) {
        int r = e.reponses.front();
        e.reponses.pop_front();
        return r;
    }
    int boutons = style & MASQUE_BOUTONS;
    return boutons == BOITE_OUINON || boutons == BOITE_OUINONANNULER ? REPONSE_OUI : REPONSE_OK;
}

void AttenteEnregistree(int visible) {
    EnregistreurActif->attente = visible;
}

int FichierEnregistre(int, char* sortie, size_t taille, const char*, const char* titre,
                      const char* repertoire) {
    EnregistreurMessages& e = *EnregistreurActif;
    e.dialogues.push_back(std::string(titre ? titre : "") + "|" + (repertoire ? repertoire : ""));
    if (e.fichiers.empty() || taille == 0) {
        if (taille) sortie[0] = 0;
        return 0;
    }
    std::string s = e.fichiers.front();
    e.fichiers.pop_front();
    size_t n = std::min(s.size(), taille - 1);
    s.copy(sortie, n);
    sortie[n] = 0;
    return 1;
}

ArbreMemoire::Noeud* NoeudVivant(NoeudArbre id) {
    return ArbreActif ? const_cast<ArbreMemoire::Noeud*>(ArbreActif->Trouve(id)) : nullptr;
}

std::vector<NoeudArbre>& Enfants(NoeudArbre parent) {
    if (ArbreMemoire::Noeud* p = NoeudVivant(parent)) return p->enfants;
    return ArbreActif->racine;
}

NoeudArbre Insere(NoeudArbre parent, NoeudArbre precedent, const char* texte) {
    if (parent && !NoeudVivant(parent)) return 0;
    NoeudArbre id = (NoeudArbre)ArbreActif->noeuds.size() + 1;
    ArbreActif->noeuds.push_back({id, parent, texte ? texte : "", {}});
    // After the sibling given, first when there is none, last when it is not found.
    std::vector<NoeudArbre>& enfants = Enfants(parent);
    auto it = std::find(enfants.begin(), enfants.end(), precedent);
    enfants.insert(precedent == 0 ? enfants.begin() : it == enfants.end() ? it : it + 1, id);
    return id;
}

void Efface(NoeudArbre id) {
    ArbreMemoire::Noeud* n = NoeudVivant(id);
    if (!n) return;
    for (NoeudArbre e : std::vector<NoeudArbre>(n->enfants))
        Efface(e);
    std::vector<NoeudArbre>& freres = Enfants(n->parent);
    freres.erase(std::remove(freres.begin(), freres.end(), id), freres.end());
    n->id = 0;
    n->enfants.clear();
}

void Supprime(NoeudArbre id) {
    if (!NoeudVivant(id)) ++ArbreActif->suppressionsPerdues;
    Efface(id);
}

void Vide() {
    ArbreActif->noeuds.clear();
    ArbreActif->racine.clear();
    ArbreActif->selection = 0;
}

void Selectionne(NoeudArbre id) {
    ArbreActif->selection = id;
}
void Redessine(int) {}

const OperationsArbre OperationsMemoire = {Insere, Supprime, Vide, Selectionne, Redessine};

void DessineNoeud(const ArbreMemoire& a, NoeudArbre id, int niveau, std::string& sortie) {
    const ArbreMemoire::Noeud* n = a.Trouve(id);
    if (!n) return;
    sortie += std::string(2 * niveau, ' ') + n->texte + "\n";
    for (NoeudArbre e : n->enfants)
        DessineNoeud(a, e, niveau + 1, sortie);
}

} // namespace

EnregistreurMessages::EnregistreurMessages() {
    EnregistreurActif = this;
    PlateformeCourante = PlateformeSansFenetre;
    PlateformeCourante.boiteMessage = BoiteEnregistree;
    PlateformeCourante.afficheAttente = AttenteEnregistree;
    PlateformeCourante.choisitFichier = FichierEnregistre;
    PlateformeCourante.lanceCommande = [](const char*) { return 0; };
    PlateformeCourante.titreAttente = [](int visible) {
        if (EnregistreurActif) EnregistreurActif->titreAttente = visible;
    };
}

EnregistreurMessages::~EnregistreurMessages() {
    PlateformeCourante = PlateformeSansFenetre;
    EnregistreurActif = nullptr;
}

ArbreMemoire::ArbreMemoire() {
    ArbreActif = this;
    ArbreProjet = &OperationsMemoire;
}

ArbreMemoire::~ArbreMemoire() {
    ArbreProjet = nullptr;
    ArbreActif = nullptr;
}

const ArbreMemoire::Noeud* ArbreMemoire::Trouve(NoeudArbre id) const {
    return id == 0 || id > noeuds.size() || !noeuds[id - 1].id ? nullptr : &noeuds[id - 1];
}

std::string ArbreMemoire::Dessin() const {
    std::string sortie;
    for (NoeudArbre id : racine)
        DessineNoeud(*this, id, 0, sortie);
    return sortie;
}

int ArbreMemoire::Compte() const {
    return (int)std::count_if(noeuds.begin(), noeuds.end(), [](const Noeud& x) { return x.id != 0; });
}

#include "core/crochets.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "platform/texte.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

DossierTemporaire::DossierTemporaire() {
    avant = std::filesystem::current_path().string();
    std::string modele = (std::filesystem::temp_directory_path() / "tessXXXXXX").string();
    std::vector<char> tampon(modele.begin(), modele.end());
    tampon.push_back(0);
    if (!mkdtemp(tampon.data())) abort();
    chemin = tampon.data();
    std::filesystem::current_path(chemin);

    NbElements = 0;
    ReinitialiseReglages();
    InitialiseModeles();
    Crochets = CrochetsParDefaut;
    free(DonneesProjet);
    DonneesProjet = nullptr;
    TailleDonneesProjet = 0;
    ProjetTronque = ProjetIncomplet{};
    CheminProjet[0] = 0;
}

DossierTemporaire::~DossierTemporaire() {
    std::error_code ec;
    std::filesystem::current_path(avant, ec);
    std::filesystem::remove_all(chemin, ec);
}

std::string LitFichier(const std::string& chemin) {
    std::ifstream f(chemin, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

void EcritFichier(const std::string& chemin, const std::string& contenu) {
    std::ofstream f(chemin, std::ios::binary | std::ios::trunc);
    f.write(contenu.data(), (std::streamsize)contenu.size());
}

ElementProjet DansDossier(ElementProjet ligne, const char* dossier) {
    ligne.type |= ELEMENT_RANGE;
    CopieBornee(ligne.dossier, dossier);
    return ligne;
}

ElementProjet NouveauDossier(const char* nom, const char* dans) {
    ElementProjet d = NouvelElement(ELEMENT_DOSSIER, nom, "");
    return dans ? DansDossier(d, dans) : d;
}
