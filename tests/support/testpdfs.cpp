#include <QFile>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRandomGenerator>

#include "tests/support/datarow.h"
#include "tests/support/testpdfs.h"

namespace qmr::test {

bool TestPdfs::printed(const QString& path, const QList<QStringList>& pages)
{
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(300);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(200); // 48 points: large enough to show in a 100 pixel tile
    painter.setFont(font);
    painter.setPen(Qt::black);
    for (qsizetype i = 0; i < pages.size(); ++i) {
        if (i > 0 && !writer.newPage())
            return false;
        int y = 300;
        for (const QString& line : pages.at(i)) {
            painter.drawText(QPoint(200, y), line);
            y += 300;
        }
    }
    return painter.end();
}

QByteArray TestPdfs::assemble(const QList<QByteArray>& objects, const QByteArray& trailerExtra)
{
    QByteArray pdf("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");
    QList<qsizetype> offsets;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        offsets << pdf.size();
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects.at(i) + "\nendobj\n";
    }
    const qsizetype xref = pdf.size();
    pdf += "xref\n0 " + QByteArray::number(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (const qsizetype offset : offsets)
        pdf += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    pdf += "trailer\n<< /Size " + QByteArray::number(objects.size() + 1) + " /Root 1 0 R " +
           trailerExtra + " >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
    return pdf;
}

bool TestPdfs::encrypted(const QString& path)
{
    // The standard security handler, revision 2. The /U entry is what the empty password
    // must reproduce to open the file; random bytes never match, so a password is needed.
    const auto hex = [](int bytes) {
        QByteArray raw(bytes, '\0');
        for (char& c : raw)
            c = char(QRandomGenerator::global()->bounded(256));
        return '<' + raw.toHex() + '>';
    };
    const QList<QByteArray> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] >>",
        "<< /Filter /Standard /V 1 /R 2 /Length 40 /P -4 /O " + hex(32) + " /U " + hex(32) + " >>",
    };
    const QByteArray id = hex(16);
    return write(path, assemble(objects, "/Encrypt 4 0 R /ID [" + id + ' ' + id + ']'));
}

bool TestPdfs::noPages(const QString& path)
{
    return write(path, assemble({"<< /Type /Catalog /Pages 2 0 R >>",
                                 "<< /Type /Pages /Kids [] /Count 0 >>"},
                                QByteArray()));
}

bool TestPdfs::truncated(const QString& path)
{
    if (!printed(path, {{QStringLiteral("Truncated statement")}}))
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.resize(file.size() / 2);
}

bool TestPdfs::garbage(const QString& path)
{
    QByteArray bytes("%PDF-1.7\n");
    for (int i = 0; i < 4096; ++i)
        bytes += char(QRandomGenerator::global()->bounded(256));
    return write(path, bytes);
}

QStringList TestPdfs::refusedKinds()
{
    return {QStringLiteral("encrypted"), QStringLiteral("truncated"), QStringLiteral("garbage"),
            QStringLiteral("no pages"), QStringLiteral("empty file")};
}

bool TestPdfs::refused(const QString& kind, const QString& path)
{
    if (kind == QLatin1String("encrypted"))
        return encrypted(path);
    if (kind == QLatin1String("truncated"))
        return truncated(path);
    if (kind == QLatin1String("garbage"))
        return garbage(path);
    if (kind == QLatin1String("no pages"))
        return noPages(path);
    if (kind == QLatin1String("empty file"))
        return write(path, QByteArray());
    return false;
}

void TestPdfs::addKindRows()
{
    columns<QString>({"kind"});
    row("printed", QStringLiteral("printed"));
    for (const QString& kind : refusedKinds())
        row(qPrintable(kind), kind);
}

bool TestPdfs::write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace qmr::test
