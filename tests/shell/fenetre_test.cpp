// The main window, offscreen, on the example project: the pane shows
// SurfaceApercu pixel for pixel for each element, the title strip follows
// its formula, and the commands give their exact messages. With
// TESS_CAPTURES set, a picture of the window for each element is saved
// there as PNG.
#include "app/demarrage.h"
#include "convert/conv.h"
#include "convert/couleurs.h"
#include "convert/images.h"
#include "core/arbre.h"
#include "core/projet.h"
#include "core/reglages.h"
#include "editor/editeur.h"
#include "editor/edition.h"
#include "editor/plans.h"
#include "format/formats.h"
#include "platform/qt/fenetre_qt.h"
#include "render/apercus.h"
#include "render/surfaces.h"
#include "script/crochets.h"
#include "script/interpreteur.h"
#include "shell/qt/editeur_carte.h"
#include "shell/qt/fenetre_principale.h"
#include "editor/entree.h"
#include "editor/liste.h"
#include "editor/notifications.h"
#include "shell/volet.h"
#include "platform/texte.h"
#include "tests/support/enregistreur.h"
#include "tests/support/projets.h"
#include "tests/support/systeme.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QMouseEvent>
#include <QDialog>
#include <QPlainTextEdit>
#include <QTimer>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

// Under LeakSanitizer: the font library behind Qt keeps a few bytes to the
// end of the process; they are none of ours.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace {

struct Fenetre : testing::Test {
    DossierTemporaire dossier;
    QApplication* app = nullptr;
    FenetrePrincipaleQt* fenetre = nullptr;
    EnregistreurMessages* journal = nullptr;

    void SetUp() override {
        static int argc = 1;
        static char nom[] = "tests";
        static char* argv[] = {nom, nullptr};
        if (!QCoreApplication::instance()) app = new QApplication(argc, argv);
        for (const char* f : {"niveau.png", "decor.png", "titre.bmp", "projet.tsl"})
            std::filesystem::copy_file(std::string(TESS_SOURCES) + "/examples/demo/" + f, f);
        InstalleSysteme();
        ChargeProjet("projet.tsl");
        DefinitProjet("projet.tsl");
        ASSERT_EQ(CreeSurfaceApercu(), 1);
        ExecuteChaineLot("-tset src=niveau +16c:-tset src=decor:-b16 src=titre:-b8 src=niveau");
        fenetre = new FenetrePrincipaleQt();
        fenetre->resize(620, 400);
        fenetre->show();
        journal = new EnregistreurMessages(); // after the window: boxes are recorded
        ASSERT_TRUE(fenetre->Demarre());
    }
    void TearDown() override {
        delete journal;
        delete fenetre;
        EditeurOuvert = false;
    }
    // Selects the row's node as a click would.
    void Choisit(int element) {
        for (QTreeWidgetItemIterator it(fenetre->Arbre()); *it; ++it)
            if ((*it)->data(0, Qt::UserRole).toULongLong() == Elements[element].arbreItem) fenetre->Arbre()->setCurrentItem(*it);
    }
    // The pane as grabbed against SurfaceApercu at the scroll position.
    static void ComparePane(QWidget* volet, const std::string& cas) {
        const QImage vu = volet->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const bool palette = TypeApercu == APERCU_PALETTE;
        const int w = palette ? VOLET_COTE : std::min(sizex, VOLET_COTE), h = palette ? VOLET_COTE : std::min(sizey, VOLET_COTE);
        int differences = 0;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const int sx = palette ? x / 16 : DecalageX + x, sy = palette ? y / 16 : DecalageY + y;
                // A palette's rows past its colours stay in the background colour.
                QRgb attendu = qRgb(CouleurFond & 255, CouleurFond >> 8 & 255, CouleurFond >> 16 & 255);
                if (sy < SurfaceApercu.hauteur) {
                    const uint8_t* p = SurfaceApercu.pixels + (size_t)(SurfaceApercu.hauteur - 1 - sy) * SurfaceApercu.pas + 3 * sx;
                    attendu = qRgb(p[2], p[1], p[0]);
                }
                differences += vu.pixel(x, y) != attendu;
            }
        EXPECT_EQ(differences, 0) << cas;
    }
};

