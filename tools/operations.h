// The tools of the editor that work by numbers: the operation and condition
// language over the held pattern ("Operations on selection"), and taking,
// moving and repeating rectangles of cells by their coordinates ("Blocks
// copy"). Plain functions over strings, Motif and Plans; the dialogs only
// fill the strings.
#pragma once

// Rewrites the cells of the held pattern: each cell that passes the
// condition (">=10 and <=13"; empty: every cell) takes the operations in
// turn ("+10*2^0xff"). Gives 1 when the dialog may close, 0 after a message
// (the cells before a failing one stay changed).
int ExecuteOperations(const char* operation, const char* condition, bool seulActif);

// "Blocks copy" from the texts of its six fields (cell numbers; a size that
// starts with "*" stands for 1024). Gives 1 when done, 0 after a message.
int ExecuteCopieBlocs(const char* sx, const char* sy, const char* l, const char* h, const char* dx, const char* dy,
                      bool seulActif);
