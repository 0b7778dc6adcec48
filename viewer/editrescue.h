#pragma once

#include <QCoreApplication>
#include <QImage>

#include "core/apphome.h"

namespace qmr {

class Prompter;
class Settings;

// A run that is made to end (a logout, SIGTERM) cannot ask whether the pictures changed in
// its viewers are to be saved, and must not lose them either. Each such picture goes into the
// home's folder "Recovered" as a PNG file named after its page, the page itself stays as it
// was, and the next start says where the pictures are.
class EditRescue
{
    Q_DECLARE_TR_FUNCTIONS(qmr::EditRescue)
public:
    EditRescue(const AppHome& home, Settings& settings) : m_home(home), m_settings(settings) {}

    // Keeps the unsaved picture of every viewer that is open; the number kept.
    int keepOpenViewers();
    // Keeps one picture of page `pageId`; false when it could not be written.
    bool keep(const QImage& picture, qint32 pageId);
    // What the last run kept, said once.
    static void tellWhatWasKept(Settings& settings, Prompter& prompter);

    QString folder() const;

private:
    const AppHome& m_home;
    Settings& m_settings;
};

} // namespace qmr
