// The map editor's window in Qt.
//
// The Qt reading of the editor's own loop is the dialog's exec(), a nested
// event loop; its accelerator table is a set of shortcuts on the dialog.
#include "shell/qt/editeur_carte.h"

#include "core/reglages.h"
#include "editor/composition.h"
#include "editor/edition.h"
#include "editor/editeur.h"
#include "editor/entree.h"
#include "editor/etat.h"
#include "editor/plans.h"
#include "platform/qt/fenetre_qt.h"
#include "render/surfaces.h"
#include "tools/operations.h"

#include <functional>

#include <QCheckBox>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>
#include <QWheelEvent>

namespace {

BoutonSouris Bouton(Qt::MouseButton b) {
    return b == Qt::RightButton ? BOUTON_DROIT : b == Qt::MiddleButton ? BOUTON_MILIEU : BOUTON_GAUCHE;
}

} // namespace

// The view and the picker: they show their picture and hand their mouse
// events to the state machine in the dialog's client pixels.
class VueEditeurQt : public QWidget {
public:
    VueEditeurQt(EditeurCarteQt* e, bool selecteur) : QWidget(e), editeur(e), estSelecteur(selecteur) {
        setMouseTracking(true);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.drawImage(0, 0, estSelecteur ? editeur->imageSelecteur : editeur->imageVue);
    }
    QPoint Client(const QPointF& local) const { return mapTo(editeur, local.toPoint()); }
    void mouseMoveEvent(QMouseEvent* e) override {
        const QPoint c = Client(e->position());
        SourisBouge(c.x(), c.y());
    }
    void mousePressEvent(QMouseEvent* e) override {
        const QPoint c = Client(e->position());
        SourisPresse(Bouton(e->button()), c.x(), c.y());
    }
    void mouseDoubleClickEvent(QMouseEvent* e) override {
        const QPoint c = Client(e->position());
        SourisPresse(Bouton(e->button()), c.x(), c.y(), true);
    }
    void mouseReleaseEvent(QMouseEvent* e) override {
        const QPoint c = Client(e->position());
        SourisRelache(Bouton(e->button()), c.x(), c.y());
        editeur->MajControles();
    }
    void wheelEvent(QWheelEvent* e) override {
        Molette(e->angleDelta().y());
        editeur->Dispose();
        editeur->MajControles();
    }

private:
    EditeurCarteQt* editeur;
    bool estSelecteur;
};

// The splitter between the view and the picker: pressed, it hands the
// pointer's moves to the tick, which resizes the picker's pane.
class PartageQt : public QWidget {
public:
    explicit PartageQt(QWidget* parent) : QWidget(parent) { setCursor(Qt::SplitHCursor); }

protected:
    void mousePressEvent(QMouseEvent* e) override { SaisitPartage(mapTo(parentWidget(), e->position().toPoint()).x()); }
    void mouseMoveEvent(QMouseEvent* e) override {
        const QPoint c = mapTo(parentWidget(), e->position().toPoint());
        SourisBouge(c.x(), c.y());
    }
    void mouseReleaseEvent(QMouseEvent* e) override {
        const QPoint c = mapTo(parentWidget(), e->position().toPoint());
        SourisRelache(BOUTON_GAUCHE, c.x(), c.y());
    }
};

