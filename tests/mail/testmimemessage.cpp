#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include "mail/attachmentlist.h"
#include "mail/mimemessage.h"
#include "mailharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

QByteArray decodeWords(const QByteArray& header)
{
    QByteArray out;
    static const QRegularExpression word(QStringLiteral("=\\?UTF-8\\?B\\?([^?]*)\\?="));
    auto it = word.globalMatch(QString::fromLatin1(header));
    while (it.hasNext())
        out += QByteArray::fromBase64(it.next().captured(1).toLatin1());
    return out;
}

} // namespace

class TestMimeMessage : public QObject
{
    Q_OBJECT
private slots:
    void headers()
    {
        MailMessage m;
        m.from = "me@example.org";
        m.to = " you@example.org ;  them@example.net,";
        m.subject = "Pages of March";
        m.body = "Hello";
        m.date = QDateTime(QDate(2026, 3, 14), QTime(9, 30, 5), QTimeZone(3600));
        const QByteArray text = MimeMessage::build(m, nullptr);
        const test::ParsedMessage parsed(text);
        QStringList seen;
        for (const char* name : {"date", "from", "to", "subject", "mime-version", "content-type"})
            seen << QString::fromUtf8(parsed.headers.value(name));
        QCOMPARE(seen, QStringList({"Sat, 14 Mar 2026 09:30:05 +0100", "me@example.org",
                                    "you@example.org, them@example.net", "Pages of March", "1.0",
                                    "text/plain; charset=UTF-8"}));
        QVERIFY(QRegularExpression("^<[0-9a-f-]{36}@example\\.org>$")
                    .match(QString::fromLatin1(parsed.headers.value("message-id")))
                    .hasMatch());
        // Every line ends in CRLF, and none is longer than the mail rules allow.
        for (const QByteArray& line : text.split('\n'))
            QVERIFY(line.isEmpty() || (line.endsWith('\r') && line.size() <= 999));
        QVERIFY(!text.contains("\r\r") && !text.contains(QByteArray("\n\n")));
        QCOMPARE(MimeMessage::build(m, nullptr).count("Message-ID"), 1);
        QVERIFY(MimeMessage::build(m, nullptr) != text); // a new id for each message
    }

    void encodedSubject_data()
    {
        test::columns<QString>({"subject"});
        test::row("accents", QString::fromUtf8("Rechnung für Müller – Größe"));
        test::row("long, with a character beyond the first plane",
                  QString::fromUtf8("Überweisung ") + QString(30, QChar(0x00e9)) +
                      QString::fromUtf8(" \U0001F4C4 Ende"));
    }
    void encodedSubject()
    {
        QFETCH(QString, subject);
        const QByteArray header = MimeMessage::encodeHeader(subject);
        QVERIFY(!header.contains(char(0xc3)));
        for (const QByteArray& line : header.split('\n'))
            QVERIFY(line.size() <= 78);
        QCOMPARE(QString::fromUtf8(decodeWords(header)), subject);
    }

    void quotedPrintableBody_data()
    {
        test::columns<QString>({"body"});
        test::row("blanks before the text", "   \r\nHello");
        test::row("unix line ends", "one\ntwo\n\nthree");
        test::row("equals and umlauts", QString::fromUtf8("a=b, Käse, naïve"));
        test::row("a long line", QString(200, 'x') + " " + QString(90, QChar(0x00fc)));
        test::row("dots at line starts", ".\r\n..hidden\r\n.");
        test::row("trailing tab and blank", "tab\t\r\nblank \r\nend");
    }
    void quotedPrintableBody()
    {
        QFETCH(QString, body);
        MailMessage m;
        m.to = "you@example.org";
        m.body = body;
        const test::ParsedMessage parsed(MimeMessage::build(m, nullptr));
        QCOMPARE(parsed.headers.value("content-transfer-encoding"), QByteArray("quoted-printable"));
        QString expected = body;
        expected.replace("\r\n", "\n").replace("\n", "\r\n");
        QByteArray encoded = parsed.body;
        QVERIFY(encoded.endsWith("\r\n"));
        encoded.chop(2);
        QCOMPARE(QString::fromUtf8(test::ParsedMessage::unquote(encoded)), expected);
        for (const QByteArray& line : encoded.split('\n')) {
            const QByteArray l = line.endsWith('\r') ? line.chopped(1) : line;
            QVERIFY2(l.size() <= 76, l.constData());
            QVERIFY(!l.endsWith(' ') && !l.endsWith('\t'));
        }
    }

