#include "filing/clipboardfiles.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

namespace qmr {

namespace {

const QString kCopiedFiles = QStringLiteral("x-special/gnome-copied-files");

QStringList localFiles(const QList<QUrl>& urls)
{
    QStringList files;
    for (const QUrl& url : urls)
        if (url.isLocalFile() && !url.toLocalFile().isEmpty())
            files << url.toLocalFile();
    return files;
}

} // namespace

QStringList ClipboardFiles::filesOf(const QMimeData* data)
{
    if (!data)
        return {};
    if (data->hasUrls())
        return localFiles(data->urls());
    if (data->hasFormat(kCopiedFiles)) {
        // "copy" or "cut", then one address a line.
        const QList<QByteArray> lines = data->data(kCopiedFiles).split('\n');
        QList<QUrl> urls;
        for (int i = 1; i < lines.size(); ++i)
            if (!lines.at(i).trimmed().isEmpty())
                urls << QUrl::fromEncoded(lines.at(i).trimmed());
        return localFiles(urls);
    }
    return {};
}

QMimeData* ClipboardFiles::mimeDataFor(const QStringList& files)
{
    QList<QUrl> urls;
    QByteArray copied("copy");
    for (const QString& file : files) {
        if (file.isEmpty())
            continue;
        const QUrl url = QUrl::fromLocalFile(file);
        urls << url;
        copied += '\n' + url.toEncoded();
    }
    auto* data = new QMimeData;
    data->setUrls(urls);
    data->setData(kCopiedFiles, copied);
    return data;
}

QStringList ClipboardFiles::getClipboardFiles()
{
    const QClipboard* clipboard = QGuiApplication::clipboard();
    return clipboard ? filesOf(clipboard->mimeData()) : QStringList();
}

bool ClipboardFiles::clipboardHasFiles()
{
    return !getClipboardFiles().isEmpty();
}

bool ClipboardFiles::setClipboardFiles(const QStringList& files)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return false;
    QMimeData* data = mimeDataFor(files);
    if (data->urls().isEmpty()) {
        delete data;
        return false;
    }
    clipboard->setMimeData(data);
    return true;
}

} // namespace qmr
