#include "exchange/exchangebatch.h"

#include <QCoreApplication>
#include <QDir>

#include "exchange/cabinetexporter.h"
#include "exchange/cabinetimporter.h"
#include "exchange/consoleprogress.h"
#include "exchange/diskfilesystem.h"
#include "exchange/exchangequestions.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// Nobody is there to answer: go on where that is harmless, stop where another disk is wanted.
class FixedAnswers : public ExchangeQuestions
{
public:
    bool exportEmptyCabinet() override { return true; }
    bool importStructureOnly() override { return true; }
    bool insertExportDisk(int) override { return false; }
    bool insertImportDisk(int) override { return false; }
};

QString stoppedMessage(const QString& command)
{
    return QCoreApplication::translate(
               "qmr::ExchangeBatch",
               "The %1 was stopped before its end, as the program was asked to quit; "
               "what it had done by then is kept.")
        .arg(command);
}

QString absolute(const QString& path)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(path.trimmed()));
}

} // namespace

ExchangeBatch::ExchangeBatch(Session& session, QTextStream& out, QTextStream& err, bool terminal,
                             ExchangeFileSystem* fs)
    : m_session(session), m_out(out), m_err(err), m_terminal(terminal), m_fs(fs)
{
    if (!m_fs) {
        m_ownFs = std::make_unique<DiskFileSystem>();
        m_fs = m_ownFs.get();
    }
}

ExchangeBatch::~ExchangeBatch() = default;

int ExchangeBatch::fail(const QString& message)
{
    m_err << "quillmere: " << message << '\n' << Qt::flush;
    return 1;
}

qint32 ExchangeBatch::findCabinet(const QString& name, const QString& verb)
{
    const qint32 id = m_session.items().childNamed(Level::Cabinet, -1, name);
    if (id < 0) {
        fail(tr("There is no file cabinet named '%1'.").arg(name));
        return -1;
    }
    if (!m_session.locks().isCabinetOpen(id)) {
        fail(tr("The file cabinet '%1' has a password; it can be %2 only in the "
                "program's window.")
                 .arg(name, verb));
        return -1;
    }
    return id;
}

int ExchangeBatch::finish(const QStringList& problems, const QString& error)
{
    for (const QString& problem : problems)
        m_err << "quillmere: " << problem << '\n';
    if (!error.isEmpty() && !problems.contains(error))
        m_err << "quillmere: " << error << '\n';
    m_err << Qt::flush;
    return problems.isEmpty() && error.isEmpty() ? 0 : 1;
}

int ExchangeBatch::exportCabinet(const QString& cabinetName, const QString& dir)
{
    try {
        if (dir.trimmed().isEmpty())
            return fail(tr("No output path was given."));
        const QString path = absolute(dir);
        const QString home = m_session.home().path();
        if (CabinetExporter::isWithinHome(path, home))
            return fail(CabinetExporter::withinHomeMessage(home));
        const qint32 cabinetId = findCabinet(cabinetName, tr("exported"));
        if (cabinetId < 0)
            return 1;
        FixedAnswers answers;
        CabinetExporter exporter(m_session, *m_fs, answers);
        ExportReport report;
        {
            ConsoleProgress progress(m_err, m_terminal, m_stopWhen);
            report = exporter.exportCabinet(cabinetId, path, progress);
        }
        m_out << report.reportText() << '\n' << Qt::flush;
        QStringList failures = report.failures();
        if (report.stopped)
            failures << stoppedMessage(tr("export"));
        if (report.diskRefused)
            failures << tr("The output path is full. Another disk can be "
                           "given only in the program's window.");
        return finish(failures, QString());
    } catch (const StoreError& e) {
        return fail(e.message());
    }
}

int ExchangeBatch::importCabinet(const QString& dir, const QString& cabinetName)
{
    try {
        const QString path = absolute(dir);
        if (dir.trimmed().isEmpty() || !m_fs->isDirectory(path))
            return fail(CabinetImporter::missingPathMessage(dir.trimmed().isEmpty() ? dir : path));
        if (!ExchangeReader(*m_fs).hasMarker(path))
            return fail(CabinetImporter::missingMarkerMessage());
        const qint32 cabinetId = findCabinet(cabinetName, tr("imported into"));
        if (cabinetId < 0)
            return 1;
        FixedAnswers answers;
        CabinetImporter importer(m_session, *m_fs, answers);
        ImportReport report;
        {
            ConsoleProgress progress(m_err, m_terminal, m_stopWhen);
            report = importer.importCabinet(cabinetId, path, 1, progress);
        }
        m_out << report.reportText() << '\n' << Qt::flush;
        if (report.stopped)
            report.problems << stoppedMessage(tr("import"));
        // What the walk passed over on purpose (a link) is named as a failure: the tree did
        // not come across whole.
        return finish(report.skipped + report.problems, report.error);
    } catch (const StoreError& e) {
        return fail(e.message());
    }
}

} // namespace qmr
