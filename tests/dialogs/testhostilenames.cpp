#include <QRadioButton>
#include <QTest>

#include "dialogharness.h"
#include "store/itemstore.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::child;
using test::DialogHarness;

namespace {

const char* const kLevelWords[] = {"cabinet", "drawer", "folder", "document"};

QString tooLong(const char* what, int level, int width)
{
    return QStringLiteral("The %1 is too long: a %2's %1 can have at most %3 characters.")
        .arg(QLatin1String(what), QLatin1String(kLevelWords[level]))
        .arg(width);
}

// Why a name is refused: 'c' a character not allowed, 'b' blank, 'l' too long; 0 when taken.
struct Case
{
    const char* name;
    QString typed;
    char refused = 0;
    QString stored = {}; // what the store must hold when it is not what was typed
};

// Names that have broken programs: quoting, patterns, statement text, escapes, scripts that
// run the other way, characters built of several, characters beyond 16 bits, and lengths at
// and one past the column's width, counted in characters as the store counts them.
QVector<Case> nameCases()
{
    const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80"); // one character, two units
    const QString accent = QString::fromUtf8("e\xCC\x81");       // e + combining acute
    return {
        {"apostrophes", "O'Brien's 'quoted' name"},
        {"double quote", "say \"cheese\"", 'c'},
        {"percent", "100% of 50%"},
        {"underscore", "a_b__c_"},
        {"semicolon and statement", "x'); DROP TABLE Cabinet; --"},
        {"backslash", "C\\temp", 'c'},
        {"brackets", "[draft] (v2) {final}"},
        {"right to left", QString::fromUtf8("ملف الضرائب 2025")},
        {"direction override", QString::fromUtf8("\xE2\x80\xAEtxt.exe\xE2\x80\xAC"), 'c'},
        {"direction override, no dot", QString::fromUtf8("\xE2\x80\xAE"
                                                         "abc\xE2\x80\xAC")},
        {"combining", QString::fromUtf8("Cafe\xCC\x81 Zoe\xCC\x88")},
        {"emoji", QString::fromUtf8("\xF0\x9F\xA7\xBE Receipts \xF0\x9F\x93\x81")},
        {"joined emoji",
         QString::fromUtf8("\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91"
                           "\xA7 family")},
        // Found by fuzzing: a name that begins with a byte-order mark lost it on reading.
        {"byte-order mark first", QChar(0xFEFF) + QStringLiteral("Invoices")},
        {"zero-width characters", QString::fromUtf8("in\xE2\x80\x8Bvoice\xE2\x80\x8D")},
        {"spaces around", "   padded name  ", 0, "padded name"},
        {"only spaces", "    ", 'b'},
        {"at width", QString(80, 'w')},
        {"one past width", QString(81, 'w'), 'l'},
        {"emoji at width", emoji.repeated(80)},
        {"emoji one past width", emoji.repeated(81), 'l'},
        {"combining at width", accent.repeated(40)},
        {"combining one past width", accent.repeated(40) + "x", 'l'},
    };
}

QString nameRefusal(char why, int level)
{
    if (why == 'c')
        return "The following characters are not allowed:\n\\ / : * ? \" < > | .";
    if (why == 'b')
        return QStringLiteral("A %1 name is required.")
            .arg(level == 0 ? "file cabinet" : kLevelWords[level]);
    return tooLong("name", level, 80);
}

// The box a field is typed in, the property that holds its text, and where the store keeps it.
struct Field
{
    const char* control;
    QString ItemFields::*stored;
    const char* text = "text";
};
Field fieldOf(const QString& field)
{
    const QHash<QString, Field> fields{{"name", {"txtName", &ItemFields::name}},
                                       {"email", {"txtEmail", &ItemFields::email}},
                                       {"storagePath", {"txtSaveTo", &ItemFields::storagePath}},
                                       {"password", {"txtPassword", &ItemFields::password}}};
    return fields.value(field, {"txtDescription", &ItemFields::description, "plainText"});
}

} // namespace

