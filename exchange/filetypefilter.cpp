#include "exchange/filetypefilter.h"

namespace qmr {

FileTypeFilter FileTypeFilter::of(const QStringList& types)
{
    FileTypeFilter filter;
    filter.m_all = false;
    filter.m_none = types.isEmpty();
    if (filter.m_none)
        filter.m_text = QStringLiteral("zzzzz,");
    for (const QString& type : types)
        filter.m_text += type + QLatin1Char(',');
    filter.m_text = filter.m_text.toLower();
    return filter;
}

QString FileTypeFilter::extensionOf(const QString& fileName)
{
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : fileName.mid(dot + 1);
}

bool FileTypeFilter::accepts(const QString& fileName) const
{
    if (m_all)
        return true;
    if (m_none)
        return false;
    return m_text.contains(extensionOf(fileName).trimmed().toLower() + QLatin1Char(','));
}

QStringList FileTypeFilter::typesIn(const QStringList& fileNames)
{
    QStringList types;
    for (const QString& name : fileNames) {
        const int dot = name.lastIndexOf(QLatin1Char('.'));
        const QString type = (dot < 0 ? name : name.mid(dot + 1)).toUpper();
        if (!types.contains(type))
            types << type;
    }
    return types;
}

} // namespace qmr