TEST_F(Fenetre, LeVoletMontreLApercuDeChaqueElement) {
    const char* captures = getenv("TESS_CAPTURES");
    ASSERT_GE(NbElements, 8);
    int vus = 0;
    for (int e = 0; e < NbElements; ++e) {
        if (EstDossier(Elements[e])) continue;
        Choisit(e);
        QApplication::processEvents();
        ASSERT_GE(TypeApercu, 9) << Elements[e].fichier;
        EXPECT_STREQ(TitreCourant, Elements[e].fichier);
        ComparePane(fenetre->Volet(), Elements[e].fichier);
        // A map or bitmap wider than the pane scrolls; the pane follows.
        if ((TypeApercu == APERCU_CARTE || TypeApercu == APERCU_BITMAP16) && sizex > VOLET_COTE) {
            DecalageX = Defile(DecalageX, PAGE_PLUS, 0, sizex);
            EXPECT_EQ(DecalageX, std::min(192, sizex - VOLET_COTE));
            ComparePane(fenetre->Volet(), std::string(Elements[e].fichier) + " scrolled");
            DecalageX = 0;
        }
        if (captures) fenetre->grab().save(QString("%1/%2.png").arg(captures, QString(Elements[e].fichier).replace('.', '-')));
        ++vus;
    }
    EXPECT_GE(vus, 8);
    EXPECT_TRUE(journal->messages.empty());
}

TEST_F(Fenetre, BandeauSelonSaFormuleEtCoinsCoupes) {
    CopieBornee(TitreCourant, "");
    const QImage vu = fenetre->Bandeau()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRgb fond = qRgb(CouleurFond & 255, CouleurFond >> 8 & 255, CouleurFond >> 16 & 255);
    // Three pixels along each edge from every corner are cut.
    auto Coupe = [](int x, int y) {
        const int dx = x < BANDEAU_L / 2 ? x : BANDEAU_L - 1 - x, dy = y < BANDEAU_H / 2 ? y : BANDEAU_H - 1 - y;
        return (dx == 0 && dy < 3) || (dy == 0 && dx < 3);
    };
    auto B = [](int v) { return v < 0 ? 0 : v > 255 ? 255 : v; };
    int differences = 0;
    for (int y = 0; y < BANDEAU_H; ++y)
        for (int x = 0; x < BANDEAU_L; ++x) {
            const QRgb formule = qRgb(B(3 * x / 5), B(x / 12 + 160 - 20 * y), B(x / 12 - 175 + 25 * y));
            differences += vu.pixel(x, y) != (Coupe(x, y) ? fond : formule);
        }
    EXPECT_EQ(differences, 0);
}

TEST_F(Fenetre, CommandesEtLeursMessages) {
    fenetre->Commande(CMD_A_PROPOS);
    ASSERT_FALSE(journal->messages.empty());
    EXPECT_EQ(journal->messages.back(), "[About] Tessellarium " TESS_VERSION_FENETRE);
    fenetre->Commande(CMD_AIDE_PERSO);
    EXPECT_EQ(journal->messages.back().rfind("[lisezmoi.htm] You are trying to access the personnal help file", 0), 0u);
    // Clean project: the rows whose file is gone go, after the question.
    const int avant = NbElements;
    std::filesystem::remove("titre.b16.c");
    journal->reponses = {REPONSE_ANNULER};
    fenetre->Commande(CMD_NETTOIE);
    EXPECT_EQ(NbElements, avant);
    fenetre->Commande(CMD_NETTOIE);
    EXPECT_EQ(journal->messages.back(), "[Project cleaning] Any project element pointing to a file that doesn't exist "
                                         "anymore will be removed from the project.");
    EXPECT_EQ(NbElements, avant - 1);
    // New: Cancel keeps everything; No empties the project.
    journal->reponses = {REPONSE_ANNULER};
    fenetre->Commande(CMD_NOUVEAU);
    EXPECT_EQ(NbElements, avant - 1);
    EXPECT_EQ(journal->messages.back(), "[Attention] Do you want to save the project frist?");
    journal->reponses = {REPONSE_NON};
    fenetre->Commande(CMD_NOUVEAU);
    EXPECT_EQ(NbElements, 0);
    EXPECT_EQ(CheminProjet[0], 0);
    // Closing is refused while an editor is open, and by an onquit hook that returns 0.
    EditeurOuvert = true;
    EXPECT_FALSE(fenetre->Ferme());
    EditeurOuvert = false;
    EcritFichier("script.spt", "onquit:\nreturn 0\n");
    EXPECT_FALSE(fenetre->Ferme());
}

} // namespace

