// The window layer with Qt 6 Widgets: the seam's operations, the tree, and
// the showing of 24-bit surfaces. Only this folder and shell/qt include Qt.
#pragma once
#include "platform/image.h"

#include <QImage>

class QWidget;

// The program's arguments, kept for QApplication.
void ArgumentsQt(int argc, char** argv);
// The window road: the application, the seam, the main window, its loop.
int LanceFenetreQt();
// Installs the Qt versions of the platform seam; boxes and dialogs open
// over parent.
void InstallePlateformeQt(QWidget* parent);

// A bottom-up 24-bit surface's rectangle as a 32-bit picture, scaled to
// largeur x hauteur by pixel repetition, or by averaging when moyenne is
// set. Rows are read one by one: Qt is never given the bottom-up buffer.
QImage ImageDeSurface(const Image& s, int x, int y, int l, int h, int largeur, int hauteur, bool moyenne = false);
