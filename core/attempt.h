#pragma once

#include <QString>
#include <optional>
#include <utility>
#include <variant>

namespace qmr {

// Why a step outside the store did not happen, in words the user can be shown (the store's
// own failures are StoreError). One type for files, mail and scanning, in place of a bool
// with a text beside it or an empty text that means all went well.
class Failure
{
public:
    explicit Failure(QString message) : m_message(std::move(message)) {}
    const QString& message() const { return m_message; }

private:
    QString m_message;
};

// The value of a step that can fail, or the Failure that stopped it.
template <typename T = void> class Attempt
{
public:
    Attempt(T value) : m_state(std::move(value)) {}
    Attempt(Failure failure) : m_state(std::move(failure)) {}

    bool ok() const { return std::holds_alternative<T>(m_state); }
    explicit operator bool() const { return ok(); }
    // Only when ok().
    T& value() { return std::get<T>(m_state); }
    const T& value() const { return std::get<T>(m_state); }
    // Only when not ok().
    const QString& why() const { return std::get<Failure>(m_state).message(); }

private:
    std::variant<T, Failure> m_state;
};

// A step that gives nothing back but may fail.
template <> class Attempt<void>
{
public:
    Attempt() = default; // it went well
    Attempt(Failure failure) : m_failure(std::move(failure)) {}

    bool ok() const { return !m_failure.has_value(); }
    explicit operator bool() const { return ok(); }
    // Only when not ok().
    const QString& why() const { return m_failure->message(); }

private:
    std::optional<Failure> m_failure;
};

} // namespace qmr
