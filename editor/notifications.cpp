#include "editor/notifications.h"

#include "platform/plateforme.h"
#include "platform/texte.h"
#include "render/blitters.h"
#include "render/surfaces.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

Notifications LignesNotification;

namespace {

void Retire(int i) {
    Notifications& n = LignesNotification;
    for (int k = i + 1; k < n.nombre; ++k) {
        memcpy(n.texte[k - 1], n.texte[k], TAILLE_NOTIFICATION);
        memcpy(n.format[k - 1], n.format[k], TAILLE_NOTIFICATION);
        n.temps[k - 1] = n.temps[k];
        n.largeur[k - 1] = n.largeur[k];
    }
    --n.nombre;
}

void Ajoute(bool remplace, const char* format, va_list args) {
    Notifications& n = LignesNotification;
    char texte[TAILLE_NOTIFICATION];
    vsnprintf(texte, sizeof texte, format, args);
    if (remplace)
        for (int i = n.nombre - 1; i >= 0; --i)
            if (strcmp(n.format[i], format) == 0) Retire(i);
    if (n.nombre == NB_NOTIFICATIONS_MAX) Retire(0);
    const int i = n.nombre++;
    CopieBornee(n.texte[i], texte);
    CopieBornee(n.format[i], format);
    n.temps[i] = DUREE_NOTIFICATION;
    const int l = LargeurTexte(texte);
    n.largeur[i] = (int16_t)(l < INT16_MAX ? l : INT16_MAX);
}

} // namespace

void AjouteNotification(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Ajoute(true, format, args);
    va_end(args);
}

void AjouteNotificationSimple(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Ajoute(false, format, args);
    va_end(args);
}

void EffaceNotifications() { LignesNotification.nombre = 0; }

void DessineNotifications(int ecoule, int hauteurVueZ) {
    Notifications& n = LignesNotification;
    for (int i = 0; i < n.nombre;) {
        n.temps[i] = (int16_t)(n.temps[i] - (ecoule < DUREE_NOTIFICATION ? ecoule : DUREE_NOTIFICATION));
        if (n.temps[i] <= 0) Retire(i);
        else ++i;
    }
    if (n.nombre == 0) return;
    int w = 0;
    for (int i = 0; i < n.nombre; ++i)
        if (n.largeur[i] > w) w = n.largeur[i];
    const int h = 14 * n.nombre;
    RemplitRectAlpha(&SurfaceEditeur, 1, hauteurVueZ - h + 1, w + 2, h - 2, 0x603000, 0x80);
    AfficheCadreAlpha(&SurfaceEditeur, 0, hauteurVueZ - h + 1, w + 4, h, 0xC0FF, 0xC0);
    for (int i = 0; i < n.nombre; ++i)
        DessineTexte(SurfaceEditeur, 2, hauteurVueZ + 14 * (i - n.nombre), n.texte[i], 0xFFFFFF);
}
