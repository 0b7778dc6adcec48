#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "navigator/navmenus.h"
#include "resources/navicons.h"
#include "store/commandcontext.h"

class QPushButton;
class QSplitter;

namespace qmr {

class ClipboardCommands;
class ContainerList;
class DeleteCommand;
class DrawerTemplates;
class FindCommands;
class FoundBranch;
class HelpCommands;
class ExchangeCommands;
class ItemCommands;
class NavDragDrop;
class NavTree;
class Navigator;
class PagePane;
class PrintCommands;
class ScanCommands;
class TextCommands;
class ViewerCommands;

// frmNavTree: lays out the filing tree, the container list and the page list, and wires the
// menus to the commands that the navigator and each feature bring.
class NavWindow : public QMainWindow
{
    Q_OBJECT
public:
    // `base` holds the session and the seams of the run.
    NavWindow(const CommandContext& base, DrawerTemplates& templates, QWidget* parent = nullptr);
    ~NavWindow() override;

    // The load steps of the main window; `splashStep` receives the start-up progress texts.
    void load(const std::function<void(const QString&)>& splashStep = {});
    // Shows the window maximised on a first show, else as its placement says.
    void showAsLoaded();
    bool isFirstShow() const { return m_firstShow; }

    // Esc and File > Exit: asks, and on Yes ends the run as exitRun() does.
    void mnuFileExit();
    // Saves what must outlive the run (placement, the place in the tree), closes the store and
    // asks the program to end; File > Exit without its question.
    void exitRun();

    Navigator& navigator() { return *m_navigator; }
    ItemCommands& itemCommands() { return *m_itemCommands; }
    HelpCommands& helpCommands() { return *m_helpCommands; }
    ClipboardCommands& clipboardCommands() { return *m_clipboardCommands; }
    TextCommands& textCommands() { return *m_textCommands; }
    NavDragDrop& dragDrop() { return *m_dragDrop; }
    NavTree* tree() const { return m_tree; }
    ContainerList* list() const { return m_list; }
    PagePane* pageList() const { return m_pages; }
    const NavMenus& menus() const { return m_menus; }
    // The tree's width in twips, as the settings keep it.
    int treeWidthTwips() const;

signals:
    // Emitted once the window has saved its state at the end of a run.
    void exitRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildWidgets();
    void buildMenus();
    void restorePlacement();
    // The tree's width that shows the names in view whole, from `standard` up to a third of
    // the window.
    int fittedTreeWidth(int standard) const;
    // Until the person sets the divider, the tree keeps its names whole as the window's size
    // changes.
    void refitTree();
    void savePlacement();
    // Saves what must outlive the run and closes the store.
    void finishRun();
    // Closes the program's other windows; false when one stays open (a viewer whose edits the
    // person chose to keep), and the run then goes on.
    bool closeOtherWindows();

    CommandContext m_base;
    DrawerTemplates& m_templates;
    NavMenus m_menus;
    NavIcons m_icons;
    NavTree* m_tree = nullptr;
    ContainerList* m_list = nullptr;
    PagePane* m_pages = nullptr;
    QSplitter* m_splitter = nullptr;
    std::unique_ptr<Navigator> m_navigator;
    std::unique_ptr<ItemCommands> m_itemCommands;
    std::unique_ptr<PrintCommands> m_printCommands;
    std::unique_ptr<HelpCommands> m_helpCommands;
    std::unique_ptr<DeleteCommand> m_deleteCommand;
    std::unique_ptr<ViewerCommands> m_viewerCommands;
    std::unique_ptr<FoundBranch> m_foundBranch;
    std::unique_ptr<FindCommands> m_findCommands;
    std::unique_ptr<ExchangeCommands> m_exchangeCommands;
    std::unique_ptr<ClipboardCommands> m_clipboardCommands;
    std::unique_ptr<NavDragDrop> m_dragDrop;
    std::unique_ptr<ScanCommands> m_scanCommands;
    std::unique_ptr<TextCommands> m_textCommands;
    bool m_firstShow = false;
    bool m_finished = false;
};

} // namespace qmr