EditeurCarteQt::EditeurCarteQt(QWidget* parent) : QDialog(parent) {
    setMinimumSize(256, 256);
    vue = new VueEditeurQt(this, false);
    selecteur = new VueEditeurQt(this, true);
    partage = new PartageQt(this);
    barreX = new QScrollBar(Qt::Horizontal, this);
    barreY = new QScrollBar(Qt::Vertical, this);
    annuler = new QPushButton("Cancel", this);
    retablir = new QPushButton("Redo", this);
    menu = new QPushButton("Menu", this);
    coller = new QPushButton("Paste", this);
    memoire = new QLabel(QString::fromLatin1(TexteMemoire), this);
    valeurHexa = new QLineEdit(this);
    valeurHexa->setVisible(ReglagesHexa.actif != 0);
    connect(annuler, &QPushButton::clicked, this, [this] {
        CommandeClavier(ED_ANNULER);
        MajControles();
    });
    connect(retablir, &QPushButton::clicked, this, [this] {
        CommandeClavier(ED_RETABLIR);
        MajControles();
    });
    connect(menu, &QPushButton::clicked, this, [this] {
        QMenu* m = ConstruitMenu();
        m->exec(this->menu->mapToGlobal(QPoint(0, this->menu->height())));
        delete m;
    });
    connect(coller, &QPushButton::clicked, this, [this] {
        CommandeClavier(ED_COLLER);
        MajControles();
    });
    connect(valeurHexa, &QLineEdit::textEdited, this,
            [](const QString& t) { TapeValeurHexa(t.left(100).toLatin1().constData()); });
    auto Barre = [this](QScrollBar* b, bool horizontal) {
        connect(b, &QScrollBar::actionTriggered, this, [b, horizontal](int action) {
            int requete = 6;
            switch (action) {
            case QAbstractSlider::SliderSingleStepSub: requete = 0; break;
            case QAbstractSlider::SliderSingleStepAdd: requete = 1; break;
            case QAbstractSlider::SliderPageStepSub: requete = 2; break;
            case QAbstractSlider::SliderPageStepAdd: requete = 3; break;
            case QAbstractSlider::SliderToMinimum: requete = 4; break;
            case QAbstractSlider::SliderToMaximum: requete = 5; break;
            default: break;
            }
            DefileVue(horizontal, requete, b->sliderPosition());
            b->setSliderPosition(horizontal ? DecalageX : DecalageY);
        });
    };
    Barre(barreX, true);
    Barre(barreY, false);
    // The editor's keys.
    const struct {
        const char* touche;
        int commande;
    } touches[] = {
        {"Ctrl+S", ED_SAUVER},    {"Ctrl+Z", ED_ANNULER},       {"Ctrl+Y", ED_RETABLIR},  {"Ctrl+H", ED_HEXA},
        {"Ctrl+1", ED_PLAN_1},    {"Ctrl+2", ED_PLAN_1 + 1},    {"Ctrl+3", ED_PLAN_1 + 2}, {"Ctrl+4", ED_PLAN_1 + 3},
        {"Ctrl+5", ED_PLAN_1 + 4}, {"Ctrl+6", ED_PLAN_6},       {"Ctrl+7", ED_PLAN_6 + 1}, {"Ctrl+8", ED_PLAN_6 + 2},
        {"Ctrl+9", ED_PLAN_6 + 3}, {"Ctrl+0", ED_PLAN_10},      {"Left", ED_GAUCHE},       {"Right", ED_DROITE},
        {"Up", ED_HAUT},          {"Down", ED_BAS},             {"Ctrl+V", ED_COLLER},     {"Ctrl+C", ED_COPIER},
        {"Del", ED_SUPPRIMER},    {"+", ED_GRILLE_PLUS},        {"-", ED_GRILLE_MOINS},    {"Ctrl+X", ED_COUPER},
    };
    for (const auto& t : touches) {
        auto* s = new QShortcut(QKeySequence(t.touche), this);
        const int c = t.commande;
        connect(s, &QShortcut::activated, this, [this, c] {
            CommandeClavier(c);
            if (c == ED_HEXA) valeurHexa->setVisible(ReglagesHexa.actif != 0);
            Dispose();
            MajControles();
        });
    }
    minuterie = new QTimer(this);
    connect(minuterie, &QTimer::timeout, this, &EditeurCarteQt::Tick);
    // Where the state script placed the window last time.
    const PlaceEditeur& place = PositionEditeur;
    resize(std::max(place.largeur, 256), std::max(place.hauteur, 256));
    if (place.x || place.y) move(place.x, place.y);
    if (place.maximisee) setWindowState(Qt::WindowMaximized);
    DispositionEditeur = Disposition{};
    DisposeEditeur(640, 400);
    Dispose();
    minuterie->start(ReglagesEdit.timing > 0 ? ReglagesEdit.timing : 10);
}

void EditeurCarteQt::Dispose() {
    DisposeEditeur(width(), height());
    const Disposition& d = DispositionEditeur;
    vue->setGeometry(10, 10, Vue.largeurVue, Vue.hauteurVue);
    barreY->setGeometry(Vue.largeurVue + 10, 10, 16, Vue.hauteurVue);
    barreX->setGeometry(10, Vue.hauteurVue + 10, Vue.largeurVue, 16);
    partage->setGeometry(Vue.largeurVue + 35, 10, 5, Vue.hauteurVue);
    selecteur->setGeometry(Vue.largeurVue + 54, 10, d.largeurSelecteurEcran, Vue.hauteurVue);
    valeurHexa->setGeometry(d.deltaL + 340, 10, 120, 22);
    annuler->setGeometry(10, d.deltaH + 290, 60, 20);
    retablir->setGeometry(80, d.deltaH + 290, 60, 20);
    menu->setGeometry(d.deltaL + 325, d.deltaH + 290, 60, 20);
    coller->setGeometry(d.deltaL + 395, d.deltaH + 290, 60, 20);
    memoire->setGeometry(d.deltaL / 2 + 210, d.deltaH + 292, 100, 20);
    // The bars exist when there is something to scroll.
    const Plan* p = PlanActif >= 0 && PlanActif < NbPlans ? &Plans[PlanActif] : nullptr;
    const int largeur = p ? p->sizex * p->tilex : 0, hauteur = p ? p->sizey * p->tiley : 0;
    barreX->setVisible(Vue.largeurVueZ < largeur);
    barreY->setVisible(Vue.hauteurVueZ < hauteur);
    barreX->setRange(0, std::max(0, largeur - Vue.largeurVueZ));
    barreY->setRange(0, std::max(0, hauteur - Vue.hauteurVueZ));
    barreX->setPageStep(Vue.largeurVueZ);
    barreY->setPageStep(Vue.hauteurVueZ);
}