namespace {

TEST_F(Fenetre, ProceduresDuScriptNommeEtOnstartQuiFerme) {
    // A main script named by the project: its labels that begin with '_'
    // are the Procedures, run from the menu.
    delete journal;
    delete fenetre;
    // A main script that is missing gives the placeholder.
    CopieBornee(ScriptPrincipal, "absent.spt");
    fenetre = new FenetrePrincipaleQt();
    for (QAction* m : fenetre->menuBar()->actions())
        if (m->text() == "Procedures") {
            ASSERT_EQ(m->menu()->actions().size(), 1);
            EXPECT_EQ(m->menu()->actions()[0]->text(), "(No script)");
            EXPECT_FALSE(m->menu()->actions()[0]->isEnabled());
        }
    delete fenetre;
    EcritFichier("autre.spt", "_Niveau:\nconvert.nuances = 12\nfin\n_Autre essai:\nfin\nonstart:\nfin\n");
    EcritFichier("p2.tsl", Projet(DebutInfos("autre.spt", "lisezmoi.htm"), ""));
    ChargeProjet("p2.tsl");
    ASSERT_STREQ(ScriptPrincipal, "autre.spt");
    fenetre = new FenetrePrincipaleQt();
    journal = new EnregistreurMessages();
    ASSERT_TRUE(fenetre->Demarre());
    QStringList items;
    int premier = 0;
    for (QAction* m : fenetre->menuBar()->actions())
        if (m->text() == "Procedures")
            for (QAction* a : m->menu()->actions()) {
                items << a->text();
                if (!premier) premier = a->data().toInt();
            }
    EXPECT_EQ(items, (QStringList{"Niveau", "Autre essai"}));
    EXPECT_EQ(premier, CMD_PROCEDURE);
    fenetre->Commande(CMD_PROCEDURE);
    EXPECT_EQ(ReglagesConv.nuances, 12);
    // An onstart that quits closes the window as the user would.
    delete journal;
    delete fenetre;
    EcritFichier("autre.spt", "onstart:\nquitte\n");
    fenetre = new FenetrePrincipaleQt();
    journal = new EnregistreurMessages();
    EXPECT_FALSE(fenetre->Demarre());
}

TEST_F(Fenetre, FichiersDeposes) {
    const int avant = NbElements;
    std::filesystem::copy_file("decor.map.c", "autre.map.c");
    EXPECT_GE(AjouteFichierDepose((dossier.chemin + "/autre.map.c").c_str()), 0);
    EXPECT_EQ(NbElements, avant + 1);
    EXPECT_EQ(TypeDe(Elements[NbElements - 1]), (uint32_t)TYPE_CARTE);
    EXPECT_STREQ(Elements[NbElements - 1].fichier, "autre.map.c");
    EXPECT_EQ(AjouteFichierDepose((dossier.chemin + "/decor.png").c_str()), -1); // no format knows .png
    EXPECT_EQ(NbElements, avant + 1);
}

} // namespace

namespace {

// Bad input in the window: the system's messages, nothing lost, and the
// window goes on working.
TEST_F(Fenetre, MauvaisesEntreesLaissentLaFenetreUtilisable) {
    // A damaged project opened from the menu: after the question, the dialog's path.
    EcritFichier("abime.tsl", std::string("\x01\x02garbage\xff\xfe", 12));
    journal->reponses = {REPONSE_NON};
    journal->fichiers = {dossier.chemin + "/abime.tsl"};
    fenetre->Commande(CMD_OUVRIR);
    const size_t apresOuverture = journal->messages.size();
    EXPECT_GE(apresOuverture, 1u);
    EXPECT_TRUE(std::filesystem::exists("abime.tsl"));
    // A save where no folder exists: the message, the window stays open, and still answers.
    CopieBornee(CheminProjet, "/nulle/part/projet.tsl");
    fenetre->Commande(CMD_SAUVER);
    EXPECT_EQ(journal->messages.back(),
              "[/nulle/part/projet.tsl] Unable to open the file for writing.\nThe file name is probably erroneous.");
    EXPECT_FALSE(fenetre->Ferme());
    fenetre->Commande(CMD_A_PROPOS);
    EXPECT_EQ(journal->messages.back(), "[About] Tessellarium " TESS_VERSION_FENETRE);
    // A picture that can't be read, as a map's element: the preview says nothing, the pane stays.
    EcritFichier("vide.map.c", "pas une carte");
    const int e = AjouteFichierDepose((dossier.chemin + "/vide.map.c").c_str());
    ASSERT_GE(e, 0);
    Choisit(e);
    QApplication::processEvents();
    EXPECT_FALSE(fenetre->Volet()->grab().isNull());
}

} // namespace

