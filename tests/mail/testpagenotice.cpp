#include <QTest>

#include "core/progress.h"
#include "core/viewsettings.h"
#include "mail/pagenotice.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "store/commandcontext.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Cabinet "Home Papers" / drawer "Taxes" / folder "2025" (address as given) / document
// "Return" with page 3, and a shortcut page to /home/me/letter.pdf.
struct NoticeStore
{
    test::TestHome home;
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    std::unique_ptr<Session> session;
    std::unique_ptr<ViewSettings> view;
    qint32 folder = -1, page = -1, shortcut = -1;

    explicit NoticeStore(const QString& address)
    {
        {
            test::FixtureStore store(home.home());
            const qint32 cab = store.cabinet("Home Papers");
            const qint32 drw = store.drawer(cab, "Taxes");
            folder = store.folder(drw, "2025", address);
            const qint32 doc = store.document(folder, "Return");
            page = store.pageRow(doc, 3);
            shortcut = store.pageRow(doc, 4);
            store.db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                               {"/home/me/letter.pdf", shortcut});
        }
        session = std::make_unique<Session>(home.home(), home.settings());
        StoreSchema::openDatabase(session->db(), home.home());
        view = std::make_unique<ViewSettings>(home.settings());
    }
    CommandContext context()
    {
        return CommandContext{*session, prompter, choosers, progress, *view};
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
        QTest::newRow("scanned page") << false << "New page scanned.  Page # 3";
        QTest::newRow("shortcut") << true << "New file added: /home/me/letter.pdf";
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
    }

    void noAddressNoNotice_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("none") << "";
        QTest::newRow("blanks") << "    ";
    }
    void noAddressNoNotice()
    {
        QFETCH(QString, address);
        NoticeStore s(address);
        QVERIFY(!PageNotice::compose(*s.session, s.page));
        QVERIFY(!PageNotice::compose(*s.session, 9999)); // a page that is gone
        test::SmtpSink sink;
        MailSettings m = test::smtpTo(sink.port());
        m.write(s.home.settings());
        PageNotice::sendPageNotice(s.context(), s.page);
        QVERIFY(s.prompter.seen().isEmpty());
        QVERIFY(sink.messages.isEmpty());
    }

    void noMailSystemStopsSilently()
    {
        NoticeStore s("folder@example.org");
        test::SmtpSink sink;
        MailSettings m = test::smtpTo(sink.port());
        m.system = MailSystem::None;
        m.write(s.home.settings());
        PageNotice::sendPageNotice(s.context(), s.page);
        QVERIFY(s.prompter.seen().isEmpty());
        QVERIFY(sink.messages.isEmpty());
    }

    // The notice has no dialog to tell it in: the refusal goes to the log and the notice is
    // left out.
    void addressWithALineBreakIsSkipped_data()
    {
        QTest::addColumn<QString>("folderAddress");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("logged");
        QTest::newRow("folder's Email")
            << "folder@example.org>\r\nRCPT TO:<evil@example.org"
            << "scanner@example.org"
            << "No notice of page %1. The address in the Email of folder '2025' holds a line "
               "break or another control character.";
        QTest::newRow("sender") << "folder@example.org"
                                << "scanner@example.org>\r\nRCPT TO:<evil@example.org"
                                << "No notice of page %1. The address in 'Your email address' of "
                                   "File/Email Settings holds a line break or another control "
                                   "character.";
    }
    void addressWithALineBreakIsSkipped()
    {
        QFETCH(QString, folderAddress);
        QFETCH(QString, from);
        QFETCH(QString, logged);
        NoticeStore s(folderAddress);
        test::SmtpSink sink;
        test::smtpTo(sink.port(), from).write(s.home.settings());
        QTest::ignoreMessage(QtWarningMsg, qPrintable(logged.arg(s.page)));
        PageNotice::sendPageNotice(s.context(), s.page);
        QVERIFY2(sink.recipients.isEmpty(), qPrintable(sink.recipients.join(" | ")));
        QVERIFY(sink.messages.isEmpty());
        QVERIFY2(s.prompter.seen().isEmpty(), qPrintable(s.prompter.report()));
    }

    void noticeArrives()
    {
        NoticeStore s("folder@example.org");
        test::SmtpSink sink;
        test::smtpTo(sink.port(), "scanner@example.org").write(s.home.settings());
        // Every notice ends in the box of the send routine.
        s.prompter.expect("Message sent.");
        PageNotice::sendPageNotice(s.context(), s.page);
        QVERIFY2(s.prompter.verify(), qPrintable(s.prompter.report()));
        QCOMPARE(sink.messages.size(), 1);
        QCOMPARE(sink.recipients, QStringList{"folder@example.org"});
        QCOMPARE(sink.mailFrom, QString("scanner@example.org"));
        const test::ParsedMessage m(sink.messages[0]);
        QCOMPARE(m.headers.value("subject"), QByteArray("Quillmere: new page added"));
        QCOMPARE(m.headers.value("content-type"), QByteArray("text/plain; charset=UTF-8"));
        QVERIFY(test::ParsedMessage::unquote(m.body).startsWith(" Cabinet: Home Papers\r\n"));
    }
};

QMR_TEST(TestPageNotice)
#include "testpagenotice.moc"
