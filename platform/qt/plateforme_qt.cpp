// The platform seam with Qt: message boxes, file dialogs, the busy dialog,
// commands, text over surfaces with the desktop's font, and the showing of
// surfaces.
//
// Linux readings of the Windows operations, each made here once:
// - "notepad" and the system's viewer are the desktop's default application
//   for the file (QDesktopServices::openUrl);
// - the busy dialog is a small modeless window with its text;
// - Ctrl and Shift at an instant are the modifiers of the last input event
//   the application received (never a query of the display server).
#include "platform/qt/fenetre_qt.h"

#include "platform/plateforme.h"
#include "platform/texte.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QUrl>

#include <cstring>
#include <string>
#include <vector>

namespace {

QWidget* Parent = nullptr;
QLabel* Attente = nullptr;

int BoiteQt(const char* texte, const char* titre, int style) {
    QMessageBox boite(Parent);
    boite.setWindowTitle(QString::fromLatin1(titre ? titre : ""));
    boite.setText(QString::fromLatin1(texte ? texte : ""));
    switch (style & 0xF0) {
    case ICONE_ARRET: boite.setIcon(QMessageBox::Critical); break;
    case ICONE_QUESTION: boite.setIcon(QMessageBox::Question); break;
    case ICONE_ATTENTION: boite.setIcon(QMessageBox::Warning); break;
    case ICONE_INFORMATION: boite.setIcon(QMessageBox::Information); break;
    default: break;
    }
    switch (style & MASQUE_BOUTONS) {
    case BOITE_OKANNULER: boite.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case BOITE_OUINONANNULER: boite.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel); break;
    case BOITE_OUINON: boite.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    default: boite.setStandardButtons(QMessageBox::Ok); break;
    }
    switch (boite.exec()) {
    case QMessageBox::Cancel: return REPONSE_ANNULER;
    case QMessageBox::Yes: return REPONSE_OUI;
    case QMessageBox::No: return REPONSE_NON;
    default: return REPONSE_OK;
    }
}

void AttenteQt(int visible) {
    if (!visible) {
        if (Attente) Attente->hide();
        return;
    }
    if (!Attente) {
        Attente = new QLabel("Busy. Please wait while operating...", Parent, Qt::Tool);
        Attente->setMargin(16);
    }
    Attente->show();
    QApplication::processEvents();
}

// The filter of the system's dialogs: its first byte is the filter chosen at
// first, then pairs of texts (name, patterns separated by ';').
int FichierQt(int genre, char* sortie, size_t taille, const char* filtre, const char* titre, const char* repertoire) {
    QStringList filtres;
    int choisi = 0;
    if (filtre && *filtre) {
        choisi = (unsigned char)filtre[0];
        for (const char* p = filtre + 1; *p;) {
            const char* nom = p;
            p += strlen(p) + 1;
            const char* motifs = p;
            if (!*motifs) break;
            p += strlen(p) + 1;
            filtres << QString("%1 (%2)").arg(QString::fromLatin1(nom), QString::fromLatin1(motifs).replace(';', ' '));
        }
    }
    QString selection = choisi >= 1 && choisi <= filtres.size() ? filtres[choisi - 1] : QString();
    const QString initial = QString::fromLatin1(repertoire && *repertoire ? repertoire : ".") + "/" +
                            QString::fromLatin1(sortie && *sortie ? sortie : "");
    const QString chemin =
        genre == DIALOGUE_SAUVER
            ? QFileDialog::getSaveFileName(Parent, QString::fromLatin1(titre ? titre : ""), initial,
                                           filtres.join(";;"), &selection)
            : QFileDialog::getOpenFileName(Parent, QString::fromLatin1(titre ? titre : ""), initial,
                                           filtres.join(";;"), &selection);
    if (chemin.isEmpty()) {
        if (sortie && taille) sortie[0] = 0;
        return 0;
    }
    CopieBornee(sortie, taille, chemin.toLocal8Bit().constData());
    return 1;
}

int CommandeQt(const char* ligne) {
    // notepad "file": the desktop's own application for the file.
    std::string s = ligne ? ligne : "";
    const size_t q = s.find('"');
    if (s.rfind("notepad", 0) == 0 && q != std::string::npos) {
        const size_t fin = s.find('"', q + 1);
        const std::string fichier = s.substr(q + 1, fin == std::string::npos ? std::string::npos : fin - q - 1);
        return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromLocal8Bit(fichier.c_str()))) ? 1 : 0;
    }
    return QDesktopServices::openUrl(QUrl::fromUserInput(QString::fromLocal8Bit(s.c_str()))) ? 1 : 0;
}

