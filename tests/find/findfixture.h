#pragma once

#include <QDateTime>
#include <QTest>
#include <memory>
#include <vector>

#include "store/schema.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/datarow.h"

namespace qmr::test {

// The sample store with what searching needs on top: descriptions, amounts, page sizes and
// scan dates, a second open cabinet and a document inside the locked one.
//
//   Home Papers (1) / Bank (1) / Checking (1): March statement (1, 2 pages), O'Brien's letter
//                                               (2, no pages), Checking fees (5, 1 page)
//                              / Savings (2): empty
//                  / Taxes (2) / 2025 (3): Return (3, 1 page), Müller Ärztekammer (7)
//   Private (2, "secret") / Health (3) / Doctor (4): Checkup (4, 1 page)
//   Office (3) / Clients (4) / Acme (5): Acme tax bill (6, 2 pages)
struct FindFixture
{
    TestHome home;
    std::unique_ptr<FixtureStore> store;
    // Every session opened stays until the fixture goes: a dialog may outlive the next one.
    std::vector<std::unique_ptr<Session>> sessions;

    void build()
    {
        store = std::make_unique<FixtureStore>(home.home());
        FixtureStore& s = *store;
        s.fillSample();
        Database& db = s.db();
        db.execute("UPDATE Document SET Description = 'Bank statement for March' WHERE "
                   "DocumentId = 1");
        db.execute("UPDATE Document SET Amount = 15 WHERE DocumentId = 2");
        db.execute("UPDATE Folder SET Description = 'Everyday account' WHERE FolderId = 1");
        db.execute("UPDATE Folder SET Description = 'Rainy day money' WHERE FolderId = 2");
        page(s.document(4, "Checkup", QDate(2025, 6, 1), 80.0), 1, QDate(2025, 6, 2), 5000);
        page(s.document(1, "Checking fees", QDate(2026, 2, 1), 12.0), 1, QDate(2026, 2, 3), 3000);
        const qint32 acme = s.folder(s.drawer(s.cabinet("Office"), "Clients"), "Acme");
        const qint32 bill = s.document(acme, "Acme tax bill", QDate(2004, 3, 15), 15.0);
        page(bill, 1, QDate(2004, 1, 10), 150);
        page(bill, 2, QDate(2004, 2, 20), 900);
        s.document(3, "Müller Ärztekammer");
        // Scan dates and sizes of the sample's own pages: March 2026, a few thousand bytes.
        db.execute("UPDATE Page SET ScanDate = '2026-03-14 00:00:00', FileSize = 4000 WHERE "
                   "PageId <= 3");
    }

    void page(qint32 document, int number, const QDate& scanned, qint64 size)
    {
        const qint32 id = store->pageRow(document, number);
        store->db().execute("UPDATE Page SET ScanDate = ?, FileSize = ? WHERE PageId = ?",
                            {scanned, qlonglong(size), id});
    }

    Session& open()
    {
        sessions.push_back(std::make_unique<Session>(home.home(), home.settings()));
        Session& session = *sessions.back();
        StoreSchema::openDatabase(session.db(), home.home());
        return session;
    }
};

} // namespace qmr::test
