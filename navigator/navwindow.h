#pragma once

#include "core/navigatorcallbacks.h"
#include "core/nodekey.h"
#include "navigator/navicons.h"
#include "navigator/navmenus.h"

#include <QMainWindow>
#include <functional>

class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSplitter;
class QTreeWidget;

namespace qmr {

class Choosers;
class DrawerTemplates;
class NavTree;
class Progress;
class Prompter;
class Session;
struct DialogServices;
struct ItemRow;
struct NewDocumentResult;

// frmNavTree: the main window with the filing tree, the container list and the page list.
class NavWindow : public QMainWindow, public NavigatorCallbacks
{
    Q_OBJECT
public:
    NavWindow(Session& session, Prompter& prompter, Choosers& choosers, Progress& progress,
              DrawerTemplates& templates, QWidget* parent = nullptr);
    ~NavWindow() override;

    // The load steps of the main window; `splashStep` receives the start-up progress texts.
    void load(const std::function<void(const QString&)>& splashStep = {});
    // Shows the window maximised on a first show, else as its placement says.
    void showAsLoaded();
    bool isFirstShow() const { return m_firstShow; }

    // NavigatorCallbacks
    void AddCabinetToNavTree(qint32 cabinetId, const QString& name) override;
    void AddDrawerToNavTree(qint32 cabinetId, qint32 drawerId, const QString& name) override;
    void AddFolderToNavTree(qint32 drawerId, qint32 folderId, const QString& name) override;
    void AddDocumentToNavTree(qint32 folderId, qint32 documentId, const QString& name,
                              const QDate& dateOnDocument) override;
    void UpdateCabinetName(qint32 cabinetId, const QString& name) override;
    void UpdateDrawerName(qint32 drawerId, const QString& name) override;
    void UpdateFolderName(qint32 folderId, const QString& name) override;
    void UpdateDocumentName(qint32 documentId, const QString& name,
                            const QDate& dateOnDocument) override;
    void ShowDrawersInListView(qint32 cabinetId) override;
    void RebuildCabinetNode(qint32 cabinetId, const QString& name) override;

    // Tree population and clicks.
    void loadNavTree();
    void refreshNavTree();
    void nodeClick(const QString& key);
    void tvwMainProcessNode(const QString& key);
    QString getCabinetIcon(qint32 cabinetId) const;
    void showCabinetsInListView();
    void showPagesInListView(qint32 documentId);

    // Esc and File > Exit: asks, and on Yes saves and asks the program to end.
    void mnuFileExit();

    // New and Properties commands. A new item goes below the parent that the selection
    // record, or else the control that spoke last, points at.
    void newCabinet();
    void newChild(Level parentLevel);
    void newChildOf(Level parentLevel, qint32 parentId);
    void newSibling(Level level);
    // `id` -1: the target of the command.
    void properties(Level level, qint32 id = -1);
    void pageProperties();
    // Renumbers a document's pages 1, 2, 3 ... after asking.
    void repaginateDocument();
    // Gives the selected page a number of the user's choice.
    void renumberPage();
    void drawerTemplates();
    void createSampleCabinet();
    // The id a command of that level works on: the record's, else the key of the selected
    // item of the control that spoke last (-1 when that is of another level).
    qint32 targetId(Level level) const;

    NavTree* tree() const { return m_tree; }
    QListWidget* list() const { return m_list; }
    QTreeWidget* pageList() const { return m_pages; }
    const NavMenus& menus() const { return m_menus; }
    QString contextSource() const { return m_contextSource; }
    void setContextSource(const QString& source) { m_contextSource = source; }
    // The tree's width in twips, as the settings keep it.
    int treeWidthTwips() const;

signals:
    // Emitted once the window has saved its state after a confirmed exit.
    void exitRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWidgets();
    void buildMenus();
    // Runs a command; a store failure becomes a message and the command ends.
    void guarded(const std::function<void()>& command);

    QString nodeText(Level level, const ItemRow& row) const;
    QString nodeText(Level level, const QString& name, const QDate& date) const;
    QIcon iconFor(Level level, qint32 id) const;
    // Adds the children of one node from the store; existing keys are left alone.
    void addChildNodes(Level parentLevel, qint32 parentId);
    void addItemNode(Level level, qint32 parentId, qint32 id, const QString& text);
    void updateItemName(Level level, qint32 id, const QString& text);
    void addDrawersToCabinetNode(qint32 cabinetId);
    void addFoldersToDrawerNodes(qint32 cabinetId);
    void addDocumentsToFolderNodes(qint32 drawerId);
    void onExpand(const QString& key);
    // Lists the children of a container in lvwMain (cabinets for the root).
    void showChildrenInList(Level childLevel, qint32 parentId);
    void setRecordFromKey(const NodeKey& key);
    void restoreLastNode();
    void onTreeMouseUp(Qt::MouseButton button);
    void onListMouseUp(Qt::MouseButton button);
    void onInsertKey(bool fromTree);
    NodeKey contextKey() const;
    QString listSelectedKey() const;
    // Creates a document from the fields of the new-document dialog.
    void addNewDocument(qint32 folderId, const NewDocumentResult& result);
    // After a dialog the focus goes back to the control that spoke last.
    void restoreFocus();
    DialogServices services();
    void onListActivated(QListWidgetItem* item);
    void hidePagePane();
    void savePlacement();
    // Saves what must outlive the run and closes the store.
    void finishRun();

    Session& m_session;
    Prompter& m_prompter;
    Choosers& m_choosers;
    Progress& m_progress;
    DrawerTemplates& m_templates;

    NavMenus m_menus;
    mutable NavIcons m_icons;
    NavTree* m_tree = nullptr;
    QListWidget* m_list = nullptr;
    QTreeWidget* m_pages = nullptr;
    QSplitter* m_splitter = nullptr;
    QPushButton* m_scanDoc = nullptr;
    QPushButton* m_scanPic = nullptr;
    QPushButton* m_find = nullptr;

    bool m_formLoading = false;
    bool m_firstShow = false;
    bool m_nodeBusy = false;
    bool m_finished = false;
    QString m_contextSource = QStringLiteral("T");
};

} // namespace qmr