// Text with the application's font, blended by its coverage over the surface.
void TexteQt(Image& s, int x, int y, const char* texte, uint32_t couleur) {
    if (!s.pixels || !texte || !*texte || (s.bits != 24 && s.bits != 32)) return;
    const QFont police = QApplication::font();
    const QFontMetrics m(police);
    const QString t = QString::fromLatin1(texte);
    const int l = m.horizontalAdvance(t) + 2, h = m.height();
    QImage calque(l, h, QImage::Format_ARGB32_Premultiplied);
    calque.fill(Qt::transparent);
    {
        QPainter p(&calque);
        p.setFont(police);
        p.setPen(QColor(couleur & 255, couleur >> 8 & 255, couleur >> 16 & 255));
        p.drawText(0, m.ascent(), t);
    }
    const int octets = s.bits / 8;
    for (int j = 0; j < h; ++j) {
        const int ty = y + j;
        if (ty < 0 || ty >= s.hauteur) continue;
        const QRgb* ligne = (const QRgb*)calque.constScanLine(j);
        uint8_t* d = s.pixels + (size_t)(s.hauteur - 1 - ty) * s.pas;
        for (int i = 0; i < l; ++i) {
            const int tx = x + i, a = qAlpha(ligne[i]);
            if (tx < 0 || tx >= s.largeur || a == 0) continue;
            uint8_t* q = d + (size_t)tx * octets;
            const int c[3] = {(int)(couleur >> 16 & 255), (int)(couleur >> 8 & 255), (int)(couleur & 255)};
            for (int k = 0; k < 3; ++k) q[k] = (uint8_t)((c[k] * a + q[k] * (255 - a)) / 255);
        }
    }
}

int LargeurQt(const char* texte) {
    return QFontMetrics(QApplication::font()).horizontalAdvance(QString::fromLatin1(texte ? texte : ""));
}

} // namespace

void InstallePlateformeQt(QWidget* parent) {
    Parent = parent;
    PlateformeCourante.boiteMessage = BoiteQt;
    PlateformeCourante.afficheAttente = AttenteQt;
    PlateformeCourante.choisitFichier = FichierQt;
    PlateformeCourante.lanceCommande = CommandeQt;
    PlateformeCourante.dessineTexte = TexteQt;
    PlateformeCourante.largeurTexte = LargeurQt;
}

QImage ImageDeSurface(const Image& s, int x, int y, int l, int h, int largeur, int hauteur, bool moyenne) {
    QImage image(largeur > 0 ? largeur : 1, hauteur > 0 ? hauteur : 1, QImage::Format_RGB32);
    image.fill(Qt::black);
    if (!s.pixels || s.bits != 24 || l <= 0 || h <= 0 || largeur <= 0 || hauteur <= 0) return image;
    if (moyenne && (largeur != l || hauteur != h)) {
        const QImage pleine = ImageDeSurface(s, x, y, l, h, l, h, false);
        return pleine.scaled(largeur, hauteur, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    // The source column of each target column, once.
    std::vector<int> colonnes((size_t)largeur);
    for (int i = 0; i < largeur; ++i) colonnes[(size_t)i] = x + (int)((int64_t)i * l / largeur);
    int precedente = -1;
    for (int j = 0; j < hauteur; ++j) {
        const int sy = y + (int)((int64_t)j * h / hauteur);
        QRgb* d = (QRgb*)image.scanLine(j);
        if (sy < 0 || sy >= s.hauteur) continue;
        // A row repeated by the zoom is the row above it again.
        if (sy == precedente) {
            memcpy(d, image.constScanLine(j - 1), sizeof(QRgb) * (size_t)largeur);
            continue;
        }
        precedente = sy;
        const uint8_t* ligne = s.pixels + (size_t)(s.hauteur - 1 - sy) * s.pas;
        for (int i = 0; i < largeur; ++i) {
            const int sx = colonnes[(size_t)i];
            if (sx < 0 || sx >= s.largeur) continue;
            const uint8_t* p = ligne + 3 * (size_t)sx;
            d[i] = qRgb(p[2], p[1], p[0]);
        }
    }
    return image;
}
