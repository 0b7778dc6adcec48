#include "mail/mimemessage.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>
#include <QSysInfo>
#include <QUuid>

#include "mail/mailaddress.h"

namespace qmr {

namespace {

const QByteArray kCrlf = QByteArrayLiteral("\r\n");

bool isPlainAscii(const QString& text)
{
    for (const QChar c : text)
        if (c.unicode() < 32 || c.unicode() > 126)
            return false;
    return true;
}

// Every line break as CRLF.
QByteArray crlfText(const QString& text)
{
    QString t = text;
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return t.toUtf8().replace('\n', kCrlf);
}

QByteArray base64Lines(const QByteArray& data)
{
    const QByteArray encoded = data.toBase64();
    QByteArray out;
    out.reserve(encoded.size() + encoded.size() / 76 * 2 + 2);
    for (qsizetype i = 0; i < encoded.size(); i += 76)
        out += encoded.mid(i, 76) + kCrlf;
    return out;
}

// A quoted parameter value; the characters that end or escape it are escaped.
QByteArray quotedParameter(const QString& value)
{
    QByteArray v = value.toUtf8();
    v.replace('\\', "\\\\").replace('"', "\\\"");
    return '"' + v + '"';
}

// An address as a message can show it: its control characters written out.
QString visible(const QString& address)
{
    QString out;
    for (const QChar c : address) {
        if (c == QLatin1Char('\r'))
            out += QStringLiteral("\\r");
        else if (c == QLatin1Char('\n'))
            out += QStringLiteral("\\n");
        else if (MailAddress::holdsControl(QString(c)))
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

QByteArray attachmentHeaders(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    const QString type = QMimeDatabase().mimeTypeForFile(path).name();
    QByteArray h = "Content-Type: " + type.toLatin1() + "; name=";
    QByteArray disposition = "Content-Disposition: attachment; filename";
    if (isPlainAscii(name)) {
        h += quotedParameter(name);
        disposition += '=' + quotedParameter(name);
    } else {
        // Encoded words for the readers that know only them; RFC 2231 for the rest.
        h += '"' + MimeMessage::encodeHeader(name).replace("\r\n ", " ") + '"';
        disposition += "*=UTF-8''" + name.toUtf8().toPercentEncoding();
    }
    return h + kCrlf + disposition + kCrlf +
           QByteArrayLiteral("Content-Transfer-Encoding: base64") + kCrlf;
}

} // namespace

QByteArray MimeMessage::quotedPrintable(const QByteArray& utf8)
{
    QByteArray out;
    const QList<QByteArray> lines = utf8.split('\n');
    for (qsizetype n = 0; n < lines.size(); ++n) {
        QByteArray line = lines.at(n);
        if (line.endsWith('\r'))
            line.chop(1);
        int column = 0;
        for (qsizetype i = 0; i < line.size(); ++i) {
            const uchar c = uchar(line.at(i));
            const bool last = i + 1 == line.size();
            QByteArray token;
            if ((c >= 33 && c <= 126 && c != '=') || ((c == ' ' || c == '\t') && !last))
                token = QByteArray(1, char(c));
            else
                token = '=' + QByteArray::number(c, 16).toUpper().rightJustified(2, '0');
            // Lines stay within 76 characters, the soft break's "=" included.
            if (column + token.size() > 75) {
                out += "=\r\n";
                column = 0;
            }
            out += token;
            column += int(token.size());
        }
        if (n + 1 < lines.size())
            out += kCrlf;
    }
    return out;
}

QByteArray MimeMessage::encodeHeader(const QString& text)
{
    if (isPlainAscii(text))
        return text.toLatin1();
    // Words of at most 45 bytes of UTF-8 (60 in base64), cut between characters.
    QByteArray out;
    QByteArray chunk;
    auto flush = [&] {
        if (chunk.isEmpty())
            return;
        if (!out.isEmpty())
            out += "\r\n ";
        out += "=?UTF-8?B?" + chunk.toBase64() + "?=";
        chunk.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        QString one(text.at(i));
        if (text.at(i).isHighSurrogate() && i + 1 < text.size())
            one += text.at(++i);
        const QByteArray bytes = one.toUtf8();
        if (chunk.size() + bytes.size() > 45)
            flush();
        chunk += bytes;
    }
    flush();
    return out;
}

QByteArray MimeMessage::rfc2822Date(const QDateTime& date)
{
    const int offset = date.offsetFromUtc() / 60;
    const QString zone = QStringLiteral("%1%2%3")
                             .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                             .arg(qAbs(offset) / 60, 2, 10, QLatin1Char('0'))
                             .arg(qAbs(offset) % 60, 2, 10, QLatin1Char('0'));
    return (QLocale::c().toString(date, QStringLiteral("ddd, dd MMM yyyy hh:mm:ss ")) + zone)
        .toLatin1();
}

QString MimeMessage::makeMessageId(const QString& from)
{
    QString domain = from.section(QLatin1Char('@'), 1).trimmed();
    domain.remove(QLatin1Char('>'));
    if (domain.isEmpty())
        domain = QSysInfo::machineHostName();
    if (domain.isEmpty())
        domain = QStringLiteral("localhost");
    return QStringLiteral("<%1@%2>").arg(QUuid::createUuid().toString(QUuid::WithoutBraces),
                                         domain);
}

QByteArray MimeMessage::build(const MailMessage& message, std::optional<MailFailure>* failure)
{
    // A line break in an address would end its header and start another of the sender's
    // choosing.
    for (const QString& address : QStringList{message.from} + message.recipients()) {
        if (MailAddress::holdsControl(address)) {
            if (failure)
                *failure = MailFailure{5, tr("The address '%1' holds a line break or "
                                             "another control character.")
                                              .arg(visible(address))};
            return QByteArray();
        }
    }
    QByteArray head;
    head += "Date: " + rfc2822Date(message.date) + kCrlf;
    if (!message.from.isEmpty())
        head += "From: " + message.from.toUtf8() + kCrlf;
    head += "To: " + message.recipients().join(QStringLiteral(", ")).toUtf8() + kCrlf;
    head += "Subject: " + encodeHeader(message.subject) + kCrlf;
    const QString id =
        message.messageId.isEmpty() ? makeMessageId(message.from) : message.messageId;
    head += "Message-ID: " + id.toUtf8() + kCrlf;
    head += "MIME-Version: 1.0" + kCrlf;
    head += "X-Mailer: Quillmere" + kCrlf;

    const QByteArray textHeaders =
        QByteArrayLiteral("Content-Type: text/plain; charset=UTF-8") + kCrlf +
        QByteArrayLiteral("Content-Transfer-Encoding: quoted-printable") + kCrlf;
    const QByteArray text = quotedPrintable(crlfText(message.body)) + kCrlf;
    if (message.attachments.isEmpty())
        return head + textHeaders + kCrlf + text;

    const QByteArray boundary = "=_qmr_" + QUuid::createUuid().toString(QUuid::Id128).toLatin1();
    QByteArray out = head + "Content-Type: multipart/mixed; boundary=\"" + boundary + '"' + kCrlf +
                     kCrlf + "This is a multi-part message in MIME format." + kCrlf;
    out += "--" + boundary + kCrlf + textHeaders + kCrlf + text;
    for (const QString& path : message.attachments) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            if (failure)
                *failure =
                    file.exists()
                        ? MailFailure{75, tr("Cannot read '%1': %2").arg(path, file.errorString())}
                        : MailFailure{53, tr("File not found: '%1'").arg(path)};
            return QByteArray();
        }
        out +=
            "--" + boundary + kCrlf + attachmentHeaders(path) + kCrlf + base64Lines(file.readAll());
    }
    out += "--" + boundary + "--" + kCrlf;
    return out;
}

} // namespace qmr
