#include "viewer/pageviewwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFile>
#include <QShortcut>
#include <QStatusBar>
#include <QTimer>

#include "core/pagenotifier.h"
#include "core/prompter.h"
#include "core/viewsettings.h"
#include "dialogs/pagepropertiesdialog.h"
#include "filing/imagefile.h"
#include "mail/sendemaildialog.h"
#include "resources/buttonicons.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "text/searchablepdfcommand.h"
#include "viewer/pagecanvas.h"
#include "viewer/windowplacement.h"
#include "viewer/zoomrules.h"
#include "ui_pageviewwindow.h"

namespace qmr {

namespace {

// The hourglass for the length of a scope.
struct BusyPointer
{
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
};

CommandContext withParent(CommandContext context, QWidget* parent)
{
    context.parent = parent;
    return context;
}

} // namespace

PageViewWindow::PageViewWindow(const CommandContext& context, QWidget* parent)
    : QMainWindow(parent), m_context(withParent(context, this)),
      m_ui(std::make_unique<Ui::PageViewWindow>()), m_resolver(m_context)
{
    m_ui->setupUi(this);
    ButtonIcons::apply(this);
    setAttribute(Qt::WA_DeleteOnClose);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->lblSaveTo->hide();
    m_ui->txtFilename->hide();
    m_ui->cmdPrev->setEnabled(false);
    m_ui->cmdNext->setEnabled(false);
    m_ui->cmdPrint->setEnabled(false);
    m_ui->lblMatch->hide();
    m_ui->cmdPrevMatch->hide();
    m_ui->cmdNextMatch->hide();
    // The status line is there from the start, so that its first message moves nothing.
    statusBar();

    const auto on = [this](QPushButton* button, void (PageViewWindow::*command)()) {
        connect(button, &QPushButton::clicked, this, command);
    };
    on(m_ui->cmdPrev, &PageViewWindow::cmdPrev);
    on(m_ui->cmdNext, &PageViewWindow::cmdNext);
    on(m_ui->cmdPrevMatch, &PageViewWindow::cmdPrevMatch);
    on(m_ui->cmdNextMatch, &PageViewWindow::cmdNextMatch);
    on(m_ui->cmdEmail, &PageViewWindow::cmdEmail);
    on(m_ui->cmdSaveAs, &PageViewWindow::cmdSaveAs);
    on(m_ui->cmdCancel, &PageViewWindow::cmdCancel);
    on(m_ui->cmdZoomIn, &PageViewWindow::cmdZoomIn);
    on(m_ui->cmdZoomOut, &PageViewWindow::cmdZoomOut);
    on(m_ui->cmdZoomFitWidth, &PageViewWindow::cmdZoomFitWidth);
    on(m_ui->cmdZoomFitHeight, &PageViewWindow::cmdZoomFitHeight);
    on(m_ui->cmdRotateClockwise, &PageViewWindow::cmdRotateClockwise);
    on(m_ui->cmdRotateCounterClockwise, &PageViewWindow::cmdRotateCounterClockwise);
    on(m_ui->cmdCrop, &PageViewWindow::cmdCrop);
    on(m_ui->cmdAutoTrim, &PageViewWindow::cmdAutoTrim);
    on(m_ui->cmdInfo, &PageViewWindow::cmdInfo);
    connect(m_ui->cmdSave, &QPushButton::clicked, this, [this] { save(); });
    connect(m_ui->cmdSearchablePdf, &QPushButton::clicked, this, [this] {
        // The saved pages are written: a new page counts once it is saved.
        if (m_mode == ViewerMode::Edit && m_location.documentId >= 0)
            SearchablePdfCommand::saveDocument(m_context, m_location.documentId);
    });
    connect(m_ui->txtFilename, &QLineEdit::returnPressed, this, [this] { save(); });
    connect(m_ui->cmdPrint, &QPushButton::clicked, this, [this] {
        if (m_printHandler)
            m_printHandler(m_location.pageId);
    });
    connect(m_ui->mnuEditCopy, &QAction::triggered, this, &PageViewWindow::mnuEditCopy);
    connect(m_ui->mnuEditPaste, &QAction::triggered, this, &PageViewWindow::mnuEditPaste);
    connect(m_ui->mnuEditUndo, &QAction::triggered, this, &PageViewWindow::mnuEditUndo);
    connect(m_ui->mnuEditRedo, &QAction::triggered, this, &PageViewWindow::mnuEditRedo);
    connect(m_ui->LEAD1, &PageCanvas::wheelZoom, this, [this](int steps, const QPoint& at) {
        double percent = m_ui->LEAD1->zoomPercent();
        for (int i = 0; i < qAbs(steps); ++i) {
            const std::optional<double> next =
                steps > 0 ? ZoomRules::zoomIn(percent) : ZoomRules::zoomOut(percent);
            if (next)
                percent = *next;
        }
        m_ui->LEAD1->setZoomPercentAt(percent, at);
        m_ui->lblZoom->setText(tr("%1 %").arg(qRound(percent)));
    });
    auto* zoomIn = new QShortcut(QKeySequence::ZoomIn, this);
    connect(zoomIn, &QShortcut::activated, this, &PageViewWindow::cmdZoomIn);
    auto* zoomOut = new QShortcut(QKeySequence::ZoomOut, this);
    connect(zoomOut, &QShortcut::activated, this, &PageViewWindow::cmdZoomOut);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
}

PageViewWindow::~PageViewWindow() = default;

PageCanvas* PageViewWindow::canvas() const
{
    return m_ui->LEAD1;
}

// ---- opening and loading ------------------------------------------------------------------

void PageViewWindow::openPage(qint32 pageId, const PageWords& words)
{
    if (!mayLeaveEdits()) {
        raise();
        activateWindow();
        return;
    }
    m_marks.setWords(words);
    m_mode = ViewerMode::Edit;
    m_key = NodeKey::of(Level::Page, pageId);
    showAndLoad();
}

bool PageViewWindow::beginAdd(const NodeKey& key)
{
    m_mode = ViewerMode::Add;
    m_key = key;
    setWindowTitle(tr("New Page"));
    bool resolved = false;
    guarded(m_context.prompter, [&] { resolved = preResolveDbId(); });
    return resolved;
}

void PageViewWindow::setAcquiredImage(const QImage& image)
{
    showImage(ImageFile::normalised(image));
}

void PageViewWindow::startNextPage()
{
    m_resolver.startNextPage();
    m_newPageSaved = false;
    // The new page has no file yet: the last page's name must not make its save a rename.
    m_currentFile.clear();
    m_ui->txtFilename->clear();
    m_imageChanged = false;
    if (m_resolver.newDocument())
        m_key = NodeKey::of(Level::Document, m_location.documentId);
}

void PageViewWindow::showAndLoad()
{
    if (!m_placed) {
        WindowPlacement::restore(this, m_context.session.settings(), objectName());
        m_placed = true;
    }
    show();
    raise();
    activateWindow();
    // The window is drawn first; the image follows as soon as the events of showing are done.
    QTimer::singleShot(0, this, [this] {
        loadImage();
        if (m_closeWhenLoaded)
            close();
    });
}

bool PageViewWindow::preResolveDbId()
{
    if (!m_resolver.resolve(m_mode, m_key, m_location))
        return false;
    m_ui->cmdPrev->setEnabled(m_location.prevPageId >= 0);
    m_ui->cmdNext->setEnabled(m_location.nextPageId >= 0);
    m_ui->cmdSearchablePdf->setEnabled(m_mode == ViewerMode::Edit);
    if (m_mode == ViewerMode::Add && m_ui->txtFilename->text().isEmpty()) {
        QString path = m_location.storagePath;
        if (!path.endsWith(QLatin1Char('/')))
            path += QLatin1Char('/');
        m_ui->txtFilename->setText(path);
    }
    const bool named = m_location.storage == 1;
    m_ui->lblSaveTo->setVisible(named);
    m_ui->txtFilename->setVisible(named);
    updateTitle();
    return true;
}

void PageViewWindow::loadImage()
{
    guarded(m_context.prompter, [this] {
        if (!preResolveDbId())
            return;
        m_ui->LEAD1->clearBand();
        m_ui->LEAD1->setEnabled(false);
        const std::optional<PageRow> row = m_context.session.pages().page(m_location.pageId);
        const QString stored = row ? row->filename : QString();
        const QString path = m_context.session.paths().pagePath(m_location.pageId, stored);
        QImage image;
        QString tooLarge;
        if (QFile::exists(path)) {
            BusyPointer busy;
            const Attempt<QImage> loaded = ImageFile::load(path);
            if (loaded)
                image = loaded.value();
            else
                tooLarge = loaded.why();
        }
        if (!image.isNull()) {
            m_currentFile = path;
            showImage(image);
        } else if (m_mode == ViewerMode::Edit) {
            // Another page's picture must never stand for this one.
            m_currentFile.clear();
            showImage(QImage());
        }
        m_imageChanged = false;
        m_ui->LEAD1->setZoomPercent(100);
        applyZoomDefault();
        m_ui->LEAD1->setEnabled(true);
        if (m_mode == ViewerMode::Edit)
            m_marks.load(m_context.session.db(), m_context.session.pages(), m_location.documentId,
                         m_location.pageId, m_currentFile, m_pendingMark);
        m_pendingMark = 0;
        showMarks();
        // A new page keeps the storage directory offered for its name.
        if (row && (m_mode == ViewerMode::Edit || !row->filename.isEmpty()))
            m_ui->txtFilename->setText(row->filename);
        if (!tooLarge.isEmpty())
            m_context.prompter.tell(tooLarge);
    });
}

void PageViewWindow::showImage(const QImage& image)
{
    m_page.setImage(image);
    imageEdited();
}

void PageViewWindow::updateTitle()
{
    if (m_location.pageId < 0)
        return;
    const QString caption =
        tr("Page # %1 (ID = %2)").arg(m_location.pageNumber).arg(m_location.pageId);
    setWindowTitle(m_page.edited() ? QLatin1Char('*') + caption : caption);
}

void PageViewWindow::showMarks()
{
    // Boxes belong to the picture as it was read: a turned or cut picture shows none.
    const bool asRead = !m_page.edited();
    m_ui->LEAD1->setMarks(asRead ? m_marks.boxes() : QList<QRect>(), m_marks.current());
    const bool active = m_marks.active();
    m_ui->lblMatch->setVisible(active);
    m_ui->cmdPrevMatch->setVisible(active);
    m_ui->cmdNextMatch->setVisible(active);
    if (!active)
        return;
    m_ui->cmdPrevMatch->setEnabled(asRead && m_marks.previous().has_value());
    m_ui->cmdNextMatch->setEnabled(asRead && m_marks.next().has_value());
    const qsizetype count = m_marks.boxes().size();
    m_ui->lblMatch->setText(count == 0
                                ? tr("No match here")
                                : tr("Match %1 of %2").arg(m_marks.current() + 1).arg(count));
}

void PageViewWindow::goToMatch(const std::optional<MatchMarks::Step>& step)
{
    if (!step)
        return;
    if (step->pageId == m_location.pageId) {
        m_marks.setCurrent(step->box);
        showMarks();
        return;
    }
    if (!mayLeaveEdits())
        return;
    m_pendingMark = step->box;
    m_key = NodeKey::of(Level::Page, step->pageId);
    loadImage();
}

void PageViewWindow::cmdPrevMatch()
{
    if (m_ui->cmdPrevMatch->isEnabled())
        goToMatch(m_marks.previous());
}

void PageViewWindow::cmdNextMatch()
{
    if (m_ui->cmdNextMatch->isEnabled())
        goToMatch(m_marks.next());
}

void PageViewWindow::cmdPrev()
{
    if (!m_ui->cmdPrev->isEnabled() || !mayLeaveEdits())
        return;
    m_key = NodeKey::of(Level::Page, m_location.prevPageId);
    loadImage();
}

void PageViewWindow::cmdNext()
{
    if (!m_ui->cmdNext->isEnabled() || !mayLeaveEdits())
        return;
    m_key = NodeKey::of(Level::Page, m_location.nextPageId);
    loadImage();
}

// ---- zoom ---------------------------------------------------------------------------------

void PageViewWindow::setZoom(double percent)
{
    m_ui->LEAD1->setZoomPercent(percent);
    m_ui->lblZoom->setText(tr("%1 %").arg(qRound(percent)));
}

void PageViewWindow::cmdZoomIn()
{
    if (const std::optional<double> percent = ZoomRules::zoomIn(m_ui->LEAD1->zoomPercent()))
        setZoom(*percent);
}

void PageViewWindow::cmdZoomOut()
{
    if (const std::optional<double> percent = ZoomRules::zoomOut(m_ui->LEAD1->zoomPercent()))
        setZoom(*percent);
}

void PageViewWindow::cmdZoomFitWidth()
{
    if (!m_ui->LEAD1->hasImage())
        return;
    setZoom(ZoomRules::fit(m_ui->LEAD1->width(), m_page.image().width()));
}

void PageViewWindow::cmdZoomFitHeight()
{
    if (!m_ui->LEAD1->hasImage())
        return;
    setZoom(ZoomRules::fit(m_ui->LEAD1->height(), m_page.image().height()));
}

void PageViewWindow::applyZoomDefault()
{
    const QString zoom = m_context.view.zoomDefault();
    if (zoom == QLatin1String("FITWIDTH"))
        cmdZoomFitWidth();
    else if (zoom == QLatin1String("FITHEIGHT"))
        cmdZoomFitHeight();
    else
        setZoom(100);
    m_ui->LEAD1->resetOffsets();
}

// ---- edits --------------------------------------------------------------------------------

void PageViewWindow::imageEdited()
{
    m_ui->LEAD1->setImage(m_page.image());
    showMarks();
    m_ui->mnuEditUndo->setEnabled(m_page.canUndo());
    m_ui->mnuEditRedo->setEnabled(m_page.canRedo());
    updateTitle();
}

void PageViewWindow::rotate(ImageEdit turn)
{
    if (m_page.apply(std::move(turn))) {
        imageEdited();
        m_imageChanged = true;
    }
}

void PageViewWindow::cmdRotateClockwise()
{
    rotate(ImageEdit::rotateClockwise());
}

void PageViewWindow::cmdRotateCounterClockwise()
{
    rotate(ImageEdit::rotateCounterClockwise());
}

void PageViewWindow::cmdCrop()
{
    PageCanvas* canvas = m_ui->LEAD1;
    if (!canvas->bandActive())
        return;
    const QRect rect = ImageEdit::cropRectFromBand(canvas->bandStart(), canvas->bandEnd());
    if (m_page.apply(ImageEdit::crop(rect)))
        imageEdited();
    // The display starts afresh from the new size, and the band is used up.
    canvas->clearBand();
    canvas->resetOffsets();
}

void PageViewWindow::cmdAutoTrim()
{
    const QRect rect = ImageEdit::autoTrimRect(m_page.image(), 64);
    if (rect.isValid() && m_page.apply(ImageEdit::crop(rect)))
        imageEdited();
}

void PageViewWindow::mnuEditCopy()
{
    if (!m_page.isNull())
        QApplication::clipboard()->setImage(m_page.image());
}

void PageViewWindow::mnuEditPaste()
{
    const QImage pasted = QApplication::clipboard()->image();
    if (pasted.isNull())
        return;
    if (m_page.apply(ImageEdit::replace(ImageFile::normalised(pasted))))
        imageEdited();
}

void PageViewWindow::mnuEditUndo()
{
    if (m_page.undo()) {
        imageEdited();
        m_ui->LEAD1->clearBand();
    }
}

void PageViewWindow::mnuEditRedo()
{
    if (m_page.redo()) {
        imageEdited();
        m_ui->LEAD1->clearBand();
    }
}

// ---- the page's other commands ------------------------------------------------------------

void PageViewWindow::cmdInfo()
{
    guarded(m_context.prompter, [this] {
        PagePropertiesDialog dialog(m_context.session.db(), this);
        dialog.populate(m_location.pageId);
        dialog.exec();
    });
}

void PageViewWindow::cmdEmail()
{
    guarded(m_context.prompter, [this] {
        const std::optional<PageRow> row = m_context.session.pages().page(m_location.pageId);
        const QString path =
            m_context.session.paths().pagePath(m_location.pageId, row ? row->filename : QString());
        SendEmailDialog::emailPages(m_context, m_location.documentId, path, this);
    });
}

void PageViewWindow::setPrintHandler(std::function<void(qint32)> handler)
{
    m_printHandler = std::move(handler);
    m_ui->cmdPrint->setEnabled(bool(m_printHandler));
}

// ---- saving and leaving -------------------------------------------------------------------

SaveTarget PageViewWindow::saveTarget() const
{
    return SaveTarget{m_mode, m_location, m_currentFile, m_ui->txtFilename->text()};
}

void PageViewWindow::takeBack(const SaveTarget& target)
{
    m_currentFile = target.currentFile;
    m_ui->txtFilename->setText(target.filename);
}

PageSaver::Result PageViewWindow::save()
{
    SaveTarget target = saveTarget();
    PageSaver::Result result = PageSaver::Result::Failed;
    const auto reresolve = [this](SaveTarget& t) {
        m_ui->txtFilename->setText(t.filename);
        preResolveDbId();
        t.location = m_location;
        t.filename = m_ui->txtFilename->text();
    };
    guarded(m_context.prompter, [&] {
        BusyPointer busy;
        result = PageSaver(m_context).save(m_page.image(), target, reresolve);
    });
    takeBack(target);
    if (result == PageSaver::Result::FocusFilename)
        m_ui->txtFilename->setFocus();
    if (result == PageSaver::Result::Saved) {
        m_page.forgetEdits();
        imageEdited();
        statusBar()->showMessage(tr("Page %1 saved.").arg(m_location.pageNumber));
        if (m_mode == ViewerMode::Add)
            m_newPageSaved = true;
        // A scan into a folder goes on in the document made for its first page.
        if (m_resolver.newDocument())
            m_key = NodeKey::of(Level::Document, m_location.documentId);
        emit pageSaved(m_location.pageId);
        if (m_context.pageNotifier)
            m_context.pageNotifier->pictureSaved(m_location.pageId);
    }
    // The save's question, progress and messages were windows of their own, and the page
    // pane was refreshed behind: the person stays on the page, so the viewer is in front.
    if (isVisible()) {
        raise();
        activateWindow();
    }
    return result;
}

void PageViewWindow::cmdSaveAs()
{
    SaveTarget target = saveTarget();
    const auto reresolve = [this](SaveTarget& t) {
        preResolveDbId();
        t.location = m_location;
    };
    guarded(m_context.prompter,
            [&] { PageSaver(m_context).saveAs(m_page.image(), target, reresolve); });
}

bool PageViewWindow::mayLeaveEdits()
{
    if (!m_page.edited())
        return true;
    const Prompter::Answer answer =
        m_context.prompter.ask(tr("Save the changes to page %1?").arg(m_location.pageNumber),
                               Prompter::Buttons::SaveDiscardCancel);
    if (answer == Prompter::Answer::No)
        return true;
    // A save that stopped or failed keeps the page and its edits.
    return answer == Prompter::Answer::Yes && save() == PageSaver::Result::Saved;
}

bool PageViewWindow::mayClose()
{
    if (m_mode != ViewerMode::Add || m_newPageSaved || m_location.pageId < 0)
        return mayLeaveEdits();
    bool removed = false;
    guarded(m_context.prompter, [&] { removed = PageSaver(m_context).cancelNewPage(m_location); });
    return removed;
}

void PageViewWindow::discardNewPage()
{
    if (m_mode == ViewerMode::Add && !m_newPageSaved && m_location.pageId >= 0)
        guarded(m_context.prompter, [this] { PageSaver(m_context).removeNewPage(m_location); });
    // Nothing is left to ask about.
    m_newPageSaved = true;
    m_page.forgetEdits();
    close();
}

QImage PageViewWindow::unsavedPicture() const
{
    const bool newPage = m_mode == ViewerMode::Add && !m_newPageSaved && m_location.pageId >= 0;
    return m_page.edited() || newPage ? m_page.image() : QImage();
}

void PageViewWindow::cmdCancel()
{
    close();
}

void PageViewWindow::closeEvent(QCloseEvent* event)
{
    if (!m_closing && !mayClose()) {
        event->ignore();
        return;
    }
    m_closing = true;
    WindowPlacement::save(this, m_context.session.settings(), objectName());
    event->accept();
}

} // namespace qmr
