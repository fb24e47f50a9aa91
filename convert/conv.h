// The conv command: one statement of a script, or one link of a batch command
// line, that converts a picture and adds the new elements to the project.
#pragma once

// Runs one conv command; texte is what follows the word conv (a batch link
// keeps its leading '-'). Failures end it with a message.
void ExecuteConv(const char* texte);
