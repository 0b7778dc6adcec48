#include "text/textworker.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <iostream>
#include <string>
#include <sys/resource.h>

#include "core/imageloader.h"
#include "text/pdftext.h"
#include "text/textrecognizer.h"

namespace qmr {

namespace {

// Reading is the least urgent work there is: the window and everything else go first.
constexpr int kWorkerNiceness = 15;

void say(const QByteArray& line)
{
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

} // namespace

QByteArray TextWorker::request(int pageId, const QString& path)
{
    // Percent-encoded: a file name may hold a tab or a line break, which would end the request.
    return QByteArray::number(pageId) + '\t' + path.toUtf8().toPercentEncoding("/") + '\n';
}

QByteArray TextWorker::answer(int pageId, const QList<TextIndex::Word>& words)
{
    QJsonArray list;
    for (const TextIndex::Word& word : words)
        list.append(
            QJsonArray{word.text, word.box.x(), word.box.y(), word.box.width(), word.box.height()});
    return QJsonDocument(QJsonObject{{"page", pageId}, {"words", list}})
        .toJson(QJsonDocument::Compact);
}

std::optional<TextWorker::Answer> TextWorker::parse(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    Answer result;
    if (object.contains("ready")) {
        result.ready = true;
        return result;
    }
    if (object.contains("failure")) {
        result.failure = object.value("failure").toString();
        return result;
    }
    if (!object.value("page").isDouble())
        return std::nullopt;
    result.pageId = object.value("page").toInt();
    for (const QJsonValue& value : object.value("words").toArray()) {
        const QJsonArray word = value.toArray();
        if (word.size() != 5)
            return std::nullopt;
        result.words << TextIndex::Word{
            word.at(0).toString(),
            QRect(word.at(1).toInt(), word.at(2).toInt(), word.at(3).toInt(), word.at(4).toInt())};
    }
    return result;
}

int TextWorker::run(int argc, char** argv)
{
    (void)::setpriority(PRIO_PROCESS, 0, kWorkerNiceness);
    QCoreApplication app(argc, argv);
    ImageLoader::applyLimit();
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype at = arguments.indexOf(QLatin1String(kOption));
    const QString languages =
        at >= 0 && at + 1 < arguments.size() ? arguments.at(at + 1) : QStringLiteral("eng");
    TextRecognizer recognizer;
    if (const Attempt<> started = recognizer.start(languages); !started) {
        say(QJsonDocument(QJsonObject{{"failure", started.why()}}).toJson(QJsonDocument::Compact));
        return 3;
    }
    say(QByteArrayLiteral("{\"ready\":true}"));
    std::string line;
    while (std::getline(std::cin, line)) {
        const QByteArray request = QByteArray::fromStdString(line);
        const qsizetype tab = request.indexOf('\t');
        bool ok = false;
        const int pageId = request.left(tab).toInt(&ok);
        if (tab < 0 || !ok)
            continue;
        const QString path =
            QString::fromUtf8(QByteArray::fromPercentEncoding(request.mid(tab + 1)));
        // A PDF (a shortcut's file) carries its words: they are taken as they are, and one
        // without them, or that needs a password, has none.
        if (PdfText::isPdf(path)) {
            say(answer(pageId, PdfText::words(path)));
            continue;
        }
        // A file that is gone or is no picture has no words; the reader records that.
        QImageReader reader(path);
        const LoadedImage loaded = ImageLoader::read(reader);
        say(answer(pageId, loaded.image.isNull() ? QList<TextIndex::Word>{}
                                                 : recognizer.read(loaded.image)));
    }
    return 0;
}

} // namespace qmr