    void attachments()
    {
        QTemporaryDir dir;
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(dir.filePath("page.jpg"), "JPG"));
        QFile jpeg(dir.filePath("page.jpg"));
        QVERIFY(jpeg.open(QIODevice::ReadOnly));
        QByteArray binary(70000, '\0');
        for (int i = 0; i < binary.size(); ++i)
            binary[i] = char((i * 7 + i / 256) % 256);
        const QString odd = QString::fromUtf8("Übersicht \"März\".jpg");
        // Name, bytes and the type that goes with the name.
        const QList<std::tuple<QString, QByteArray, QByteArray>> files = {
            {"page.jpg", jpeg.readAll(), "image/jpeg"},
            {"letter.pdf", test::writeFile(dir.filePath("letter.pdf"), "%PDF-1.4\n" + binary),
             "application/pdf"},
            {"notes.txt", test::writeFile(dir.filePath("notes.txt"), "plain notes\n"),
             "text/plain"},
            {odd, test::writeFile(dir.filePath(odd), binary.left(1000)), "image/jpeg"}};
        MailMessage m;
        m.to = "you@example.org";
        m.body = "Here they are";
        for (const auto& file : files)
            m.attachments << dir.filePath(std::get<0>(file));
        std::optional<MailFailure> failure;
        const test::ParsedMessage parsed(MimeMessage::build(m, &failure));
        QVERIFY(!failure);
        QVERIFY(parsed.headers.value("content-type").startsWith("multipart/mixed; boundary=\""));
        QCOMPARE(parsed.parts.size(), 5);
        QCOMPARE(parsed.parts[0].headers.value("content-type"),
                 QByteArray("text/plain; charset=UTF-8"));
        for (int i = 0; i < files.size(); ++i) {
            const auto& [name, bytes, type] = files[i];
            const auto& part = parsed.parts[i + 1];
            QVERIFY2(part.headers.value("content-type").startsWith(type + "; name="),
                     part.headers.value("content-type").constData());
            QCOMPARE(part.headers.value("content-transfer-encoding"), QByteArray("base64"));
            QCOMPARE(QByteArray::fromBase64(part.body), bytes);
            QCOMPARE(part.headers.value("content-disposition"),
                     "attachment; filename" + (name == odd
                                                   ? "*=UTF-8''" + name.toUtf8().toPercentEncoding()
                                                   : "=\"" + name.toUtf8() + '"'));
            for (const QByteArray& line : part.body.split('\n'))
                QVERIFY(line.size() <= 78);
        }
    }

    void refusals_data()
    {
        // A missing attachment: TestMailSender::send, whose message is built here.
        test::columns<QString, QString, QString>({"from", "to", "text"});
        const QString me = "me@example.org", you = "you@example.org";
        // A line break in an address would start a header of its own.
        test::row("line break in To", me, you + "\r\nBcc: evil@example.org",
                  "The address 'you@example.org\\r\\nBcc: evil@example.org' holds a line break "
                  "or another control character.");
        test::row("line break in From", me + "\nBcc: evil@example.org", you,
                  "The address 'me@example.org\\nBcc: evil@example.org' holds a line break or "
                  "another control character.");
    }
    void refusals()
    {
        MailMessage m;
        std::tie(m.from, m.to) = test::fetch<QString, QString>("from", "to");
        std::optional<MailFailure> failure;
        QVERIFY(MimeMessage::build(m, &failure).isEmpty());
        QVERIFY(failure);
        QCOMPARE(failure->number, 5);
        QTEST(failure->text, "text");
    }

    // The room made in the body for the attachments is checked where messages are really sent
    // (TestMailDialogs::send, TestMailSender::send, TestPageNotice).
    void attachmentList_data()
    {
        test::columns<QString, int, QStringList>({"attachments", "count", "paths"});
        const QStringList one = {"/p/1.jpg"};
        test::row("none", "", 0, QStringList());
        test::row("one without a mark", "/p/1.jpg", 1, one);
        test::row("one with its mark", "/p/1.jpg|", 1, one);
        test::row("three pages", "/p/1.jpg|/p/2.jpg|/p/3.jpg|", 3,
                  QStringList{"/p/1.jpg", "/p/2.jpg", "/p/3.jpg"});
        // Marks count even where no path stands between them; the empty pieces are skipped.
        test::row("empty pieces", "|/p/1.jpg||", 3, one);
        // A text after the last mark is not a path of the list.
        test::row("tail without a mark", "/p/1.jpg|/p/2.jpg", 1, one);
    }
    void attachmentList()
    {
        QFETCH(QString, attachments);
        QTEST(AttachmentList::count(attachments), "count");
        QTEST(AttachmentList::paths(attachments), "paths");
    }
};

QMR_TEST(TestMimeMessage)
#include "testmimemessage.moc"
