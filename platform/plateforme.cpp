#include "platform/plateforme.h"

#include "platform/texte.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>

namespace {

// Headless contract: "[title] text" and a line feed on standard error; a
// question takes its first answer.
int BoiteSansFenetre(const char* texte, const char* titre, int style) {
    fprintf(stderr, "[%s] %s\n", titre ? titre : "", texte ? texte : "");
    fflush(stderr);
    switch (style & MASQUE_BOUTONS) {
    case BOITE_OUINON:
    case BOITE_OUINONANNULER:
        return REPONSE_OUI;
    default:
        return REPONSE_OK;
    }
}

void AttenteSansFenetre(int) {}

int FichierSansFenetre(int, char* sortie, size_t taille, const char*, const char*, const char*) {
    if (sortie && taille) sortie[0] = 0;
    return 0;
}

int CommandeSansFenetre(const char*) { return 0; }

int AucunModificateur() { return 0; }

int64_t MillisecondesSysteme() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (int64_t)t.tv_sec * 1000 + t.tv_nsec / 1000000;
}

uint64_t MemoireLibreSysteme() {
    const long pages = sysconf(_SC_AVPHYS_PAGES), taille = sysconf(_SC_PAGESIZE);
    return pages > 0 && taille > 0 ? (uint64_t)pages * (uint64_t)taille : 0;
}

} // namespace

const Plateforme PlateformeSansFenetre = {BoiteSansFenetre,    AttenteSansFenetre, FichierSansFenetre,
                                          CommandeSansFenetre, AttenteSansFenetre, MillisecondesSysteme,
                                          MemoireLibreSysteme, DessineTextePolice, LargeurTextePolice,
                                          AucunModificateur};
Plateforme PlateformeCourante = PlateformeSansFenetre;

int BoiteMessage(const char* texte, const char* titre, int style) {
    return PlateformeCourante.boiteMessage(texte, titre, style);
}

void MessageDebug(const char* texte) { BoiteMessage(texte, "Debuging", BOITE_OK); }

int BoiteMessageV(const char* titre, int style, const char* format, va_list args) {
    char texte[2048];
    vsnprintf(texte, sizeof texte, format, args);
    return BoiteMessage(texte, titre, style);
}

void MessageDebugF(const char* format, ...) {
    va_list args;
    va_start(args, format);
    BoiteMessageV("Debuging", BOITE_OK, format, args);
    va_end(args);
}

int BoiteMessageF(const char* titre, int style, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int reponse = BoiteMessageV(titre, style, format, args);
    va_end(args);
    return reponse;
}

bool Verifie(bool valeur, const char* condition) {
    if (!valeur) {
        char texte[512];
        FormateBorne(texte, sizeof texte, "An error has happened because the following condition is false: %s",
                     condition);
        BoiteMessage(texte, "Internal error", BOITE_OK | ICONE_ARRET);
    }
    return valeur;
}

RigueurLot Rigueur;

void SignaleEchec(const char* format, ...) {
    ++Rigueur.echecs;
    if (!Rigueur.stricte) return;
    char texte[2048];
    va_list args;
    va_start(args, format);
    vsnprintf(texte, sizeof texte, format, args);
    va_end(args);
    fprintf(stderr, "tessellarium: %s\n", texte);
    fflush(stderr);
}
