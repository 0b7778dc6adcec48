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

// Why a name is refused: 'c' a character not allowed, 'l' too long; 0 when it is stored.
// Each bad character, a blank name and a plain name one past the width are refused in the
// store's rules and the dialog's refusals.
struct Case
{
    const char* name;
    QString typed;
    char refused = 0;
};

// Names that have broken programs: quoting, patterns, statement text, scripts that run the
// other way, characters built of several, characters beyond 16 bits, and lengths at and one
// past the column's width, counted in characters as the store counts them.
QVector<Case> nameCases()
{
    const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80"); // one character, two units
    const QString accent = QString::fromUtf8("e\xCC\x81");       // e + combining acute
    return {
        {"percent", "100% of 50%"},
        {"underscore", "a_b__c_"},
        {"semicolon and statement", "x'); DROP TABLE Cabinet; --"},
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
        {"at width", QString(80, 'w')},
        {"emoji at width", emoji.repeated(80)},
        {"emoji one past width", emoji.repeated(81), 'l'},
        {"combining at width", accent.repeated(40)},
        {"combining one past width", accent.repeated(40) + "x", 'l'},
    };
}

QString nameRefusal(char why, int level)
{
    return why == 'c' ? "The following characters are not allowed:\n\\ / : * ? \" < > | ."
                      : QStringLiteral("The name is too long: a %1's name can have at most 80 "
                                       "characters.")
                            .arg(QLatin1String(kLevelWords[level]));
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
                        c.refused ? nameRefusal(c.refused, level) : QString());
            row("email, hostile", 2, "email", email);
            // One past these widths is among the dialog's refusals.
            row("email at width", 2, "email", QString(100, 'e'));
            row("storage path, hostile", 0, "storagePath",
                QString::fromUtf8("/srv/O'Brien 100%_; [x] \xF0\x9F\x93\x81"));
            row("storage path at width", 0, "storagePath", "/" + QString(249, 'p'));
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
        auto [level, mode, field, typed, stored, message] =
            test::fetch<int, QString, QString, QString, QString, QString>(
                "level", "mode", "field", "typed", "stored", "message");
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
        // (which treats % and _ as themselves; its case rule is the store's), and in its
        // dialog again.
        const QString name = f->name;
        bool listed = false;
        for (const ItemRow& row : items.children(lv, parent))
            listed = listed || (row.id == id && row.name == name);
        QVERIFY(listed);
        QVERIFY(items.nameTaken(lv, parent, name, -1));
        if (name.contains('%') || name.contains('_')) {
            QString lookalike = name;
            lookalike.replace('%', 'Q').replace('_', 'Q');
            QVERIFY(!items.nameTaken(lv, parent, lookalike, -1));
        }
        ItemDialog again(lv, h.context());
        QVERIFY(again.setEdit(id));
        QCOMPARE(child<QWidget>(&again, box.control)->property(box.text).toString(), stored);
    }
};

QMR_TEST(TestHostileNames)
#include "testhostilenames.moc"
