#pragma once

#include <QStringList>
#include <QVariant>
#include <deque>

#include "core/choosers.h"

namespace qmr::test {

// Choosers that hand back scripted answers; a question with no answer queued is counted and
// answered as Cancel.
class ScriptedChoosers : public Choosers
{
public:
    // Nothing (std::nullopt) stands for Cancel.
    void queuePassword(const std::optional<QString>& reply)
    {
        m_passwords.push_back(toVariant(reply));
    }
    void queueDirectory(const std::optional<QString>& reply) { m_dirs.push_back(toVariant(reply)); }
    void queueSaveFile(const std::optional<QString>& reply) { m_saves.push_back(toVariant(reply)); }
    void queueFileToOpen(const std::optional<QString>& reply)
    {
        m_files.push_back(toVariant(reply));
    }

    std::optional<QString> askPassword() override;
    std::optional<QString> chooseDirectory(const QString& start) override;
    // Records the start and the filter shown first.
    std::optional<QString> chooseFileToOpen(const QString& start, const QStringList& filters,
                                            int selectedFilter) override;
    // Records the path; answers with the queued failure text, if any.
    std::optional<QString> openFile(const QString& path) override;
    // Records the proposed path; answers with the queued name.
    std::optional<QString> saveFile(const SaveFileRequest& request) override;
    const QStringList& saveStarts() const { return m_saveStarts; }
    const QStringList& fileStarts() const { return m_fileStarts; }
    void failEditor(const QString& reason) { m_editorFailure = reason; }
    const QStringList& edited() const { return m_edited; }
    const QStringList& directoryStarts() const { return m_starts; }

    int passwordAsks() const { return m_passwordAsks; }
    int unanswered() const { return m_unanswered; }
    bool allUsed() const
    {
        return m_passwords.empty() && m_dirs.empty() && m_saves.empty() && m_files.empty();
    }

private:
    static QVariant toVariant(const std::optional<QString>& reply)
    {
        return reply ? QVariant(*reply) : QVariant();
    }
    std::optional<QString> take(std::deque<QVariant>& queue);

    std::deque<QVariant> m_passwords;
    std::deque<QVariant> m_dirs;
    std::deque<QVariant> m_saves;
    QStringList m_saveStarts;
    std::deque<QVariant> m_files;
    QStringList m_fileStarts;
    QStringList m_edited;
    QStringList m_starts;
    QString m_editorFailure;
    int m_passwordAsks = 0;
    int m_unanswered = 0;
};

} // namespace qmr::test
