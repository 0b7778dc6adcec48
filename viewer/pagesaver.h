#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QString>
#include <functional>

#include "store/commandcontext.h"
#include "viewer/pageresolver.h"

namespace qmr {

class Settings;

// What a save reads of the viewer and gives back to it.
struct SaveTarget
{
    ViewerMode mode = ViewerMode::Edit;
    PageLocation location;
    QString currentFile; // the file the image came from; the saved file afterwards
    QString filename;    // txtFilename
};

// The viewer's Save, Save As and Cancel: the checks and questions in their order, then the
// writing. The image goes to a temporary file beside its target and is renamed over it; only
// then are Filename and FileSize written, so that a failed write (reported with the path)
// leaves the row and the old file as they were. The thumbnail is made from a reduced copy.
class PageSaver
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PageSaver)

public:
    enum class Result { Saved, Stopped, FocusFilename, Failed };

    explicit PageSaver(const CommandContext& context) : m_context(context) {}

    // The context is held by reference: a temporary one would be gone before its use.

    PageSaver(CommandContext&& context) = delete;

    // cmdSave_Click. `reresolve` runs PreResolveDbId again (mode "Add") and updates `target`.
    Result save(const QImage& image, SaveTarget& target,
                const std::function<void(SaveTarget&)>& reresolve);
    // cmdSaveAs: a copy outside the program's home. True when written.
    bool saveAs(const QImage& image, SaveTarget& target,
                const std::function<void(SaveTarget&)>& reresolve);
    // cmdCancel of a new page: asks, then removes its row and files. True when removed.
    bool cancelNewPage(const PageLocation& location);
    // Removes a new page's row and files without asking.
    void removeNewPage(const PageLocation& location);

    // The quality factor of a save: the picture's or the document's by the last scan's kind;
    // a re-saved page (`resave`: mode "Edit") always takes the picture's.
    static int qualityFactor(const Settings& settings, bool resave);
    // Whether `path` lies in `home` or below it.
    static bool isWithin(const QString& path, const QString& home);

private:
    Result savePage(const QImage& image, SaveTarget& target, bool autoAssign,
                    const std::function<void(SaveTarget&)>& reresolve);

    const CommandContext& m_context;
};

} // namespace qmr