class TestHostileNames : public QObject
{
    Q_OBJECT
private slots:
    void storedAsTypedOrRefused_data()
    {
        // message: "" when it is stored.
        test::columns<int, QString, QString, QString, QString, QString>(
            {"level", "mode", "field", "typed", "stored", "message"});
        const QString hostile = QString::fromUtf8("O'Brien 100%_; [x] \\ \" ملف Cafe\xCC\x81 "
                                                  "\xF0\x9F\x93\x81");
        const QString email = QStringLiteral("o'brien+100%_x;[a]@example.org");
        for (const char* mode : {"Add", "Edit"}) {
            // Stored as typed unless refused, or unless `stored` says otherwise.
            const auto row = [&](const char* what, int level, const char* field,
                                 const QString& typed, const QString& message = {},
                                 const QString& stored = {}) {
                QTest::addRow("%s %s %s", kLevelWords[level], mode, what)
                    << level << QString(mode) << QString(field) << typed
                    << (!message.isEmpty() ? QString()
                        : stored.isNull()  ? typed
                                           : stored)
                    << message;
            };
            for (int level = 0; level < 4; ++level)
                for (const Case& c : nameCases())
                    row(qPrintable("name: " + QString(c.name)), level, "name", c.typed,
                        c.refused ? nameRefusal(c.refused, level) : QString(), c.stored);
            row("email, hostile", 2, "email", email);
            row("email at width", 2, "email", QString(100, 'e'));
            row("email one past width", 2, "email", QString(101, 'e'),
                tooLong("email address", 2, 100));
            row("storage path, hostile", 0, "storagePath",
                QString::fromUtf8("/srv/O'Brien 100%_; [x] \xF0\x9F\x93\x81"));
            row("storage path at width", 0, "storagePath", "/" + QString(249, 'p'));
            row("storage path one past width", 0, "storagePath", "/" + QString(250, 'p'),
                tooLong("storage path", 0, 250));
            row("password, hostile", 0, "password", "'%_;\\[]\"x");
            // Characters whose stored form wraps round to a control character.
            row("password, high Latin-1 at width", 0, "password", QString::fromUtf8("õ÷øùúûüýþÿ"));
            row("password, emoji", 0, "password", QString::fromUtf8("\xF0\x9F\x99\x82 ok"));
            // The box takes no more than the column holds: what it shows is what is kept.
            row("password one past width", 0, "password", "abcdefghijk", {}, "abcdefghij");
            for (int level = 0; level < 4; ++level)
                row("description, hostile", level, "description", hostile + "\nline two\t;");
        }
    }
    void storedAsTypedOrRefused()
    {
        QFETCH(int, level);
        QFETCH(QString, mode);
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(QString, message);
        DialogHarness h;
        ItemStore items(h.db());
        const Level lv = Level(level);
        const Field box = fieldOf(field);
        // New items go below item 1 of the level above; properties change item 1.
        const qint32 parent = level == 0 ? -1 : 1;
        const int countBefore = items.count(lv);
        const std::optional<ItemFields> item1Before = items.fields(lv, 1);

        ItemDialog dialog(lv, h.context());
        if (mode == "Add") {
            dialog.setAdd(parent);
            if (field != "name")
                test::edit(&dialog, "txtName")->setText("Plain name");
        } else {
            QVERIFY(dialog.setEdit(1));
        }
        if (field == "storagePath")
            child<QRadioButton>(&dialog, "optStorage1")->click();
        child<QWidget>(&dialog, box.control)->setProperty(box.text, typed);
        if (!message.isEmpty())
            h.prompter.expect(message);
        dialog.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));

        if (!message.isEmpty()) {
            // Refused: the dialog stays with what was typed, and the store is as it was.
            QCOMPARE(dialog.result(), int(QDialog::Rejected));
            QCOMPARE(items.count(lv), countBefore);
            QCOMPARE(items.fields(lv, 1)->name, item1Before->name);
            QCOMPARE((*items.fields(lv, 1)).*box.stored, (*item1Before).*box.stored);
            QVERIFY(h.nav.calls.isEmpty());
            return;
        }
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        const qint32 id = dialog.itemId();
        QCOMPARE(items.count(lv), countBefore + (mode == "Add" ? 1 : 0));
        const std::optional<ItemFields> f = items.fields(lv, id);
        QVERIFY(f);
        QCOMPARE((*f).*box.stored, stored);

        // Found as typed: among its parent's children, by the name test that refuses doubles
        // (which ignores case and treats % and _ as themselves), and in its dialog again.
        const QString name = f->name;
        bool listed = false;
        for (const ItemRow& row : items.children(lv, parent))
            listed = listed || (row.id == id && row.name == name);
        QVERIFY(listed);
        QVERIFY(items.nameTaken(lv, parent, name, -1));
        QVERIFY(items.nameTaken(lv, parent, name.toUpper(), -1));
        QVERIFY(!items.nameTaken(lv, parent, name, id)); // only itself has it
        if (name.contains('%') || name.contains('_')) {
            QString lookalike = name;
            lookalike.replace('%', 'Q').replace('_', 'Q');
            QVERIFY(!items.nameTaken(lv, parent, lookalike, -1));
        }
        if (lv == Level::Cabinet)
            QVERIFY(items.cabinetNameExists(name));
        ItemDialog again(lv, h.context());
        QVERIFY(again.setEdit(id));
        QCOMPARE(child<QWidget>(&again, box.control)->property(box.text).toString(), stored);
    }
};

QMR_TEST(TestHostileNames)
#include "testhostilenames.moc"
