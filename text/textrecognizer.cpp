#include "text/textrecognizer.h"

#include <QDir>
#include <QFileInfo>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include "core/pagewords.h"
#include "text/textlog.h"

namespace qmr {

namespace {

// Below this the recogniser is guessing: the "words" it finds in a photograph or in the
// grain of a blank page fall here, while printed words score well above.
constexpr float kLeastConfidence = 55.0F;

// Where the language packs are: the recogniser's own default, unless TESSDATA_PREFIX says.
QString packFolder()
{
    const QByteArray prefix = qgetenv("TESSDATA_PREFIX");
    if (!prefix.isEmpty())
        return QString::fromLocal8Bit(prefix);
    for (const char* candidate : {"/usr/share/tesseract-ocr/5/tessdata",
                                  "/usr/share/tesseract-ocr/4.00/tessdata", "/usr/share/tessdata"})
        if (QFileInfo(QString::fromLatin1(candidate)).isDir())
            return QString::fromLatin1(candidate);
    return QString();
}

} // namespace

TextRecognizer::TextRecognizer() = default;

TextRecognizer::~TextRecognizer()
{
    if (m_api)
        m_api->End();
}

QStringList TextRecognizer::installedLanguages()
{
    const QString folder = packFolder();
    QStringList names;
    if (folder.isEmpty())
        return names;
    for (const QFileInfo& pack : QDir(folder).entryInfoList({"*.traineddata"}, QDir::Files)) {
        // "osd" finds a page's orientation and script; it reads no language.
        if (pack.completeBaseName() != QLatin1String("osd"))
            names << pack.completeBaseName();
    }
    names.sort();
    return names;
}

QString TextRecognizer::defaultLanguages(const QLocale& locale, const QStringList& installed)
{
    const QString own = QLocale::languageToCode(locale.language(), QLocale::ISO639Part2T);
    return installed.contains(own) ? own : QStringLiteral("eng");
}

QString TextRecognizer::chosenLanguages(const QString& setting)
{
    return setting.trimmed().isEmpty() ? defaultLanguages(QLocale(), installedLanguages())
                                       : setting.trimmed();
}

Attempt<> TextRecognizer::start(const QString& languages)
{
    const QStringList installed = installedLanguages();
    QStringList missing;
    for (const QString& language : languages.split(QLatin1Char('+'), Qt::SkipEmptyParts))
        if (!installed.contains(language))
            missing << language;
    if (languages.trimmed().isEmpty() || !missing.isEmpty())
        return Failure(tr("The language pack for %1 is not installed; text on the "
                          "pages is not read until it is.")
                           .arg(missing.isEmpty() ? languages : missing.join(QLatin1String(", "))));
    auto api = std::make_unique<tesseract::TessBaseAPI>();
    const QByteArray folder = packFolder().toLocal8Bit();
    if (api->Init(folder.constData(), languages.toLatin1().constData(), tesseract::OEM_LSTM_ONLY) !=
        0)
        return Failure(tr("The text recogniser could not load %1.").arg(languages));
    // No progress lines or warnings on the terminal: the worker speaks only through results.
    api->SetVariable("debug_file", "/dev/null");
    api->SetPageSegMode(tesseract::PSM_AUTO);
    m_api = std::move(api);
    m_languages = languages;
    return {};
}

QList<TextIndex::Word> TextRecognizer::read(const QImage& picture)
{
    QList<TextIndex::Word> words;
    if (!m_api || picture.isNull())
        return words;
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    m_api->SetImage(grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
    // A picture that does not say its resolution was most likely scanned at 300 dpi.
    const int dpi = qRound(picture.dotsPerMeterX() * 0.0254);
    m_api->SetSourceResolution(dpi >= 70 ? dpi : 300);
    if (m_api->Recognize(nullptr) != 0) {
        qCWarning(lcText) << "The recogniser gave up on a page of" << picture.size();
        return words;
    }
    std::unique_ptr<tesseract::ResultIterator> it(m_api->GetIterator());
    if (!it)
        return words;
    constexpr auto level = tesseract::RIL_WORD;
    do {
        const std::unique_ptr<char[]> text(it->GetUTF8Text(level));
        if (!text || it->Confidence(level) < kLeastConfidence)
            continue;
        const QString word = QString::fromUtf8(text.get()).trimmed();
        if (PageWords::wordsOf(word).isEmpty())
            continue;
        int left = 0, top = 0, right = 0, bottom = 0;
        it->BoundingBox(level, &left, &top, &right, &bottom);
        words << TextIndex::Word{word, QRect(QPoint(left, top), QPoint(right - 1, bottom - 1))};
    } while (it->Next(level));
    m_api->Clear();
    return words;
}

} // namespace qmr
