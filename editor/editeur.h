// The map editor, as the rest of the system sees it.
#pragma once

// A map editor is open: the project cannot be closed or saved from the main
// window while it stands.
extern bool EditeurOuvert;
