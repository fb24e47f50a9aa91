// The main window road of the program.
#pragma once

// Opens the main window and runs its message loop; gives the process's exit
// code. A build without a window layer says so and gives 0.
int LanceFenetrePrincipale();
