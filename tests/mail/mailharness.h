#pragma once

#include <QFile>
#include <QHash>
#include <QTemporaryDir>

#include "core/settings.h"
#include "mail/mailsettings.h"
#include "tests/support/datarow.h"

namespace qmr::test {

// Writes `bytes` to `path`; the bytes. A file that cannot be written ends the test run at
// once, so that no test goes on with a sender or an attachment that is not there.
inline QByteArray writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("Cannot write %s", qPrintable(path));
    return bytes;
}

// A stand-in for the system's sendmail: it keeps its arguments and its input in files, and
// ends with the exit code it was made with.
struct SendmailStandIn
{
    QTemporaryDir dir;
    QString program = dir.filePath("sendmail");

    explicit SendmailStandIn(int exitCode = 0, const QByteArray& complaint = QByteArray())
    {
        QByteArray script = "#!/bin/sh\n";
        script += "printf '%s\\n' \"$@\" > '" + dir.filePath("args").toUtf8() + "'\n";
        script += "cat > '" + dir.filePath("message").toUtf8() + "'\n";
        if (!complaint.isEmpty())
            script += "echo '" + complaint + "' >&2\n";
        script += "exit " + QByteArray::number(exitCode) + "\n";
        writeFile(program, script);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QByteArray read(const char* name) const
    {
        QFile f(dir.filePath(QLatin1String(name)));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    QByteArray message() const { return read("message"); }
    QStringList arguments() const
    {
        return QString::fromUtf8(read("args")).split('\n', Qt::SkipEmptyParts);
    }
};

struct MessagePart
{
    QHash<QByteArray, QByteArray> headers; // by name in lower case
    QByteArray body;
};

// A received message taken apart: its headers, its body and the parts of that.
struct ParsedMessage : MessagePart
{
    using Part = MessagePart;
    QList<Part> parts;

    static Part split(const QByteArray& text)
    {
        Part p;
        const qsizetype end = text.indexOf("\r\n\r\n");
        p.body = text.mid(end + 4);
        QByteArray last;
        for (QByteArray l : text.left(end).split('\n')) {
            if (l.endsWith('\r'))
                l.chop(1);
            if ((l.startsWith(' ') || l.startsWith('\t')) && !last.isEmpty()) {
                p.headers[last] += "\r\n" + l; // a folded line
                continue;
            }
            last = l.left(l.indexOf(':')).toLower();
            p.headers[last] = l.mid(l.indexOf(':') + 1).trimmed();
        }
        return p;
    }

    explicit ParsedMessage(const QByteArray& text)
    {
        static_cast<Part&>(*this) = split(text);
        const QByteArray type = headers.value("content-type");
        const qsizetype at = type.indexOf("boundary=\"") + 10;
        if (at < 10)
            return;
        // A part runs from its boundary line to the line break before the next boundary.
        const QByteArray boundary = "--" + type.mid(at, type.indexOf('"', at) - at);
        qsizetype from = body.indexOf(boundary + "\r\n");
        while (from >= 0) {
            const qsizetype start = from + boundary.size() + 2;
            from = body.indexOf("\r\n" + boundary, start) + 2;
            if (from < 2)
                return;
            parts << split(body.mid(start, from - start));
            if (body.mid(from + boundary.size(), 2) != "\r\n")
                return; // the last boundary, ended by "--"
        }
    }

    // Quoted-printable text back to its bytes.
    static QByteArray unquote(const QByteArray& qp)
    {
        return QByteArray::fromPercentEncoding(QByteArray(qp).replace("=\r\n", ""), '=');
    }
};

inline MailSettings smtpTo(quint16 port, const QString& from = QStringLiteral("me@example.org"))
{
    MailSettings m;
    m.system = MailSystem::Cdonts;
    m.smtpServer = QStringLiteral("127.0.0.1");
    m.smtpPort = port;
    m.fromAddress = from;
    return m;
}

inline MailSettings sendmailAt(const QString& program,
                               const QString& from = QStringLiteral("me@example.org"))
{
    MailSettings m;
    m.system = MailSystem::Mapi;
    m.sendmailPath = program;
    m.fromAddress = from;
    return m;
}

} // namespace qmr::test
