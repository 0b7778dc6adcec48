#include <QTest>

#include "mail/pagenotice.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Cabinet "Home Papers" / drawer "Taxes" / folder "2025" (address as given) / document
// "Return" with page 3, and a shortcut page to /home/me/letter.pdf.
struct NoticeStore : test::CommandHarness<>
{
    qint32 page = -1, shortcut = -1;

    explicit NoticeStore(const QString& address)
    {
        test::FixtureStore store(home.home());
        const qint32 drawer = store.drawer(store.cabinet("Home Papers"), "Taxes");
        const qint32 doc = store.document(store.folder(drawer, "2025", address), "Return");
        page = store.pageRow(doc, 3);
        shortcut = store.pageRow(doc, 4);
        store.db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                           {"/home/me/letter.pdf", shortcut});
        openSession();
    }
};

} // namespace

class TestPageNotice : public QObject
{
    Q_OBJECT
private slots:
    void body_data()
    {
        QTest::addColumn<bool>("isShortcut");
        QTest::addColumn<QString>("last");
        test::row("scanned page", false, "New page scanned.  Page # 3");
        test::row("shortcut", true, "New file added: /home/me/letter.pdf");
    }
    void body()
    {
        QFETCH(bool, isShortcut);
        QFETCH(QString, last);
        NoticeStore s("  folder@example.org ");
        const std::optional<PageNotice::Notice> n =
            PageNotice::compose(*s.session, isShortcut ? s.shortcut : s.page);
        QVERIFY(n);
        QCOMPARE(n->address, QString("folder@example.org"));
        QCOMPARE(n->subject, QString("Quillmere: new page added"));
        QCOMPARE(n->body, " Cabinet: Home Papers\r\n  Drawer: Taxes\r\n  Folder: 2025\r\n"
                          "Document: Return\r\n\r\n" +
                              last);
        QVERIFY(!PageNotice::compose(*s.session, 9999)); // a page that is gone
    }

    // Only a folder with an address and a mail system gets a notice. It has no dialog to tell
    // a refused address in: that goes to the log and the notice is left out.
    void sendPageNotice_data()
    {
        QTest::addColumn<QString>("folderAddress");
        QTest::addColumn<QString>("from");
        QTest::addColumn<bool>("mailSystem");
        QTest::addColumn<QString>("logged");
        const QString injected = ">\r\nRCPT TO:<evil@example.org";
        const QString sender = "scanner@example.org";
        test::row("arrives", "folder@example.org", sender, true, "");
        test::row("no address", "", sender, true, "");
        test::row("address of blanks", "    ", sender, true, "");
        test::row("no mail system", "folder@example.org", sender, false, "");
        test::row("line break in the folder's Email", "folder@example.org" + injected, sender, true,
                  "No notice of page %1. The address in the Email of folder '2025' holds a line "
                  "break or another control character.");
        test::row("line break in the sender", "folder@example.org", sender + injected, true,
                  "No notice of page %1. The address in 'Your email address' of File/Email "
                  "Settings holds a line break or another control character.");
    }
    void sendPageNotice()
    {
        QFETCH(QString, folderAddress);
        QFETCH(QString, from);
        QFETCH(bool, mailSystem);
        QFETCH(QString, logged);
        NoticeStore s(folderAddress);
        if (folderAddress.trimmed().isEmpty())
            QVERIFY(!PageNotice::compose(*s.session, s.page));
        test::SmtpSink sink;
        MailSettings m = test::smtpTo(sink.port(), from);
        if (!mailSystem)
            m.system = MailSystem::None;
        m.write(s.home.settings());
        if (!logged.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, qPrintable(logged.arg(s.page)));
        const bool sent = mailSystem && logged.isEmpty() && !folderAddress.trimmed().isEmpty();
        if (sent) // every notice ends in the box of the send routine
            s.prompter.expect("Message sent.");
        PageNotice::sendPageNotice(s.context(), s.page);
        QVERIFY2(s.prompter.verify(), qPrintable(s.prompter.report()));
        QCOMPARE(sink.recipients, sent ? QStringList{"folder@example.org"} : QStringList());
        QCOMPARE(sink.messages.size(), sent ? 1 : 0);
        if (!sent)
            return;
        QCOMPARE(sink.mailFrom, QString("scanner@example.org"));
        const test::ParsedMessage parsed(sink.messages[0]);
        QCOMPARE(parsed.headers.value("subject"), QByteArray("Quillmere: new page added"));
        QCOMPARE(parsed.headers.value("content-type"), QByteArray("text/plain; charset=UTF-8"));
        QVERIFY(test::ParsedMessage::unquote(parsed.body).startsWith(" Cabinet: Home Papers\r\n"));
    }
};

QMR_TEST(TestPageNotice)
#include "testpagenotice.moc"
