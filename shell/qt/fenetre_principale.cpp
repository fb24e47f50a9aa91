// The main window in Qt.
//
// Sections: the tree operations; the strip and the pane; the window's
// start, menus and commands; closing and dropped files; the window road.
//
// Linux readings made here: dialog units become pixels by 1.5 across and
// 1.625 down (the 6 x 13 pixel average character of the dialog font the
// layout was drawn for); the background colour is the window palette's.
#include "shell/qt/fenetre_principale.h"

#include "app/demarrage.h"
#include "core/arbre.h"
#include "core/chemins.h"
#include "core/elements.h"
#include "core/modeles.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "editor/edition.h"
#include "editor/editeur.h"
#include "format/formats.h"
#include "platform/fichiers.h"
#include "platform/plateforme.h"
#include "platform/qt/fenetre_qt.h"
#include "platform/texte.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "script/evenements.h"
#include "script/fonctions.h"
#include "script/interpreteur.h"
#include "shell/fenetre.h"
#include "shell/qt/editeur_carte.h"
#include "shell/volet.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

FenetrePrincipaleQt* FenetrePrincipale = nullptr;

namespace {

int ArgcQt = 0;
char** ArgvQt = nullptr;

// ---- The tree operations ----------------------------------------------------------------------

std::map<NoeudArbre, QTreeWidgetItem*> Noeuds;
NoeudArbre ProchainNoeud = 1;

QTreeWidget* ArbreQt() { return FenetrePrincipale ? FenetrePrincipale->Arbre() : nullptr; }

NoeudArbre Insere(NoeudArbre parent, NoeudArbre precedent, const char* texte) {
    QTreeWidget* a = ArbreQt();
    if (!a) return 0;
    auto* item = new QTreeWidgetItem(QStringList(QString::fromLatin1(texte ? texte : "")));
    QTreeWidgetItem* p = parent && Noeuds.count(parent) ? Noeuds[parent] : nullptr;
    QTreeWidgetItem* avant = precedent && Noeuds.count(precedent) ? Noeuds[precedent] : nullptr;
    if (p) {
        p->insertChild(avant ? p->indexOfChild(avant) + 1 : 0, item);
    } else {
        a->insertTopLevelItem(avant ? a->indexOfTopLevelItem(avant) + 1 : 0, item);
    }
    const NoeudArbre id = ProchainNoeud++;
    item->setData(0, Qt::UserRole, (qulonglong)id);
    Noeuds[id] = item;
    return id;
}

void Oublie(QTreeWidgetItem* item) {
    for (int i = 0; i < item->childCount(); ++i) Oublie(item->child(i));
    Noeuds.erase((NoeudArbre)item->data(0, Qt::UserRole).toULongLong());
}

void Supprime(NoeudArbre noeud) {
    auto it = Noeuds.find(noeud);
    if (it == Noeuds.end()) return;
    QTreeWidgetItem* item = it->second;
    Oublie(item);
    delete item;
}

void Vide() {
    if (QTreeWidget* a = ArbreQt()) a->clear();
    Noeuds.clear();
}

void Selectionne(NoeudArbre noeud) {
    QTreeWidget* a = ArbreQt();
    auto it = Noeuds.find(noeud);
    if (a && it != Noeuds.end()) a->setCurrentItem(it->second);
}

void Redessine(int actif) {
    if (QTreeWidget* a = ArbreQt()) a->setUpdatesEnabled(actif != 0);
}

const OperationsArbre ArbreQtOperations = {Insere, Supprime, Vide, Selectionne, Redessine};

// The project saved from the window: a failure is said, where a batch run
// only gives its failure line.
bool SauveProjetFenetre(const char* chemin) {
    if (SauveProjet(chemin)) return true;
    BoiteMessage("Unable to open the file for writing.\nThe file name is probably erroneous.", chemin,
                 BOITE_OK | ICONE_ARRET);
    return false;
}

// The element row of a node, or -1 (a root or a folder has none).
int ElementDeNoeud(NoeudArbre noeud) {
    for (int i = 0; i < NbElements; ++i)
        if (Elements[i].arbreItem == noeud && !EstDossier(Elements[i])) return i;
    return -1;
}

void TitreAttenteQt(int visible) {
    if (!FenetrePrincipale) return;
    static char garde[TAILLE_TITRE];
    if (visible) {
        CopieBornee(garde, TitreCourant);
        CopieBornee(TitreCourant, "Please wait...");
    } else {
        CopieBornee(TitreCourant, garde);
    }
    FenetrePrincipale->RedessineApercu();
    QApplication::processEvents();
}

} // namespace

