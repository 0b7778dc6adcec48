#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "store/commandcontext.h"
#include "viewer/matchmarks.h"
#include "viewer/pageimage.h"
#include "viewer/pageresolver.h"
#include "viewer/pagesaver.h"

namespace Ui {
class PageViewWindow;
}

namespace qmr {

class PageCanvas;

// frmPageView: one page shown, moved through, changed and saved. Mode "Edit" shows a page
// that exists; mode "Add" a page being born, whose rows are made when the window is set up
// and whose image the scan hands in. The image comes up after the window is on the screen.
class PageViewWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit PageViewWindow(const CommandContext& context, QWidget* parent = nullptr);
    ~PageViewWindow() override;

    // Mode "Edit" on a page: shows the window, then loads the image. `words`: the words on
    // the pages that found its document, boxed where they stand, with the match buttons going
    // from one to the next through the document.
    void openPage(qint32 pageId, const PageWords& words = {});
    // Mode "Add" for a folder, document or page key: makes the rows now (a document for a
    // folder, the page, the folder's notice). False after the message "Error!" for another
    // key; the window is then of no use.
    bool beginAdd(const NodeKey& key);
    // The scan's image, in place of a file.
    void setAcquiredImage(const QImage& image);
    // The next sheet of a scan: a new page in the same document at the next resolve.
    void startNextPage();
    // Shows the window and loads the page once it is on the screen.
    void showAndLoad();
    // The window closes itself after its next load.
    void setCloseWhenLoaded(bool close) { m_closeWhenLoaded = close; }

    // PreResolveDbId and LoadImage.
    bool preResolveDbId();
    void loadImage();
    // cmdSave_Click.
    PageSaver::Result save();
    // A new page that never got an image (a scan that brought none): its rows and files go
    // without a question, and the window closes.
    void discardNewPage();

    const MatchMarks& matchMarks() const { return m_marks; }

    // View Settings changed the default zoom: it applies at once.
    void applyZoomDefault();
    // What cmdPrint does; the button stands disabled until it is given.
    void setPrintHandler(std::function<void(qint32 pageId)> handler);

    ViewerMode mode() const { return m_mode; }
    const NodeKey& key() const { return m_key; }
    const PageLocation& location() const { return m_location; }
    const QString& currentFile() const { return m_currentFile; }
    const PageImage& pageImage() const { return m_page; }
    PageCanvas* canvas() const;
    // A quarter turn was made since the load.
    bool imageChanged() const { return m_imageChanged; }
    // The image has edits that are not saved.
    bool edited() const { return m_page.edited(); }
    // The picture a save would write and that is not saved: a page's edits, or a new page's
    // image; a null image when there is none.
    QImage unsavedPicture() const;
    bool newPageSaved() const { return m_newPageSaved; }

    // The commands of the buttons and the Edit menu.
    void cmdPrev();
    void cmdNext();
    void cmdPrevMatch();
    void cmdNextMatch();
    void cmdZoomIn();
    void cmdZoomOut();
    void cmdZoomFitWidth();
    void cmdZoomFitHeight();
    void cmdRotateClockwise();
    void cmdRotateCounterClockwise();
    void cmdCrop();
    void cmdAutoTrim();
    void cmdInfo();
    void cmdEmail();
    void cmdSaveAs();
    void cmdCancel();
    void mnuEditCopy();
    void mnuEditPaste();
    void mnuEditUndo();
    void mnuEditRedo();

signals:
    // A save wrote the page's image and its row.
    void pageSaved(qint32 pageId);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setZoom(double percent);
    void imageEdited();
    void rotate(ImageEdit turn);
    // "Page # N (ID = I)", marked with a star while the page has edits not saved.
    void updateTitle();
    // The marks of the page in view, the match buttons and their line.
    void showMarks();
    void goToMatch(const std::optional<MatchMarks::Step>& step);
    void showImage(const QImage& image);
    // A new page not saved yet: leaving asks, and a Yes removes its rows and files.
    bool mayClose();
    // Edits not saved: asks whether to save them first. False when the page must stay.
    bool mayLeaveEdits();
    SaveTarget saveTarget() const;
    void takeBack(const SaveTarget& target);

    CommandContext m_context;
    std::unique_ptr<Ui::PageViewWindow> m_ui;
    PageResolver m_resolver;
    PageImage m_page;
    ViewerMode m_mode = ViewerMode::Edit;
    NodeKey m_key;
    PageLocation m_location;
    QString m_currentFile;
    MatchMarks m_marks;
    int m_pendingMark = 0; // the box to mark on the page loaded next (-1: its last)
    std::function<void(qint32)> m_printHandler;
    bool m_closeWhenLoaded = false;
    bool m_imageChanged = false;
    bool m_newPageSaved = false;
    bool m_closing = false;
    bool m_placed = false;
};

} // namespace qmr
