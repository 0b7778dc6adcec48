#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace qmr::test {

// A mail server on 127.0.0.1 that takes what it is given and keeps it: the envelope and the
// message as it came (dot-stuffing undone). It answers on the GUI thread, so a send from a
// worker thread meets it while the sender waits; it stops by itself after `lifetimeMs`.
class SmtpSink : public QObject
{
public:
    explicit SmtpSink(int lifetimeMs = 20000)
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        connect(&m_server, &QTcpServer::newConnection, this, &SmtpSink::accept);
        m_stop.setSingleShot(true);
        connect(&m_stop, &QTimer::timeout, this, [this] { m_server.close(); });
        m_stop.start(lifetimeMs);
    }
    quint16 port() const { return m_server.serverPort(); }

    // Answers "554" to RCPT TO for this address.
    void refuseRecipient(const QString& address) { m_refused = address; }
    // Offers AUTH PLAIN and keeps the password that the client logs in with.
    void offerLogin() { m_offerLogin = true; }

    QString loginPassword;
    QString mailFrom;
    QStringList recipients;
    QList<QByteArray> messages;

private:
    void accept()
    {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            socket->setParent(this);
            m_data = false;
            m_buffer.clear();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            socket->write("220 sink.test ESMTP ready\r\n");
        }
    }

    void read(QTcpSocket* socket)
    {
        m_buffer += socket->readAll();
        while (true) {
            if (m_data) {
                const qsizetype end = m_buffer.indexOf("\r\n.\r\n");
                if (end < 0 && !m_buffer.startsWith(".\r\n"))
                    return;
                QByteArray body =
                    m_buffer.startsWith(".\r\n") ? QByteArray() : m_buffer.left(end + 2);
                m_buffer.remove(0, m_buffer.startsWith(".\r\n") ? 3 : end + 5);
                body.replace("\r\n..", "\r\n.");
                if (body.startsWith(".."))
                    body.remove(0, 1);
                messages << body;
                m_data = false;
                socket->write("250 2.0.0 queued\r\n");
                continue;
            }
            const qsizetype end = m_buffer.indexOf("\r\n");
            if (end < 0)
                return;
            const QByteArray line = m_buffer.left(end);
            m_buffer.remove(0, end + 2);
            const QByteArray verb = line.left(4).toUpper();
            if (m_loginNext || (verb == "AUTH" && line.size() > 11)) {
                // "\0user\0password", after the command or on a line of its own.
                const QByteArray plain = m_loginNext ? line : line.mid(11);
                loginPassword =
                    QString::fromUtf8(QByteArray::fromBase64(plain).split('\0').value(2));
                m_loginNext = false;
                socket->write("235 2.7.0 ok\r\n");
            } else if (verb == "AUTH") {
                m_loginNext = true;
                socket->write("334 \r\n");
            } else if (verb == "EHLO")
                socket->write(m_offerLogin ? "250-sink.test\r\n250-AUTH PLAIN\r\n250 8BITMIME\r\n"
                                           : "250-sink.test\r\n250 8BITMIME\r\n");
            else if (verb == "MAIL") {
                mailFrom = address(line);
                socket->write("250 2.1.0 ok\r\n");
            } else if (verb == "RCPT") {
                const QString to = address(line);
                if (!m_refused.isEmpty() && to == m_refused) {
                    socket->write("554 5.7.1 no such user here\r\n");
                } else {
                    recipients << to;
                    socket->write("250 2.1.5 ok\r\n");
                }
            } else if (verb == "DATA") {
                m_data = true;
                socket->write("354 go ahead\r\n");
            } else if (verb == "QUIT") {
                socket->write("221 bye\r\n");
                socket->disconnectFromHost();
                return;
            } else {
                socket->write("502 5.5.2 not here\r\n");
            }
        }
    }

    static QString address(const QByteArray& line)
    {
        const qsizetype open = line.indexOf('<');
        const qsizetype close = line.indexOf('>', open);
        return open < 0 || close < 0 ? QString()
                                     : QString::fromUtf8(line.mid(open + 1, close - open - 1));
    }

    QTcpServer m_server;
    QTimer m_stop;
    QByteArray m_buffer;
    bool m_data = false;
    bool m_offerLogin = false;
    bool m_loginNext = false;
    QString m_refused;
};

} // namespace qmr::test