// ---- The strip and the pane --------------------------------------------------------------------

BandeauTitre::BandeauTitre(QWidget* parent) : QWidget(parent) { setFixedSize(BANDEAU_L, BANDEAU_H); }

BandeauTitre::~BandeauTitre() {
    LibereImage(fond);
    LibereImage(avecTitre);
}

const Image& BandeauTitre::Picture() {
    DessineBandeau(fond);
    if (avecTitre.largeur != BANDEAU_L) CreeImage(avecTitre, BANDEAU_L, BANDEAU_H, 24);
    if (fond.pixels && avecTitre.pixels) memcpy(avecTitre.pixels, fond.pixels, (size_t)fond.pas * fond.hauteur);
    DessineTexte(avecTitre, DebutTitre(LargeurTexte(TitreCourant)), 1, TitreCourant, 0xFFFFFF);
    return avecTitre;
}

void BandeauTitre::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.drawImage(0, 0, ImageDeSurface(Picture(), 0, 0, BANDEAU_L, BANDEAU_H, BANDEAU_L, BANDEAU_H));
}

VoletApercu::VoletApercu(FenetrePrincipaleQt* f) : QWidget(f->centralWidget()), fenetre(f) {
    setFixedSize(VOLET_COTE, VOLET_COTE);
    setMouseTracking(true);
}

QImage VoletApercu::Picture() const {
    const QColor fond(CouleurFond & 255, CouleurFond >> 8 & 255, CouleurFond >> 16 & 255);
    const int kind = TypeApercu;
    QImage image(VOLET_COTE, VOLET_COTE, QImage::Format_RGB32);
    image.fill(fond);
    if (kind == APERCU_PALETTE) {
        // 16 pixels a row stretched 16 times; the rows of colours there are.
        const int lignes = SurfaceApercu.hauteur < 16 ? SurfaceApercu.hauteur : 16;
        if (lignes > 0 && SurfaceApercu.largeur >= 16) {
            QPainter p(&image);
            p.drawImage(0, 0, ImageDeSurface(SurfaceApercu, 0, 0, 16, lignes, VOLET_COTE, 16 * lignes));
        }
        return image;
    }
    if (kind != APERCU_BITMAP8 && kind != APERCU_BITMAP16 && kind != APERCU_CARTE && kind != APERCU_MOSAIQUE) return image;
    const int w = sizex < VOLET_COTE ? sizex : VOLET_COTE, h = sizey < VOLET_COTE ? sizey : VOLET_COTE;
    if (w > 0 && h > 0) {
        QPainter p(&image);
        p.drawImage(0, 0, ImageDeSurface(SurfaceApercu, DecalageX, DecalageY, w, h, w, h));
    }
    return image;
}

void VoletApercu::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.drawImage(0, 0, Picture());
}

void VoletApercu::mouseMoveEvent(QMouseEvent* e) {
    Survol s;
    const int mx = VOLET_X + (int)e->position().x(), my = VOLET_Y + (int)e->position().y();
    if (!SurvoleApercu(mx, my, s)) return;
    const QString style = QString("background: #%1; color: #%2")
                              .arg(QString::asprintf("%02x%02x%02x", CouleurFond & 255, CouleurFond >> 8 & 255,
                                                     CouleurFond >> 16 & 255),
                                   QString::asprintf("%02x%02x%02x", ~CouleurFond & 255, ~CouleurFond >> 8 & 255,
                                                     ~CouleurFond >> 16 & 255));
    auto Montre = [&](QLabel* l, const char* texte, int x, int y) {
        l->setStyleSheet(style);
        l->setText(QString::fromLatin1(texte));
        l->adjustSize();
        l->move(x, y);
        l->show();
    };
    Montre(fenetre->Texte(0), s.texte1, s.x1, s.y1);
    if (s.texte2[0]) Montre(fenetre->Texte(1), s.texte2, s.x2, s.y2);
    if (s.loupe) {
        QLabel* l = fenetre->Texte(2);
        l->setPixmap(QPixmap::fromImage(ImageDeSurface(SurfaceApercu, s.blocX, s.blocY, s.blocL, s.blocH, LOUPE_COTE, LOUPE_COTE)));
        l->show();
    }
}

