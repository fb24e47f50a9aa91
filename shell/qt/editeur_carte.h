// The map editor's window in Qt: the view and the tile picker showing the
// editor's surfaces, the scroll bars, the splitter, the buttons and the
// value box of hex mode, its keys and its timer. Every event goes to the
// headless state machine (editor/entree.h); each tick shows the frame the
// model composed.
#pragma once
#include <QDialog>
#include <QImage>

class QLabel;
class QMenu;
class QLineEdit;
class QPushButton;
class QScrollBar;
class QTimer;

class EditeurCarteQt : public QDialog {
    Q_OBJECT
public:
    explicit EditeurCarteQt(QWidget* parent);
    // One tick: the model's frame composed, then shown at once.
    void Tick();
    // Lays the controls out for the client size, the zoom and the splitter.
    void Dispose();
    QWidget* VueWidget() const { return vue; }
    // The popup menu MenuEditeur, made for the document as it stands.
    QMenu* ConstruitMenu();
    // "Operations on selection" and "Blocks copy".
    void DialogueOperations();
    void DialogueBlocs();
    const QImage& ImageVue() const { return imageVue; }

protected:
    void resizeEvent(QResizeEvent* e) override;
    void moveEvent(QMoveEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    void reject() override; // Esc closes as the close box does
    void mousePressEvent(QMouseEvent* e) override; // a right click beside the view: the menu

private:
    friend class VueEditeurQt;
    void MajControles();
    void Retient();
    QWidget* vue;
    QWidget* selecteur;
    QWidget* partage;
    QScrollBar* barreX;
    QScrollBar* barreY;
    QPushButton* annuler;
    QPushButton* retablir;
    QPushButton* menu;
    QPushButton* coller;
    QLabel* memoire;
    QLineEdit* valeurHexa;
    QTimer* minuterie;
    QImage imageVue, imageSelecteur;
};

// Opens the editor on an element row, as "Edit" and a double click on a map
// do; returns when it closes.
void EditeElement(QWidget* parent, int element);
