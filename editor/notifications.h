// The editor's feedback without dialogs: a stack of at most ten lines at the
// bottom left of the view, each fading out of the list three seconds after
// it came. A line added with a format that is already shown replaces it.
#pragma once
#include <cstdint>

constexpr int NB_NOTIFICATIONS_MAX = 10;
constexpr int DUREE_NOTIFICATION = 3000; // milliseconds
constexpr int TAILLE_NOTIFICATION = 1024;

struct Notifications {
    int nombre = 0;
    char texte[NB_NOTIFICATIONS_MAX][TAILLE_NOTIFICATION];
    char format[NB_NOTIFICATIONS_MAX][TAILLE_NOTIFICATION];
    int16_t temps[NB_NOTIFICATIONS_MAX];   // milliseconds left
    int16_t largeur[NB_NOTIFICATIONS_MAX]; // pixels in the notification font
};
extern Notifications LignesNotification;

// Formats and adds, removing first every line made by the same format.
void AjouteNotification(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Formats and adds.
void AjouteNotificationSimple(const char* format, ...) __attribute__((format(printf, 1, 2)));
void EffaceNotifications();
// Ages the lines by the milliseconds since the last tick, then draws what is
// left over the bottom of a view hauteurVueZ pixels high.
void DessineNotifications(int ecoule, int hauteurVueZ);