// ---- The window -----------------------------------------------------------------------------------

FenetrePrincipaleQt::FenetrePrincipaleQt() {
    FenetrePrincipale = this;
    setWindowTitle("Tessellarium " TESS_VERSION_FENETRE);
    auto* centre = new QWidget(this);
    setCentralWidget(centre);
    arbre = new QTreeWidget(centre);
    arbre->setHeaderHidden(true);
    arbre->setGeometry(10, 11, 147, 331); // (7, 7) and 98 x 204 dialog units
    bandeau = new BandeauTitre(centre);
    bandeau->move(BANDEAU_X, BANDEAU_Y);
    volet = new VoletApercu(this);
    volet->move(VOLET_X, VOLET_Y);
    barreX = new QScrollBar(Qt::Horizontal, centre);
    barreX->setGeometry(170, 286, 256, 16);
    barreY = new QScrollBar(Qt::Vertical, centre);
    barreY->setGeometry(426, 30, 16, 256);
    barreX->hide();
    barreY->hide();
    for (QLabel*& t : textes) {
        t = new QLabel(centre);
        t->hide();
    }
    loupe = textes[2];
    loupe->setGeometry(LOUPE_X, LOUPE_Y, LOUPE_COTE, LOUPE_COTE);
    centre->setMinimumSize(560, 360);
    setAcceptDrops(true);
    ConstruitMenus();
    connect(arbre, &QTreeWidget::currentItemChanged, this, [this] {
        if (SelectionArbreActive && !ArbreEnReconstruction) MontreSelection();
    });
    connect(arbre, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        const int e = ElementDeNoeud((NoeudArbre)item->data(0, Qt::UserRole).toULongLong());
        if (e < 0) return;
        if (TypeDe(Elements[e]) == TYPE_CARTE) {
            EditeElement(this, e); // a map opens in the editor
            MontreSelection();
            return;
        }
        char ligne[TAILLE_CHEMIN + 16];
        FormateBorne(ligne, sizeof ligne, "notepad \"%s\"", Elements[e].fichier);
        PlateformeCourante.lanceCommande(ligne);
    });
    auto Defilement = [this](QScrollBar* barre, bool horizontal) {
        connect(barre, &QScrollBar::actionTriggered, this, [this, barre, horizontal](int action) {
            RequeteDefilement r = POSITION;
            switch (action) {
            case QAbstractSlider::SliderSingleStepSub: r = LIGNE_MOINS; break;
            case QAbstractSlider::SliderSingleStepAdd: r = LIGNE_PLUS; break;
            case QAbstractSlider::SliderPageStepSub: r = PAGE_MOINS; break;
            case QAbstractSlider::SliderPageStepAdd: r = PAGE_PLUS; break;
            case QAbstractSlider::SliderToMinimum: r = VERS_DEBUT; break;
            case QAbstractSlider::SliderToMaximum: r = VERS_FIN; break;
            default: break;
            }
            int& position = horizontal ? DecalageX : DecalageY;
            position = Defile(position, r, barre->sliderPosition(), horizontal ? sizex : sizey);
            barre->setSliderPosition(position);
            volet->update();
        });
    };
    Defilement(barreX, true);
    Defilement(barreY, false);
    InstallePlateformeQt(this);
    PlateformeCourante.titreAttente = TitreAttenteQt;
    ArbreProjet = &ArbreQtOperations;
}

FenetrePrincipaleQt::~FenetrePrincipaleQt() {
    ArbreProjet = nullptr;
    Noeuds.clear();
    PlateformeCourante = PlateformeSansFenetre;
    FenetrePrincipale = nullptr;
}