namespace {

// The menu: every item, its key and its command number, in order.
TEST_F(Fenetre, MenuEtTouches) {
    QStringList vu;
    for (QAction* m : fenetre->menuBar()->actions()) {
        if (m->text() == "Procedures") continue; // from the main script
        for (QAction* a : m->menu()->actions())
            vu << (a->isSeparator() ? QString("----")
                                    : QString("%1|%2|%3|%4")
                                          .arg(m->text(), a->text(), a->shortcut().toString(), a->data().toString()));
    }
    const QStringList attendu = {
        "File|New|Ctrl+N|40002",         "File|Open|Ctrl+O|40003",           "File|Save|Ctrl+S|40004",
        "File|Save as||40005",           "----",                             "File|File formats...||40038",
        "File|Add a folder||40028",      "----",                             "File|Quit without saving|Ctrl+Q|40001",
        "Edit|Copy preview|Ctrl+C|40039", "Edit|Export (image)|Ctrl+X|40045", "View|Refresh tree|F5|40007",
        "Tools|Script invite|Ctrl+I|40030", "Tools|Clean project||40051",    "Tools|Options...||40032",
        "Help|Documentation|F1|40011",   "Help|User help...|F3|40031",       "Help|About...||40010",
    };
    EXPECT_EQ(vu, attendu);
}

// Open and Save as: the question before Open, the dialogs' paths, and a
// cancelled dialog that changes nothing.
TEST_F(Fenetre, OuvrirEtEnregistrerSous) {
    journal->fichiers = {dossier.chemin + "/copie.tsl"};
    fenetre->Commande(CMD_SAUVER_SOUS);
    EXPECT_TRUE(std::filesystem::exists("copie.tsl"));
    EXPECT_EQ(std::string(CheminProjet), dossier.chemin + "/copie.tsl");
    const int lignes = NbElements;
    // Open: Yes saves first (to copie.tsl), then the chosen project is read.
    EcritFichier("vide.tsl", "#Fichier de projet Tessellarium\n");
    journal->reponses = {REPONSE_OUI};
    journal->fichiers = {dossier.chemin + "/vide.tsl"};
    fenetre->Commande(CMD_OUVRIR);
    EXPECT_EQ(NbElements, 0);
    EXPECT_EQ(std::string(CheminProjet), dossier.chemin + "/vide.tsl");
    // Open again, No, and a cancelled dialog: the open project stays.
    journal->reponses = {REPONSE_NON};
    journal->fichiers = {};
    fenetre->Commande(CMD_OUVRIR);
    EXPECT_EQ(std::string(CheminProjet), dossier.chemin + "/vide.tsl");
    // The copy holds the rows it was saved with.
    journal->reponses = {REPONSE_NON};
    journal->fichiers = {dossier.chemin + "/copie.tsl"};
    fenetre->Commande(CMD_OUVRIR);
    EXPECT_EQ(NbElements, lignes);
}

} // namespace

namespace {

// "Execute (script)": the text typed runs as a script; the dialog opens
// again with it. The modal dialog is driven by actions posted before it runs.
TEST_F(Fenetre, InviteDeScript) {
    auto Tape = [](const QString& texte, bool ok) {
        QTimer::singleShot(0, [texte, ok] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* d = qobject_cast<QDialog*>(w);
                if (!d || !d->isVisible()) continue;
                if (auto* edition = d->findChild<QPlainTextEdit*>()) {
                    if (!texte.isNull()) edition->setPlainText(texte);
                    ok ? d->accept() : d->reject();
                }
            }
        });
    };
    Tape("convert.nuances = 7\r\nconvert.shades = 9", true);
    fenetre->Commande(CMD_SCRIPT);
    EXPECT_EQ(ReglagesConv.nuances, 9);
    Tape("convert.nuances = 3", false); // Cancel runs nothing
    fenetre->Commande(CMD_SCRIPT);
    EXPECT_EQ(ReglagesConv.nuances, 9);
    fenetre->activateWindow();
}

} // namespace

