#pragma once

#include <QFile>
#include <QHash>
#include <QTemporaryDir>

#include "core/settings.h"
#include "mail/mailsettings.h"

namespace qmr::test {

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
        QFile f(program);
        f.open(QIODevice::WriteOnly);
        f.write(script);
        f.close();
        f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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

// A received message taken apart: its headers by name and its parts.
struct ParsedMessage
{
    QHash<QByteArray, QByteArray> headers;
    QByteArray body;
    struct Part
    {
        QHash<QByteArray, QByteArray> headers;
        QByteArray body;
    };
    QList<Part> parts;

    static QHash<QByteArray, QByteArray> headerBlock(const QByteArray& text, QByteArray* rest)
    {
        QHash<QByteArray, QByteArray> h;
        const qsizetype end = text.indexOf("\r\n\r\n");
        const QByteArray block = text.left(end);
        *rest = text.mid(end + 4);
        QByteArray last;
        for (const QByteArray& line : block.split('\n')) {
            const QByteArray l = line.endsWith('\r') ? line.chopped(1) : line;
            if ((l.startsWith(' ') || l.startsWith('\t')) && !last.isEmpty()) {
                h[last] += "\r\n" + l; // a folded line
                continue;
            }
            const qsizetype colon = l.indexOf(':');
            last = l.left(colon).toLower();
            h[last] = l.mid(colon + 1).trimmed();
        }
        return h;
    }

    explicit ParsedMessage(const QByteArray& text)
    {
        headers = headerBlock(text, &body);
        const QByteArray type = headers.value("content-type");
        const qsizetype at = type.indexOf("boundary=\"");
        if (at < 0)
            return;
        const QByteArray boundary = "--" + type.mid(at + 10, type.indexOf('"', at + 10) - at - 10);
        const QList<QByteArray> pieces = body.split('\n');
        QByteArray current;
        bool inPart = false;
        for (const QByteArray& raw : pieces) {
            const QByteArray line = raw.endsWith('\r') ? raw.chopped(1) : raw;
            if (line == boundary || line == boundary + "--") {
                if (inPart) {
                    Part p;
                    p.headers = headerBlock(current, &p.body);
                    parts << p;
                }
                current.clear();
                inPart = line == boundary;
                continue;
            }
            if (inPart)
                current += line + "\r\n";
        }
    }

    // Quoted-printable text back to its bytes.
    static QByteArray unquote(const QByteArray& qp)
    {
        QByteArray out;
        for (qsizetype i = 0; i < qp.size(); ++i) {
            if (qp.at(i) == '=' && i + 2 < qp.size() && qp.at(i + 1) == '\r' &&
                qp.at(i + 2) == '\n') {
                i += 2;
            } else if (qp.at(i) == '=' && i + 2 < qp.size()) {
                out += char(qp.mid(i + 1, 2).toInt(nullptr, 16));
                i += 2;
            } else {
                out += qp.at(i);
            }
        }
        return out;
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