void FenetrePrincipaleQt::ConstruitMenus() {
    auto Item = [this](QMenu* m, const char* texte, int numero, QKeySequence touche = {}) {
        QAction* a = m->addAction(QString::fromLatin1(texte));
        a->setShortcut(touche);
        a->setData(numero);
        connect(a, &QAction::triggered, this, [this, numero] { Commande(numero); });
        return a;
    };
    QMenu* fichier = menuBar()->addMenu("File");
    Item(fichier, "New", CMD_NOUVEAU, QKeySequence("Ctrl+N"));
    Item(fichier, "Open", CMD_OUVRIR, QKeySequence("Ctrl+O"));
    Item(fichier, "Save", CMD_SAUVER, QKeySequence("Ctrl+S"));
    Item(fichier, "Save as", CMD_SAUVER_SOUS);
    fichier->addSeparator();
    Item(fichier, "File formats...", CMD_FORMATS);
    Item(fichier, "Add a folder", CMD_AJOUTE_DOSSIER);
    fichier->addSeparator();
    Item(fichier, "Quit without saving", CMD_QUITTER_SANS_SAUVER, QKeySequence("Ctrl+Q"));
    QMenu* edition = menuBar()->addMenu("Edit");
    Item(edition, "Copy preview", CMD_COPIE_APERCU, QKeySequence("Ctrl+C"));
    Item(edition, "Export (image)", CMD_EXPORTE, QKeySequence("Ctrl+X"));
    QMenu* vue = menuBar()->addMenu("View");
    Item(vue, "Refresh tree", CMD_RAFRAICHIR, QKeySequence("F5"));
    QMenu* outils = menuBar()->addMenu("Tools");
    Item(outils, "Script invite", CMD_SCRIPT, QKeySequence("Ctrl+I"));
    Item(outils, "Clean project", CMD_NETTOIE);
    Item(outils, "Options...", CMD_OPTIONS);
    QMenu* procedures = menuBar()->addMenu("Procedures");
    std::vector<ElementMenu> items;
    ConstruitMenuProcedures(ScriptPrincipal, items);
    for (const ElementMenu& e : items) {
        QAction* a = Item(procedures, e.texte.c_str(), e.commande);
        a->setEnabled(e.actif);
    }
    QMenu* aide = menuBar()->addMenu("Help");
    Item(aide, "Documentation", CMD_DOCUMENTATION, QKeySequence("F1"));
    Item(aide, "User help...", CMD_AIDE_PERSO, QKeySequence("F3"));
    Item(aide, "About...", CMD_A_PROPOS);
}

bool FenetrePrincipaleQt::Demarre() {
    ReconstruitArbre();
    LitCouleurFond();
    CopieBornee(TitreCourant, "Welcome! Please select an element...");
    ExecuteEvenement("onstart");
    if (FinScript == 2 || ResultatScript == 0) return false;
    if (FormatNote[0]) ChoisitFormat(FormatNote);
    if (ModeleNote[0]) ChoisitModele(ModeleNote);
    PlateformeCourante.afficheAttente(0);
    messages = 1;
    return true;
}

void FenetrePrincipaleQt::MontreSelection() {
    QTreeWidgetItem* item = arbre->currentItem();
    const int e = item ? ElementDeNoeud((NoeudArbre)item->data(0, Qt::UserRole).toULongLong()) : -1;
    DecalageX = DecalageY = 0;
    for (QLabel* t : textes) t->hide();
    if (e < 0) {
        TypeApercu = APERCU_AUCUN;
        CopieBornee(TitreCourant, item ? item->text(0).toLatin1().constData() : "");
    } else {
        CopieBornee(TitreCourant, Elements[e].fichier);
        ApercuElement(e);
    }
    BarresDefilement();
    RedessineApercu();
}

void FenetrePrincipaleQt::BarresDefilement() {
    const bool apercu = TypeApercu == APERCU_BITMAP8 || TypeApercu == APERCU_BITMAP16 || TypeApercu == APERCU_CARTE ||
                        TypeApercu == APERCU_MOSAIQUE;
    auto Regle = [](QScrollBar* b, bool utile, int taille) {
        b->setVisible(utile);
        b->setRange(0, taille > VOLET_COTE ? taille - VOLET_COTE : 0);
        b->setPageStep(VOLET_COTE);
        b->setSingleStep(32);
        b->setValue(0);
    };
    Regle(barreX, apercu && sizex > VOLET_COTE, sizex);
    Regle(barreY, apercu && sizey > VOLET_COTE, sizey);
}

