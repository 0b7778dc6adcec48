#pragma once

#include <QCoreApplication>
#include <QString>
#include <QTextStream>
#include <functional>
#include <memory>

namespace qmr {

class ExchangeFileSystem;
class Session;

// Export and import without a window, for backups and scripts: the walks of the dialogs, a
// progress line, the same report. Nothing is ever asked: where a dialog would ask and going
// on is harmless (an empty cabinet, a directory to be made) it goes on; where it would ask
// for another disk it stops. Each returns the exit status: 0 when everything came across,
// 1 with the reasons on the error stream otherwise.
class ExchangeBatch
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ExchangeBatch)

public:
    // `err` takes the progress line and the failures, `out` the report. `fs` stands in for
    // the real file system in tests.
    ExchangeBatch(Session& session, QTextStream& out, QTextStream& err, bool terminal,
                  ExchangeFileSystem* fs = nullptr);
    ~ExchangeBatch();

    // Asked at the head of every loop of the walk; true stops it as Cancel would in the
    // window, keeping what has been written, and the run ends with status 1.
    void setStopTest(std::function<bool()> stopWhen) { m_stopWhen = std::move(stopWhen); }

    int exportCabinet(const QString& cabinetName, const QString& dir);
    int importCabinet(const QString& dir, const QString& cabinetName);

private:
    // The open cabinet of that name, or -1 after saying why there is none.
    qint32 findCabinet(const QString& name, const QString& verb);
    int fail(const QString& message);
    int finish(const QStringList& problems, const QString& error);

    Session& m_session;
    QTextStream& m_out;
    QTextStream& m_err;
    bool m_terminal;
    std::function<bool()> m_stopWhen;
    ExchangeFileSystem* m_fs;
    std::unique_ptr<ExchangeFileSystem> m_ownFs;
};

} // namespace qmr
