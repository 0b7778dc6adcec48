#pragma once

#include <QString>
#include <stdexcept>

namespace qmr {

// A failed store or file operation. Commands catch it, show its text and end; the program
// goes on. A refused value names its table and column, so a dialog can put the focus on the
// field it came from.
class StoreError : public std::runtime_error
{
public:
    explicit StoreError(const QString& message, const QString& table = QString(),
                        const QString& column = QString())
        : std::runtime_error(message.toStdString()), m_message(message), m_table(table),
          m_column(column)
    {
    }
    const QString& message() const { return m_message; }
    const QString& table() const { return m_table; }
    const QString& column() const { return m_column; }

private:
    QString m_message;
    QString m_table;
    QString m_column;
};

} // namespace qmr