void FenetrePrincipaleQt::RedessineApercu() {
    bandeau->update();
    volet->update();
}

void FenetrePrincipaleQt::ScriptInvite() {
    static std::string derniere;
    QDialog d(this);
    d.setWindowTitle("Execute (script)");
    auto* texte = new QPlainTextEdit(&d);
    texte->setPlainText(QString::fromLatin1(derniere.c_str()));
    texte->selectAll();
    auto* boutons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &d);
    auto* l = new QVBoxLayout(&d);
    l->addWidget(texte);
    l->addWidget(boutons);
    connect(boutons, &QDialogButtonBox::accepted, &d, &QDialog::accept);
    connect(boutons, &QDialogButtonBox::rejected, &d, &QDialog::reject);
    if (d.exec() != QDialog::Accepted) return;
    derniere = texte->toPlainText().toLatin1().left(10000).toStdString();
    FILE* f = tmpfile();
    if (!f) return;
    for (char c : derniere)
        if (c != '\r') fputc(c, f);
    fputs("\nFin\n\n\n\n", f);
    rewind(f);
    ExecuteScript(f, nullptr);
    RedessineApercu();
}

void FenetrePrincipaleQt::Commande(int numero) {
    auto NomSauvegarde = [](char* nom, size_t taille) {
        if (CheminProjet[0]) CopieBornee(nom, taille, CheminProjet);
        else ChoisitNomProjet(nom, taille);
        return nom[0] != 0;
    };
    auto Sauve = [&] {
        char nom[TAILLE_CHEMIN_PROJET];
        if (!NomSauvegarde(nom, sizeof nom)) return false;
        DefinitProjet(nom);
        return SauveProjetFenetre(CheminProjet);
    };
    // New and Open first offer to save the project.
    auto Question = [&] {
        const int r = BoiteMessage("Do you want to save the project frist?", "Attention", BOITE_OUINONANNULER | ICONE_QUESTION);
        if (r == REPONSE_ANNULER) return false;
        return r != REPONSE_OUI || Sauve();
    };
    if (numero >= CMD_PROCEDURE && numero < CMD_QUITTER_SANS_SAUVER) {
        QAction* a = nullptr;
        for (QAction* m : menuBar()->actions())
            for (QAction* i : m->menu() ? m->menu()->actions() : QList<QAction*>{})
                if (i->data().toInt() == numero) a = i;
        if (a) ExecuteFichierScript(ScriptPrincipal, a->text().toLatin1().constData());
        RedessineApercu();
        return;
    }
    switch (numero) {
    case CMD_NOUVEAU:
        if (!Question()) return;
        NbElements = 0;
        CheminProjet[0] = 0;
        ReconstruitArbre();
        break;
    case CMD_OUVRIR: {
        if (!Question()) return;
        char nom[TAILLE_CHEMIN_PROJET] = "";
        if (!ChoisitFichierOuvert(nom, sizeof nom, "\x01Tessellarium project files *.tsl\0*.tsl\0")) return;
        ChargeProjet(nom);
        DefinitProjet(nom);
        ReconstruitArbre();
        break;
    }
    case CMD_SAUVER: Sauve(); break;
    case CMD_SAUVER_SOUS: {
        char nom[TAILLE_CHEMIN_PROJET] = "";
        ChoisitNomProjet(nom, sizeof nom);
        if (!nom[0]) return;
        DefinitProjet(nom);
        SauveProjetFenetre(CheminProjet);
        break;
    }
    case CMD_RAFRAICHIR: ReconstruitArbre(); break;
    case CMD_A_PROPOS: BoiteMessage("Tessellarium " TESS_VERSION_FENETRE, "About", BOITE_OK | ICONE_INFORMATION); break;
    case CMD_DOCUMENTATION: {
        char ligne[TAILLE_CHEMIN_PROJET + 32];
        FormateBorne(ligne, sizeof ligne, "notepad \"%s/aide.htm\"", RepertoireProgramme);
        PlateformeCourante.lanceCommande(ligne);
        break;
    }
    case CMD_AIDE_PERSO:
        if (FichierExiste(AideUtilisateur)) {
            char ligne[TAILLE_TEXTE_REGLAGE + 16];
            FormateBorne(ligne, sizeof ligne, "notepad \"%s\"", AideUtilisateur);
            PlateformeCourante.lanceCommande(ligne);
        } else {
            BoiteMessage("You are trying to access the personnal help file (but it doesn't exist).\nYou can write "
                         "everything in this file as important informations on the project it is distributed with.\n"
                         "By default, it is called lisezmoi.htm (but you can change it!).",
                         AideUtilisateur, BOITE_OK | ICONE_INFORMATION);
        }
        break;
    case CMD_NETTOIE:
        if (BoiteMessage("Any project element pointing to a file that doesn't exist anymore will be removed from the "
                         "project.",
                         "Project cleaning", BOITE_OKANNULER | ICONE_QUESTION) != REPONSE_OK)
            return;
        for (int i = NbElements - 1; i >= 0; --i)
            if (!EstDossier(Elements[i]) && !FichierExiste(Elements[i].fichier)) SupprimeElement(i);
        ReconstruitArbre();
        break;
    case CMD_SCRIPT: ScriptInvite(); break;
    case CMD_QUITTER_SANS_SAUVER:
        if (EditeurOuvert) return;
        if (ExecuteEvenement("onquit") == 0) return;
        fermetureAcceptee = true;
        QApplication::exit(0);
        break;
    case CMD_SUIVANT: focusNextChild(); break;
    case CMD_PRECEDENT: focusPreviousChild(); break;
    default: break; // the commands of the forms and dialogs come with them
    }
}

