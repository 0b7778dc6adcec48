#pragma once

#include <QDialog>
#include <QVector>
#include <memory>

class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Ui {
class TemplateEditor;
}

namespace qmr {

class DrawerTemplates;
class Prompter;

// frmCustomDrawer: edits Drawer.txt as a tree of drawers, folders and documents.
class TemplateEditor : public QDialog
{
    Q_OBJECT
public:
    TemplateEditor(DrawerTemplates& templates, Prompter& prompter, QWidget* parent = nullptr);
    ~TemplateEditor() override;

    QTreeWidget* tree() const { return m_tree; }
    // Adds a child of the selected node and starts editing its label.
    void cmdAddChild();
    // Removes the selected node with everything below it.
    void cmdRemoveSibling();
    // Writes the file in the order the nodes were made, reloads the template list, closes.
    void cmdOK();

private:
    QTreeWidgetItem* addNode(QTreeWidgetItem* parent, const QString& key, const QString& text);
    void load();
    void updateButtons();
    void forget(QTreeWidgetItem* item);

    DrawerTemplates& m_templates;
    Prompter& m_prompter;
    std::unique_ptr<Ui::TemplateEditor> m_ui;
    QTreeWidget* m_tree;
    QTreeWidgetItem* m_root = nullptr;
    QPushButton* m_addChild;
    QPushButton* m_addSibling;
    QPushButton* m_removeSibling;
    QVector<QTreeWidgetItem*> m_created; // every node but the root, in order of making
    int m_counters[3] = {0, 0, 0};
};

} // namespace qmr
