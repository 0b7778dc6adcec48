#pragma once

#include <QString>
#include <stdexcept>

namespace qmr {

// A failed store or file operation. Commands catch it, show its text and end; the program
// goes on.
class StoreError : public std::runtime_error
{
public:
    explicit StoreError(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message)
    {
    }
    const QString& message() const { return m_message; }

private:
    QString m_message;
};

} // namespace qmr
