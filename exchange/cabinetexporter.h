#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>

#include "exchange/exchangefilesystem.h"
#include "exchange/exportreport.h"
#include "exchange/exchangewriter.h"

namespace qmr {

class ExchangeQuestions;
class Progress;
class Session;

// Writes one cabinet to an exchange directory, one file at a time. The progress's stop flag
// is heard at the head of every loop; a stop keeps what has been written. When the target
// fills up, the exporter asks once for another disk and copies the same page again there;
// later failures are passed over, since the disk's number is recorded nowhere and the walk
// cannot be resumed in any other way.
class CabinetExporter
{
    Q_DECLARE_TR_FUNCTIONS(qmr::CabinetExporter)

public:
    // `now` is the clock of the marker file.
    CabinetExporter(
        Session& session, ExchangeFileSystem& fs, ExchangeQuestions& questions,
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); });

    // Shows an action and a path in the status line, giving a waiting Cancel its turn.
    void setStatusLine(std::function<void(const QString&, const QString&)> show)
    {
        m_showStatus = std::move(show);
    }

    ExportReport exportCabinet(qint32 cabinetId, const QString& path, Progress& progress);

    // A target whose upper-cased form holds the application home's anywhere is refused, so
    // that an export never writes into the files the program owns.
    static bool isWithinHome(const QString& path, const QString& home);
    static QString withinHomeMessage(const QString& home);

private:
    enum class Next { Go, Halt };

    void walkCabinet(qint32 cabinetId, const QString& root);
    void walkDocument(const ItemManifest& document, const QString& directory);
    void makeDirectory(const QString& directory);
    Next writeManifest(const QString& path, const std::function<FileOutcome()>& write);
    // Runs one write with the handling of a full disk; Halt ends the walk.
    Next run(const std::function<FileOutcome()>& write);
    bool halted() const;
    void status(const QString& action, const QString& text);

    Session& m_session;
    ExchangeFileSystem& m_fs;
    ExchangeQuestions& m_questions;
    ExchangeWriter m_writer;
    std::function<void(const QString&, const QString&)> m_showStatus;
    std::function<QDateTime()> m_now;

    // The state of one run.
    Progress* m_progress = nullptr;
    ExportReport m_report;
    int m_disk = 1;
    bool m_trapping = true; // false once the disk question has been asked
    bool m_halt = false;
    // For each directory written, the names given in it, lower-cased.
    QHash<QString, QSet<QString>> m_written;
};

} // namespace qmr
