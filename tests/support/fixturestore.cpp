#include <QDateTime>
#include <QFileInfo>
#include <QImage>
#include <QPainter>

#include "store/cipher.h"
#include "store/pagepaths.h"
#include "store/schema.h"
#include "tests/support/fixturestore.h"

namespace qmr::test {

FixtureStore::FixtureStore(const AppHome& home) : m_home(home)
{
    m_home.ensureExists();
    StoreSchema::openDatabase(m_db, m_home);
}

qint32 FixtureStore::cabinet(const QString& name, const QString& password)
{
    m_db.execute(QStringLiteral("INSERT INTO Cabinet (Name, Password, Description, Storage) "
                                "VALUES (?, ?, '', 0)"),
                 {name, encryptText(password, Cipher::key())});
    return m_db.lastInsertId();
}

qint32 FixtureStore::drawer(qint32 cabinetId, const QString& name)
{
    m_db.execute(QStringLiteral("INSERT INTO Drawer (CabinetId, Name) VALUES (?, ?)"),
                 {cabinetId, name});
    return m_db.lastInsertId();
}

qint32 FixtureStore::folder(qint32 drawerId, const QString& name, const QString& email)
{
    m_db.execute(QStringLiteral("INSERT INTO Folder (DrawerId, Name, Email) VALUES (?, ?, ?)"),
                 {drawerId, name, email.isEmpty() ? QVariant() : QVariant(email)});
    return m_db.lastInsertId();
}

qint32 FixtureStore::document(qint32 folderId, const QString& name, const QDate& date,
                              const QVariant& amount)
{
    m_db.execute(QStringLiteral("INSERT INTO Document (FolderId, Name, DateOnDocument, Amount) "
                                "VALUES (?, ?, ?, ?)"),
                 {folderId, name, date.isValid() ? QVariant(date) : QVariant(), amount});
    return m_db.lastInsertId();
}

qint32 FixtureStore::pageRow(qint32 documentId, const QVariant& pageNumber)
{
    m_db.execute(QStringLiteral("INSERT INTO Page (DocumentId, Name, PageNumber, ScanDate, "
                                "Filetype) VALUES (?, '', ?, ?, 'JPG')"),
                 {documentId, pageNumber, QDateTime(QDate(2026, 3, 14), QTime(9, 30))});
    return m_db.lastInsertId();
}

qint32 FixtureStore::page(qint32 documentId, int pageNumber, const QSize& size)
{
    const qint32 id = pageRow(documentId, pageNumber);
    PagePaths paths(m_home);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter p(&image);
        p.setPen(QPen(Qt::darkGray, 4));
        for (int y = size.height() / 8; y < size.height() * 7 / 8; y += size.height() / 20)
            p.drawLine(size.width() / 10, y, size.width() * 9 / 10, y);
        QFont font = p.font();
        font.setPixelSize(size.height() / 8);
        p.setFont(font);
        p.setPen(Qt::darkBlue);
        p.drawText(image.rect(), Qt::AlignCenter, QString::number(pageNumber));
    }
    const QString file = paths.computedPagePath(id);
    paths.ensurePathInHome(file);
    image.save(file, "JPG", 80);
    const QString thumb = paths.computedThumbPath(id);
    paths.ensurePathInHome(thumb);
    image.scaled(100, 100, Qt::KeepAspectRatio, Qt::SmoothTransformation).save(thumb, "JPG", 80);
    m_db.execute(QStringLiteral("UPDATE Page SET FileSize = ? WHERE PageId = ?"),
                 {QFileInfo(file).size(), id});
    return id;
}

void FixtureStore::fillSample()
{
    const qint32 home = cabinet(QStringLiteral("Home Papers"));
    const qint32 bank = drawer(home, QStringLiteral("Bank"));
    const qint32 taxes = drawer(home, QStringLiteral("Taxes"));
    const qint32 checking = folder(bank, QStringLiteral("Checking"));
    folder(bank, QStringLiteral("Savings"));
    const qint32 y2025 = folder(taxes, QStringLiteral("2025"), QStringLiteral("me@example.org"));
    const qint32 march =
        document(checking, QStringLiteral("March statement"), QDate(2026, 3, 31), 1234.5);
    document(checking, QStringLiteral("O'Brien's letter"));
    const qint32 ret = document(y2025, QStringLiteral("Return"), QDate(2026, 4, 15));
    page(march, 1);
    page(march, 2);
    page(ret, 1);
    const qint32 locked = cabinet(QStringLiteral("Private"), QStringLiteral("secret"));
    const qint32 health = drawer(locked, QStringLiteral("Health"));
    folder(health, QStringLiteral("Doctor"));
}

} // namespace qmr::test
