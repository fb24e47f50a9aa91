// The main window road of the program.
#pragma once

// Opens the main window and runs its message loop; gives the process's exit
// code. Without a window layer it says that only batch mode runs, and gives 0.
int LanceFenetrePrincipale();
// The window layer, set by the desktop module before the start sequence.
extern int (*LanceurFenetre)();
