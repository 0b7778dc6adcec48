#include "mail/smtptransport.h"

#include <cstring>
#include <curl/curl.h>

namespace qmr {

namespace {

struct Upload
{
    const QByteArray& data;
    qsizetype offset = 0;
};

size_t readMessage(char* buffer, size_t size, size_t count, void* user)
{
    auto* upload = static_cast<Upload*>(user);
    const qsizetype room = qsizetype(size * count);
    const qsizetype left = upload->data.size() - upload->offset;
    const qsizetype n = qMin(room, left);
    std::memcpy(buffer, upload->data.constData() + upload->offset, size_t(n));
    upload->offset += n;
    return size_t(n);
}

int progress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return static_cast<const std::atomic_bool*>(user)->load() ? 1 : 0;
}

// libcurl's global set-up is not thread-safe everywhere: done once, on the first caller's
// thread, which is the GUI thread (the transport is made there).
void initialiseOnce()
{
    static const bool done = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    Q_UNUSED(done);
}

QByteArray angled(const QString& address)
{
    QString a = address.trimmed();
    if (!a.startsWith(QLatin1Char('<')))
        a = QLatin1Char('<') + a + QLatin1Char('>');
    return a.toUtf8();
}

} // namespace

SmtpTransport::SmtpTransport(const MailSettings& settings) : m_settings(settings)
{
    initialiseOnce();
}

QString SmtpTransport::url() const
{
    QString host = m_settings.smtpServer.trimmed();
    if (host.isEmpty())
        host = QStringLiteral("localhost");
    if (host.contains(QLatin1Char(':')) && !host.startsWith(QLatin1Char('[')))
        host = QLatin1Char('[') + host + QLatin1Char(']'); // an IPv6 address
    const QString scheme = m_settings.smtpSecurity == QLatin1String("tls") ? QStringLiteral("smtps")
                                                                           : QStringLiteral("smtp");
    return QStringLiteral("%1://%2:%3").arg(scheme, host).arg(m_settings.smtpPort);
}

std::optional<MailFailure> SmtpTransport::send(const QByteArray& message, const QString& from,
                                               const QStringList& recipients,
                                               const std::atomic_bool& cancel)
{
    CURL* curl = curl_easy_init();
    if (!curl)
        return MailFailure{-1, QString()};
    char error[CURL_ERROR_SIZE] = {};
    Upload upload{message};
    curl_slist* rcpt = nullptr;
    for (const QString& r : recipients)
        rcpt = curl_slist_append(rcpt, angled(r).constData());

    const QByteArray url = this->url().toUtf8();
    const QByteArray sender = from.trimmed().isEmpty() ? QByteArray("<>") : angled(from);
    const QByteArray user = m_settings.smtpUser.toUtf8();
    const QByteArray password = m_settings.smtpPassword.toUtf8();
    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, error);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, kTotalSeconds);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, kStallSeconds);
    if (m_settings.smtpSecurity == QLatin1String("starttls"))
        curl_easy_setopt(curl, CURLOPT_USE_SSL, long(CURLUSESSL_ALL));
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, sender.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, rcpt);
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE, curl_off_t(message.size()));
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, readMessage);
    curl_easy_setopt(curl, CURLOPT_READDATA, &upload);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &cancel);

    const CURLcode result = curl_easy_perform(curl);
    curl_slist_free_all(rcpt);
    curl_easy_cleanup(curl);
    if (result == CURLE_OK)
        return std::nullopt;
    QString text = QString::fromUtf8(error).trimmed();
    if (text.isEmpty())
        text = QString::fromUtf8(curl_easy_strerror(result));
    return MailFailure{int(result), text};
}

} // namespace qmr