void EditeurCarteQt::MajControles() {
    annuler->setEnabled(AnnulerActif);
    retablir->setEnabled(RetablirActif);
    coller->setEnabled(Motif.largeurMotif > 1 || Motif.hauteurMotif > 1);
    memoire->setText(QString::fromLatin1(TexteMemoire));
    setWindowTitle(QString::fromLatin1(TitreEditeur));
    // The value box: off while a block of more than one cell is held; it
    // shows the pattern whenever it is not being typed in.
    valeurHexa->setEnabled(Motif.largeurMotif <= 1 && Motif.hauteurMotif <= 1);
    if (!valeurHexa->hasFocus()) {
        char texte[16];
        TexteValeurHexa(texte, sizeof texte);
        valeurHexa->setText(QString::fromLatin1(texte));
    }
    barreX->setSliderPosition(DecalageX);
    barreY->setSliderPosition(DecalageY);
}

void EditeurCarteQt::Tick() {
    TickEditeur();
    // Shown during the tick itself: the next tick draws over the surface.
    imageVue = ImageDeSurface(SurfaceEditeur, 0, 0, Vue.largeurVueZ, Vue.hauteurVueZ, Vue.largeurVue, Vue.hauteurVue,
                              ReglagesEdit.zoomPrecis && ReglagesEdit.zoom != 1.0);
    if (!ReglagesHexa.actif) {
        imageSelecteur = ImageDeSurface(SurfaceSelecteur, 0, 0, SurfaceSelecteur.largeur, SurfaceSelecteur.hauteur,
                                        DispositionEditeur.largeurSelecteurEcran, Vue.hauteurVue);
    } else if (!imageSelecteur.isNull()) {
        // Hex mode has no picker: its place takes the background colour.
        imageSelecteur.fill(QColor(CouleurFond & 255, CouleurFond >> 8 & 255, CouleurFond >> 16 & 255));
    }
    vue->repaint();
    selecteur->repaint();
    MajControles();
}

void EditeurCarteQt::resizeEvent(QResizeEvent* e) {
    QDialog::resizeEvent(e);
    Dispose();
    Retient();
}

void EditeurCarteQt::moveEvent(QMoveEvent* e) {
    QDialog::moveEvent(e);
    Retient();
}

// The window's place, for the state script's Editor.Move line.
void EditeurCarteQt::Retient() {
    PositionEditeur.maximisee = isMaximized();
    if (PositionEditeur.maximisee) return;
    PositionEditeur.largeur = width();
    PositionEditeur.hauteur = height();
    PositionEditeur.x = x();
    PositionEditeur.y = y();
}

void EditeurCarteQt::closeEvent(QCloseEvent* e) {
    if (FermeEditeur()) {
        minuterie->stop();
        e->accept();
    } else {
        e->ignore();
    }
}

void EditeurCarteQt::reject() { close(); }

void EditeurCarteQt::mousePressEvent(QMouseEvent* e) {
    if (e->button() != Qt::RightButton) return;
    QMenu* m = ConstruitMenu();
    m->exec(e->globalPosition().toPoint());
    delete m;
}

