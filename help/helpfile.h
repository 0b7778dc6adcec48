#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace qmr {

// The help text's format: lines; a first character "'" marks a comment anywhere. "[toc]"
// heads the table of contents, whose lines read N=title (N from 1 to 9); "[topicT,pageP]"
// heads page P of topic T. Heads are compared whole, in lower case. A section ends at a line
// that starts with "[" once trimmed, or at the end; the table also at an empty line. A page
// shows at most nine lines, and its lines beginning "centericon" or "centerpicture" are
// ignored.
class HelpFile
{
public:
    static constexpr int kLines = 9;

    static QString tocHead();
    static QString pageHead(int topic, int page);
    // The nine titles of the table ("" where none), or nothing when the file has no table.
    static std::optional<QStringList> readToc(const QStringList& lines);
    // The lines of a page, or nothing when the file has no such page.
    static std::optional<QStringList> readPage(const QStringList& lines, int topic, int page);

private:
    // The index of the line after the head, or nothing.
    static std::optional<qsizetype> find(const QStringList& lines, const QString& head);
};

} // namespace qmr
