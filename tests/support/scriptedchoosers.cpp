#include "tests/support/scriptedchoosers.h"

namespace qmr::test {

std::optional<QString> ScriptedChoosers::take(std::deque<QVariant>& queue)
{
    if (queue.empty()) {
        ++m_unanswered;
        return std::nullopt;
    }
    const QVariant reply = queue.front();
    queue.pop_front();
    if (!reply.isValid())
        return std::nullopt;
    return reply.toString();
}

std::optional<QString> ScriptedChoosers::askPassword()
{
    ++m_passwordAsks;
    return take(m_passwords);
}

std::optional<QString> ScriptedChoosers::chooseDirectory(const QString& start)
{
    m_starts << start;
    return take(m_dirs);
}

std::optional<QString> ScriptedChoosers::chooseFileToOpen(const QString& start,
                                                          const QStringList& filters,
                                                          int selectedFilter)
{
    m_fileStarts << start + QStringLiteral(" | ") + filters.value(selectedFilter);
    return take(m_files);
}

std::optional<QString> ScriptedChoosers::openFile(const QString& path)
{
    m_edited << path;
    if (m_editorFailure.isEmpty())
        return std::nullopt;
    return m_editorFailure;
}

std::optional<QString> ScriptedChoosers::saveFile(const SaveFileRequest& request)
{
    m_saveStarts << request.start;
    return take(m_saves);
}

} // namespace qmr::test
