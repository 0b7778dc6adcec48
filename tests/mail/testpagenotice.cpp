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
    // Only a folder with an address and a mail system gets a notice. It has no dialog to tell
    // a refused address in: that goes to the log and the notice is left out.
    void sendPageNotice_data()
    {
        // "last": the notice's last line, "" where none goes out.
        test::columns<QString, QString, bool, bool, QString, QString>(
            {"folderAddress", "from", "mailSystem", "shortcut", "logged", "last"});
        const QString injected = ">\r\nRCPT TO:<evil@example.org";
        const QString folder = "folder@example.org", sender = "scanner@example.org";
        test::row("scanned page", "  " + folder + " ", sender, true, false, "",
                  "New page scanned.  Page # 3");
        test::row("shortcut", folder, sender, true, true, "",
                  "New file added: /home/me/letter.pdf");
        test::row("no address", "", sender, true, false, "", "");
        test::row("address of blanks", "    ", sender, true, false, "", "");
        test::row("no mail system", folder, sender, false, false, "", "");
        test::row("line break in the folder's Email", folder + injected, sender, true, false,
                  "No notice of page %1. The address in the Email of folder '2025' holds a line "
                  "break or another control character.",
                  "");
        test::row("line break in the sender", folder, sender + injected, true, false,
                  "No notice of page %1. The address in 'Your email address' of File/Email "
                  "Settings holds a line break or another control character.",
                  "");
    }
    void sendPageNotice()
    {
        const auto [folderAddress, from, mailSystem, shortcut, logged, last] =
            test::fetch<QString, QString, bool, bool, QString, QString>(
                "folderAddress", "from", "mailSystem", "shortcut", "logged", "last");
        NoticeStore s(folderAddress);
        const qint32 page = shortcut ? s.shortcut : s.page;
        const std::optional<PageNotice::Notice> notice = PageNotice::compose(*s.session, page);
        QCOMPARE(notice.has_value(), !folderAddress.trimmed().isEmpty());
        QVERIFY(!PageNotice::compose(*s.session, 9999)); // a page that is gone
        test::SmtpSink sink;
        MailSettings m = test::smtpTo(sink.port(), from);
        if (!mailSystem)
            m.system = MailSystem::None;
        m.write(s.home.settings());
        if (!logged.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, qPrintable(logged.arg(page)));
        const bool sent = !last.isEmpty();
        if (sent) // every notice ends in the box of the send routine
            s.prompter.expect("Message sent.");
        PageNotice::sendPageNotice(s.context(), page);
        QVERIFY2(s.prompter.verify(), qPrintable(s.prompter.report()));
        QCOMPARE(sink.recipients, sent ? QStringList{"folder@example.org"} : QStringList());
        QCOMPARE(sink.messages.size(), sent ? 1 : 0);
        if (!sent)
            return;
        QCOMPARE(notice->address, QString("folder@example.org"));
        QCOMPARE(sink.mailFrom, QString("scanner@example.org"));
        const test::ParsedMessage parsed(sink.messages[0]);
        QCOMPARE(parsed.headers.value("subject"), QByteArray("Quillmere: new page added"));
        QCOMPARE(test::ParsedMessage::unquote(parsed.body),
                 " Cabinet: Home Papers\r\n  Drawer: Taxes\r\n  Folder: 2025\r\n"
                 "Document: Return\r\n\r\n" +
                     last.toUtf8() + "\r\n");
    }
};

QMR_TEST(TestPageNotice)
#include "testpagenotice.moc"
