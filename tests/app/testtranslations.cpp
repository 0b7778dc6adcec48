#include <QFile>
#include <QSet>
#include <QTest>
#include <QXmlStreamReader>

#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

namespace {

// A source text; a control character in it is written as <byte value="xd"/>.
QString sourceText(QXmlStreamReader& xml)
{
    QString text;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::Characters)
            text += xml.text();
        else if (token == QXmlStreamReader::StartElement && xml.name() == QLatin1String("byte"))
            text += QChar(xml.attributes().value(QLatin1String("value")).mid(1).toInt(nullptr, 16));
        else if (token == QXmlStreamReader::EndElement && xml.name() == QLatin1String("source"))
            break;
    }
    return text;
}

// Every context and source text of the template the build made, as "context|source".
QSet<QString> templateMessages(const QString& path)
{
    QSet<QString> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            messages.insert(context + QLatin1Char('|') + sourceText(xml));
    }
    if (xml.hasError())
        qWarning("%s at line %lld", qPrintable(xml.errorString()), xml.lineNumber());
    return messages;
}

} // namespace

// The translation template is what translators get: a text shown to people that does not go
// through tr() is missing from it and stays English in every language.
class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void templateHoldsTheProgramsTexts_data()
    {
        using qmr::test::row;
        qmr::test::columns<QString, QString>({"context", "source"});
        row("viewer's save question", "qmr::PageSaver",
            "The file named '%1' aready exists.\nDo you want to overwrite this file?");
        row("import report", "qmr::ImportReport", "%1 files imported.\r\n%2 shortcuts created.");
        row("menu text from the menu table", "qmr::NavMenus", "&Find...");
        row("item dialog caption from its table", "qmr::ItemDialog", "File Cabinet Properties (");
        row("command-line message", "qmr::CommandLine", "--repair goes with --check.");
        row("store check summary", "qmr::StoreCheck", "No problems found.");
        row("mail message", "qmr::MailSender", "Message sent.");
        row("print failure", "qmr::PrinterTarget", "Cannot print to %1.");
        row("form text", "ItemDialog", "Cancel");
    }

    void templateHoldsTheProgramsTexts()
    {
        QFETCH(QString, context);
        QFETCH(QString, source);
        static const QSet<QString> messages = templateMessages(QStringLiteral(QMR_TS_FILE));
        QVERIFY2(!messages.isEmpty(), "The build made no translation template: " QMR_TS_FILE);
        QVERIFY2(messages.contains(context + QLatin1Char('|') + source),
                 qPrintable(QStringLiteral("Not in the template: %1 / %2").arg(context, source)));
    }
};

QMR_TEST(TestTranslations)
#include "testtranslations.moc"
