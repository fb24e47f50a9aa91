#include "shell/fenetre.h"

#include <cstdio>

int (*LanceurFenetre)() = nullptr;

int LanceFenetrePrincipale() {
    if (LanceurFenetre) return LanceurFenetre();
    fputs("Tessellarium: this build has no window layer; only batch mode is available "
          "(a command line that begins with '-').\n",
          stderr);
    return 0;
}
