#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <memory>

#include "core/attempt.h"
#include "store/textindex.h"

namespace tesseract {
class TessBaseAPI;
}

namespace qmr {

// Reads the words on a page picture, with their boxes. One object keeps its languages loaded
// from page to page; it is meant for the reading worker, where a recogniser that crashes on a
// page takes only the worker down.
class TextRecognizer
{
    Q_DECLARE_TR_FUNCTIONS(TextRecognizer)

public:
    TextRecognizer();
    ~TextRecognizer();
    TextRecognizer(const TextRecognizer&) = delete;
    TextRecognizer& operator=(const TextRecognizer&) = delete;

    // Loads the languages, "+" between them ("eng+deu"); the failure names what is missing.
    Attempt<> start(const QString& languages);
    // The words in reading order. A blank page or a photograph gives none: words the
    // recogniser is not sure of, and marks that are no letters or digits, are left out.
    QList<TextIndex::Word> read(const QImage& picture);

    // The language packs installed, by their names ("eng", "deu"), sorted.
    static QStringList installedLanguages();
    // The language of `locale` when its pack is installed, else English.
    static QString defaultLanguages(const QLocale& locale, const QStringList& installed);
    // The languages to read with: the setting's, or when it is empty the default for the
    // user's locale among the packs installed.
    static QString chosenLanguages(const QString& setting);

private:
    std::unique_ptr<tesseract::TessBaseAPI> m_api;
    QString m_languages;
};

} // namespace qmr