bool FenetrePrincipaleQt::Ferme() {
    if (EditeurOuvert) return false;
    if (ExecuteEvenement("onquit") == 0) return false;
    char nom[TAILLE_CHEMIN_PROJET];
    if (CheminProjet[0]) CopieBornee(nom, CheminProjet);
    else ChoisitNomProjet(nom, sizeof nom);
    if (!nom[0]) return false;
    // A project that could not be written keeps the window open: nothing is lost.
    return SauveProjetFenetre(nom);
}

// The window's background colour, with its lowest red bit set (no GBA
// colour, whose components are multiples of 8, can equal it): read from the
// window's palette, at start and whenever the desktop changes it.
void FenetrePrincipaleQt::LitCouleurFond() {
    const QColor fond = palette().color(QPalette::Window);
    const uint32_t couleur = ((uint32_t)fond.red() | 1u) | (uint32_t)fond.green() << 8 | (uint32_t)fond.blue() << 16;
    if (couleur == CouleurFond) return;
    CouleurFond = couleur;
    RedessineApercu();
}

void FenetrePrincipaleQt::changeEvent(QEvent* e) {
    if (e->type() == QEvent::PaletteChange) LitCouleurFond();
    QMainWindow::changeEvent(e);
}

void FenetrePrincipaleQt::closeEvent(QCloseEvent* e) {
    if (fermetureAcceptee || Ferme()) {
        fermetureAcceptee = true;
        e->accept();
    } else {
        e->ignore();
    }
}

void FenetrePrincipaleQt::dragEnterEvent(QDragEnterEvent* e) {
    if (e->mimeData()->hasUrls()) e->acceptProposedAction();
}

// Dropped files: each one of a known element extension becomes a row.
void FenetrePrincipaleQt::dropEvent(QDropEvent* e) {
    for (const QUrl& url : e->mimeData()->urls()) AjouteFichierDepose(url.toLocalFile().toLocal8Bit().constData());
    e->acceptProposedAction();
}

// ---- The window road ---------------------------------------------------------------------------------

void ArgumentsQt(int argc, char** argv) {
    ArgcQt = argc;
    ArgvQt = argv;
}

int LanceFenetreQt() {
    static int argc = 1;
    static char nom[] = "tessellarium";
    static char* argv[] = {nom, nullptr};
    QApplication* app = qobject_cast<QApplication*>(QCoreApplication::instance());
    QApplication* propre = nullptr;
    if (!app) propre = app = new QApplication(ArgcQt > 0 ? ArgcQt : argc, ArgvQt ? ArgvQt : argv);
    int code = 0;
    {
        FenetrePrincipaleQt fenetre;
        fenetre.resize(620, 400);
        fenetre.show();
        if (fenetre.Demarre()) code = app->exec();
        else fenetre.Ferme();
    }
    delete propre;
    return code;
}