QMenu* EditeurCarteQt::ConstruitMenu() {
    auto* m = new QMenu(this);
    // Every choice first clears the objects' selection.
    auto Item = [this](QMenu* menu, const QString& texte, std::function<void()> f, bool coche = false,
                       bool cochable = false, bool actif = true) {
        QAction* a = menu->addAction(texte);
        a->setCheckable(cochable);
        a->setChecked(coche);
        a->setEnabled(actif);
        connect(a, &QAction::triggered, this, [this, f] {
            ObjetCourant = -1;
            NbSelectionObjets = 0;
            if (f) f();
            Dispose();
            MajControles();
        });
        return a;
    };
    QMenu* fonds = m->addMenu("Backgrounds...");
    QMenu* actifs = fonds->addMenu("Active...");
    QMenu* proprietes = fonds->addMenu("Properties...");
    for (int n = 0; n < NbPlans; ++n) {
        const QString nom = QString::fromLatin1(PlanElement[n] ? PlanElement[n]->nom : Plans[n].name);
        Item(actifs, nom, [n] { ActivePlan(n); }, n == PlanActif, true);
        Item(proprietes, nom, nullptr); // the plane's properties come with their dialog
    }
    Item(fonds, "Add a background...	   Ctrl+M", nullptr);
    Item(fonds, "Link...", nullptr);
    Item(fonds, "One palette for each BG", [] { ReglagesPlans.proprePalette = !ReglagesPlans.proprePalette; },
         ReglagesPlans.proprePalette != 0, true);
    Item(fonds, "Transparents BG", [] { ReglagesPlans.transparence = !ReglagesPlans.transparence; },
         ReglagesPlans.transparence != 0, true);
    QMenu* outils = m->addMenu("Tools...");
    auto Hexa = [this] {
        BasculeModeHexa();
        valeurHexa->setVisible(ReglagesHexa.actif != 0);
    };
    if (!ReglagesHexa.actif) {
        Item(outils, "HEX Mode	   Ctrl+H", Hexa);
    } else {
        QMenu* hexa = outils->addMenu("HEX mode");
        hexa->menuAction()->setCheckable(true);
        hexa->menuAction()->setChecked(true);
        Item(hexa, "Cancel	   Ctrl+H", Hexa);
        Item(hexa, "Append zeros", [] { ReglagesHexa.combleZeros = !ReglagesHexa.combleZeros; },
             ReglagesHexa.combleZeros != 0, true);
        Item(hexa, "Gfx map as background", [] { ReglagesHexa.fondActif = !ReglagesHexa.fondActif; },
             ReglagesHexa.fondActif != 0, true);
    }
    Item(outils, "Bits display", nullptr, false, true);
    Item(outils, "Specimen map", nullptr, false, true, false); // no specimen window yet
    Item(m, "Options...", nullptr);
    Item(m, "Operations on selection", [this] { DialogueOperations(); }, false, false, MotifTenu());
    Item(m, "Moving...", [this] { DialogueBlocs(); });
    return m;
}

void EditeurCarteQt::DialogueOperations() {
    QDialog d(this);
    d.setWindowTitle("Operations on selection");
    auto* operation = new QLineEdit(&d);
    auto* condition = new QLineEdit(&d);
    operation->setMaxLength(999);
    condition->setMaxLength(999);
    auto* seul = new QCheckBox("Only on the active plane", &d);
    auto* boutons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &d);
    auto* f = new QFormLayout(&d);
    f->addRow("Operation (op nbr):", operation);
    f->addRow("Condition (op nbr):", condition);
    f->addRow(seul);
    f->addRow(boutons);
    // The dialog stays open after a message, with what was typed.
    connect(boutons, &QDialogButtonBox::accepted, &d, [&] {
        if (ExecuteOperations(operation->text().toLatin1().constData(), condition->text().toLatin1().constData(),
                              seul->isChecked()))
            d.accept();
    });
    connect(boutons, &QDialogButtonBox::rejected, &d, &QDialog::reject);
    d.exec();
}

void EditeurCarteQt::DialogueBlocs() {
    QDialog d(this);
    d.setWindowTitle("Blocks copy");
    QLineEdit* champs[6];
    for (QLineEdit*& c : champs) c = new QLineEdit(&d);
    auto* seul = new QCheckBox("Only on the active plane", &d);
    auto* boutons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &d);
    auto* f = new QFormLayout(&d);
    f->addRow(new QLabel("To use this function efficiently, please refer to the documentation.", &d));
    auto Paire = [&](const char* texte, QLineEdit* a, QLineEdit* b) {
        auto* l = new QHBoxLayout();
        l->addWidget(a);
        l->addWidget(b);
        f->addRow(texte, l);
    };
    Paire("Source (x,y)", champs[0], champs[1]);
    Paire("Size (l,h)", champs[2], champs[3]);
    Paire("Destination (x,y)", champs[4], champs[5]);
    f->addRow(seul);
    f->addRow(boutons);
    connect(boutons, &QDialogButtonBox::accepted, &d, [&] {
        QByteArray t[6];
        for (int i = 0; i < 6; ++i) t[i] = champs[i]->text().toLatin1();
        if (ExecuteCopieBlocs(t[0].constData(), t[1].constData(), t[2].constData(), t[3].constData(),
                              t[4].constData(), t[5].constData(), seul->isChecked()))
            d.accept();
    });
    connect(boutons, &QDialogButtonBox::rejected, &d, &QDialog::reject);
    d.exec();
}

void EditeElement(QWidget* parent, int element) {
    if (EditeurOuvert || !CreeSurfacesEditeur() || !OuvreEditeur(element)) return;
    EditeurCarteQt editeur(parent);
    editeur.exec();
    if (EditeurOuvert) FermeEditeur();
}