namespace {

// The map editor's window, offscreen, on the example's map: the view shows
// SurfaceEditeur scaled by repetition, a click paints, Ctrl+S saves the map
// and the state script, and closing asks nothing once saved.
TEST_F(Fenetre, EditeurDeCarte) {
    const int e = TrouveElement(TYPE_CARTE, "niveau");
    ASSERT_GE(e, 0);
    ASSERT_EQ(CreeSurfacesEditeur(), 1);
    ASSERT_EQ(OuvreEditeur(e), 1);
    EditeurCarteQt editeur(fenetre);
    editeur.show();
    editeur.Tick();
    auto Compare = [&](int zoom) {
        const QImage vu = editeur.VueWidget()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        int differences = 0;
        for (int y = 0; y < Vue.hauteurVue; ++y)
            for (int x = 0; x < Vue.largeurVue; ++x) {
                const int sx = x / zoom, sy = y / zoom;
                const uint8_t* p = SurfaceEditeur.pixels + (size_t)(SurfaceEditeur.hauteur - 1 - sy) * SurfaceEditeur.pas + 3 * sx;
                differences += vu.pixel(x, y) != qRgb(p[2], p[1], p[0]);
            }
        EXPECT_EQ(differences, 0) << "zoom " << zoom;
    };
    Compare(1);
    ReglagesEdit.zoom = 2.0;
    editeur.Dispose();
    editeur.Tick();
    Compare(2);
    ReglagesEdit.zoom = 1.0;
    editeur.Dispose();
    // A click on the view paints the value there.
    ChoisitValeur(3);
    const QPoint ici(2 * 8 + 3, 1 * 8 + 3); // cell (2, 1), in the view's own pixels
    QMouseEvent presse(QEvent::MouseButtonPress, ici, editeur.VueWidget()->mapToGlobal(ici), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QMouseEvent relache(QEvent::MouseButtonRelease, ici, editeur.VueWidget()->mapToGlobal(ici), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(editeur.VueWidget(), &presse);
    QApplication::sendEvent(editeur.VueWidget(), &relache);
    EXPECT_EQ(Plans[0].cellules[1 * Plans[0].sizex + 2], 3u);
    EXPECT_EQ(std::string(TitreEditeur), "niveau* - Map editor");
    editeur.Tick();
    if (const char* captures = getenv("TESS_CAPTURES")) editeur.grab().save(QString("%1/editeur.png").arg(captures));
    // The popup menu, as the document stands; its toggles act at once.
    QMenu* m = editeur.ConstruitMenu();
    QStringList haut;
    for (QAction* a : m->actions()) haut << a->text();
    EXPECT_EQ(haut, (QStringList{"Backgrounds...", "Tools...", "Options...", "Operations on selection", "Moving..."}));
    EXPECT_FALSE(m->actions()[3]->isEnabled()); // no block held
    QStringList fonds;
    for (QAction* a : m->actions()[0]->menu()->actions()) fonds << a->text();
    EXPECT_EQ(fonds, (QStringList{"Active...", "Properties...", "Add a background...\t   Ctrl+M", "Link...",
                                  "One palette for each BG", "Transparents BG"}));
    m->actions()[0]->menu()->actions()[5]->trigger();
    EXPECT_EQ(ReglagesPlans.transparence, 1);
    delete m;
    // "Blocks copy" driven by actions posted before it runs: take 2 x 1 cells at (2, 1).
    QTimer::singleShot(0, [] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            auto* d = qobject_cast<QDialog*>(w);
            if (!d || !d->isVisible() || d->windowTitle() != "Blocks copy") continue;
            const QList<QLineEdit*> champs = d->findChildren<QLineEdit*>();
            const char* textes[6] = {"2", "1", "2", "1", "", ""};
            for (int i = 0; i < 6 && i < champs.size(); ++i) champs[i]->setText(textes[i]);
            d->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        }
    });
    editeur.DialogueBlocs();
    EXPECT_EQ(std::pair(Motif.largeurMotif, Motif.hauteurMotif), std::pair(2, 1));
    EXPECT_EQ(EmplacementMotif(0)[0], 3u);
    // A save that fails keeps the editor open, its changes and the star.
    char fichier[TAILLE_TEXTE_PLAN];
    CopieBornee(fichier, Plans[0].file);
    CopieBornee(Plans[0].file, "/nulle/part/niveau.map.c");
    journal->messages.clear();
    CommandeClavier(ED_SAUVER);
    EXPECT_EQ(journal->messages.front(),
              "[/nulle/part/niveau.map.c] Unable to open the file for writing.\nThe file name is probably erroneous.");
    editeur.Tick();
    EXPECT_EQ(editeur.windowTitle(), "niveau* - Map editor");
    EXPECT_TRUE(EditeurOuvert);
    CopieBornee(Plans[0].file, fichier);
    CommandeClavier(ED_SAUVER);
    EXPECT_NE(LitFichier("niveau.map.c").find("0x0003"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists("niveau.map.spt"));
    EXPECT_TRUE(editeur.close());
    EXPECT_FALSE(EditeurOuvert);
}

} // namespace

namespace {

// A document of four planes: the two maps of the example, one at half
// speed and blended, a list with objects, the grid; then hex mode. The
// view shows the composed frame; with TESS_CAPTURES both are saved.
TEST_F(Fenetre, EditeurQuatrePlans) {
    EcritFichier("objets.lst.c", "//objets.lst.c\r\n//Converti avec Tessellarium par Zorvan\r\n//Liste (\"decor.til.c\")\r\n"
                                 "//Taille: 8*8\r\n//M\xE9moire: 0 octets\r\n\r\n#include \"def.h\"\r\n\r\n"
                                 "const unsigned int objets_liste_nbEle=0;\r\n\r\nconst SPRITE_LISTE objets_liste[]=\t{\r\n};\r\n");
    AjouteElement(NouvelElement(TYPE_LISTE, "objets", "objets.lst.c"));
    ASSERT_EQ(CreeSurfacesEditeur(), 1);
    ASSERT_EQ(OuvreEditeur(TrouveElement(TYPE_CARTE, "niveau")), 1);
    EcritFichier("quatre.spt", "maps.add \"decor\"\nmaps.add \"niveau\", 3\nmaps.add \"objets\"\nmaps[2].scrollrate 0.5, 0.5\n"
                               "maps.transparency = 1\neditor.grid = 1\n");
    ASSERT_EQ(ExecuteFichierScript("quatre.spt", nullptr), 1);
    ASSERT_EQ(NbPlans, 3); // "niveau" is open already: slot 3 stays free
    for (int i = 0; i < 6; ++i) AjouteObjet(2, 20 + 30 * i, 30 + 7 * i, 1 + i % 3);
    EditeurCarteQt editeur(fenetre);
    editeur.show();
    DecalageX = 16;
    AjouteNotificationSimple("Map saved: %s", "niveau");
    editeur.Tick();
    auto Identique = [&] {
        const QImage vu = editeur.VueWidget()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        int differences = 0;
        for (int y = 0; y < Vue.hauteurVue; ++y)
            for (int x = 0; x < Vue.largeurVue; ++x) {
                const uint8_t* p = SurfaceEditeur.pixels + (size_t)(SurfaceEditeur.hauteur - 1 - y) * SurfaceEditeur.pas + 3 * x;
                differences += vu.pixel(x, y) != qRgb(p[2], p[1], p[0]);
            }
        return differences;
    };
    EXPECT_EQ(Identique(), 0);
    const char* captures = getenv("TESS_CAPTURES");
    if (captures) editeur.grab().save(QString("%1/editeur-plans.png").arg(captures));
    CommandeClavier(ED_HEXA);
    editeur.Tick();
    EXPECT_EQ(Identique(), 0);
    if (captures) editeur.grab().save(QString("%1/editeur-hexa.png").arg(captures));
    CommandeClavier(ED_HEXA);
    EXPECT_TRUE(editeur.close());
}

} // namespace
