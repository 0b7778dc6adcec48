#pragma once

#include <QByteArray>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

#include "core/apphome.h"
#include "store/database.h"

namespace qmr::fuzz {

// A real store in a temporary home, made once per fuzzing process. Durability is of no use
// here, so the connection does not wait for the disk.
class FuzzStore
{
public:
    FuzzStore();
    const AppHome& home() const { return m_home; }
    Database& db() { return m_db; }
    // Writes the input as one of the home's text files.
    void writeFile(const QString& name, const uint8_t* data, size_t size) const;
    // Removes every item, so that each input starts from the same empty store.
    void clear();

private:
    QTemporaryDir m_dir;
    AppHome m_home;
    Database m_db;
};

// A property of the code that an input broke: reported, then the run stops as a crash would.
[[noreturn]] inline void broken(const char* what)
{
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

} // namespace qmr::fuzz
