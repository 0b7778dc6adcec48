#include "core/pagewords.h"

#include <algorithm>

namespace qmr {

namespace {

bool isWordCharacter(QChar c)
{
    return c.isLetterOrNumber() || c.category() == QChar::Other_PrivateUse ||
           c.category() == QChar::Mark_NonSpacing || c.category() == QChar::Mark_SpacingCombining;
}

void addTerm(QList<PageWords::Term>& terms, const QString& text, bool prefix)
{
    PageWords::Term term{PageWords::wordsOf(text), prefix};
    for (QString& word : term.words)
        word = PageWords::fold(word);
    // Punctuation alone is no term: it would match nothing, or everything.
    if (!term.words.isEmpty())
        terms << term;
}

} // namespace

QString PageWords::fold(const QString& word)
{
    const QString decomposed = word.normalized(QString::NormalizationForm_KD);
    QString bare;
    bare.reserve(decomposed.size());
    for (const QChar c : decomposed)
        if (c.category() != QChar::Mark_NonSpacing && c.category() != QChar::Mark_SpacingCombining)
            bare += c;
    return bare.toCaseFolded();
}

QStringList PageWords::wordsOf(const QString& text)
{
    QStringList words;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool inWord = i < text.size() && isWordCharacter(text.at(i));
        if (inWord && start < 0)
            start = i;
        else if (!inWord && start >= 0) {
            words << text.mid(start, i - start);
            start = -1;
        }
    }
    return words;
}

PageWords PageWords::parse(const QString& typed)
{
    PageWords result;
    qsizetype i = 0;
    while (i < typed.size()) {
        if (typed.at(i).isSpace()) {
            ++i;
            continue;
        }
        qsizetype end;
        QString text;
        if (typed.at(i) == QLatin1Char('"')) {
            // A phrase runs to the next quote, or to the end when it is not closed.
            end = typed.indexOf(QLatin1Char('"'), i + 1);
            if (end < 0)
                end = typed.size();
            text = typed.mid(i + 1, end - i - 1);
            end = std::min(end + 1, typed.size());
        } else {
            end = i;
            while (end < typed.size() && !typed.at(end).isSpace() &&
                   typed.at(end) != QLatin1Char('"'))
                ++end;
            text = typed.mid(i, end - i);
        }
        const bool starAfter = end < typed.size() && typed.at(end) == QLatin1Char('*');
        const bool prefix = starAfter || text.endsWith(QLatin1Char('*'));
        addTerm(result.m_terms, text, prefix);
        i = starAfter ? end + 1 : end;
    }
    return result;
}

QList<int> PageWords::matchedWords(const QStringList& pageWords) const
{
    QList<int> matched;
    for (const Term& term : m_terms) {
        const qsizetype n = term.words.size();
        for (qsizetype start = 0; start + n <= pageWords.size(); ++start) {
            bool here = true;
            for (qsizetype k = 0; k < n && here; ++k) {
                const QString& word = pageWords.at(start + k);
                here = (term.prefix && k == n - 1) ? word.startsWith(term.words.at(k))
                                                   : word == term.words.at(k);
            }
            if (here)
                for (qsizetype k = 0; k < n; ++k)
                    matched << int(start + k);
        }
    }
    std::sort(matched.begin(), matched.end());
    matched.erase(std::unique(matched.begin(), matched.end()), matched.end());
    return matched;
}

} // namespace qmr
