// The main window in Qt: the project tree, the title strip, the preview
// pane with its scroll bars and hover, the menus and keys. Every decision
// is made by the system's own functions; this class delivers events and
// shows surfaces.
#pragma once
#include "platform/image.h"

#include <QImage>
#include <QMainWindow>

class QLabel;
class QScrollBar;
class QTreeWidget;
class QTreeWidgetItem;
class FenetrePrincipaleQt;

// The title strip: its picture by its formula, TitreCourant over it.
class BandeauTitre : public QWidget {
public:
    explicit BandeauTitre(QWidget* parent);
    ~BandeauTitre() override;
    const Image& Picture(); // 24-bit, as shown

protected:
    void paintEvent(QPaintEvent*) override;

private:
    Image fond, avecTitre;
};

// The preview pane: SurfaceApercu's part at the scroll position, or a
// palette's 16 x 16 pixels stretched over the whole pane.
class VoletApercu : public QWidget {
public:
    explicit VoletApercu(FenetrePrincipaleQt* f);
    QImage Picture() const;

protected:
    void paintEvent(QPaintEvent*) override;
    void mouseMoveEvent(QMouseEvent* e) override;

private:
    FenetrePrincipaleQt* fenetre;
};

// Command numbers of the main window's menu and keys.
enum CommandeFenetre {
    CMD_QUITTER_SANS_SAUVER = 40001,
    CMD_NOUVEAU = 40002,
    CMD_OUVRIR = 40003,
    CMD_SAUVER = 40004,
    CMD_SAUVER_SOUS = 40005,
    CMD_RAFRAICHIR = 40007,
    CMD_A_PROPOS = 40010,
    CMD_DOCUMENTATION = 40011,
    CMD_SUIVANT = 40012,
    CMD_PRECEDENT = 40013,
    CMD_ECHAP = 40016,
    CMD_ENTREE = 40017,
    CMD_AJOUTE_DOSSIER = 40028,
    CMD_SCRIPT = 40030,
    CMD_AIDE_PERSO = 40031,
    CMD_OPTIONS = 40032,
    CMD_FORMATS = 40038,
    CMD_COPIE_APERCU = 40039,
    CMD_EXPORTE = 40045,
    CMD_NETTOIE = 40051,
    CMD_PROCEDURE = 16384,
};

class FenetrePrincipaleQt : public QMainWindow {
    Q_OBJECT
public:
    FenetrePrincipaleQt();
    ~FenetrePrincipaleQt() override;
    // The start-up steps of the window, after the project was loaded; false
    // when the onstart hook asked to close.
    bool Demarre();
    // A command of the menu, a key or a procedure.
    void Commande(int numero);
    // The preview of the tree's selection, as a change of selection shows it.
    void MontreSelection();
    // Copies the pane's part of SurfaceApercu again, and the strip.
    void RedessineApercu();
    // Closing as the user asks it: false when refused.
    bool Ferme();
    QTreeWidget* Arbre() const { return arbre; }
    VoletApercu* Volet() const { return volet; }
    BandeauTitre* Bandeau() const { return bandeau; }
    QLabel* Texte(int i) const { return textes[i]; }

protected:
    void closeEvent(QCloseEvent* e) override;
    void changeEvent(QEvent* e) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;

private:
    void ConstruitMenus();
    void LitCouleurFond();
    void BarresDefilement();
    void ScriptInvite();
    QTreeWidget* arbre;
    BandeauTitre* bandeau;
    VoletApercu* volet;
    QScrollBar* barreX;
    QScrollBar* barreY;
    QLabel* textes[3]; // the hover texts: two for a palette, one for a block
    QLabel* loupe;
    bool fermetureAcceptee = false;
};

// The window in use, or null.
extern FenetrePrincipaleQt* FenetrePrincipale;
