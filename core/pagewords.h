#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace qmr {

// What a person typed as "Words on the pages": words, "phrases in quotes" and a trailing * for
// a word's beginning. A page matches when every term is on it. Words are compared as the text
// index compares them: without regard to case or accents, letters and digits only.
class PageWords
{
public:
    struct Term
    {
        QStringList words;   // folded, in order: a phrase when more than one
        bool prefix = false; // the last word may go on
        bool operator==(const Term&) const = default;
    };

    static PageWords parse(const QString& typed);
    const QList<Term>& terms() const { return m_terms; }
    bool isEmpty() const { return m_terms.isEmpty(); }

    // A word as the index keeps it: case folded, accents taken off.
    static QString fold(const QString& word);
    // The words of a text as the index splits them: runs of letters and digits.
    static QStringList wordsOf(const QString& text);
    // Which of a page's words (folded, in reading order) belong to a place where a term
    // matches, in ascending order: the words the viewer boxes.
    QList<int> matchedWords(const QStringList& pageWords) const;

private:
    QList<Term> m_terms;
};

} // namespace qmr
