#include "editor/editeur.h"

bool EditeurOuvert = false;
