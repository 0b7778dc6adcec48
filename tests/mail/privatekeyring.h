#pragma once

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

namespace qmr::test {

// A session bus and a keyring daemon of the test's own, with their files in `dir`, so that the
// desktop's keyring is never touched. Both stop when this goes.
class PrivateKeyring
{
public:
    explicit PrivateKeyring(const QString& dir) : m_dir(dir) {}
    ~PrivateKeyring()
    {
        stop(m_keyring);
        stop(m_bus);
    }

    // Starts both and waits until the keyring holds its name on the bus, at most `limitMs`;
    // what went wrong, or "".
    QString start(int limitMs = 20000)
    {
        const QString config = m_dir.filePath("bus.conf");
        QFile file(config);
        if (!file.open(QIODevice::WriteOnly))
            return "cannot write " + config;
        // No service directories: nothing is started on demand behind the test's back.
        file.write(
            "<busconfig><type>session</type><listen>unix:path=" + m_dir.filePath("bus").toUtf8() +
            "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
            "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
            "<allow own=\"*\"/></policy></busconfig>\n");
        file.close();
        m_bus.start("dbus-daemon",
                    {"--config-file=" + config, "--print-address=1", "--nofork", "--nopidfile"});
        while (!m_bus.canReadLine() && m_bus.waitForReadyRead(limitMs)) {
        }
        m_address = QString::fromUtf8(m_bus.readLine()).trimmed();
        if (m_address.isEmpty())
            return "dbus-daemon: " + QString::fromLocal8Bit(m_bus.readAllStandardError());

        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DBUS_SESSION_BUS_ADDRESS", m_address);
        for (const char* name :
             {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
            m_dir.mkpath(name);
            QFile::setPermissions(m_dir.filePath(name),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            env.insert(name, m_dir.filePath(name));
        }
        m_keyring.setProcessEnvironment(env);

        QString failure;
        {
            QDBusConnection bus = QDBusConnection::connectToBus(m_address, "qmr-test-keyring");
            const QString name = "org.freedesktop.secrets";
            QDBusServiceWatcher watcher(name, bus, QDBusServiceWatcher::WatchForRegistration);
            QEventLoop loop;
            QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop,
                             &QEventLoop::quit);
            QObject::connect(&m_keyring, &QProcess::finished, &loop, &QEventLoop::quit);
            QTimer::singleShot(limitMs, &loop, &QEventLoop::quit);
            // The login keyring, made and unlocked with the password on standard input.
            m_keyring.start("gnome-keyring-daemon",
                            {"--foreground", "--components=secrets", "--unlock"});
            m_keyring.write("test password");
            m_keyring.closeWriteChannel();
            if (!bus.interface()->isServiceRegistered(name))
                loop.exec();
            if (!bus.interface()->isServiceRegistered(name))
                failure = "gnome-keyring-daemon did not take its name: " +
                          QString::fromLocal8Bit(m_keyring.readAllStandardError());
        }
        QDBusConnection::disconnectFromBus("qmr-test-keyring");
        return failure;
    }
    QString address() const { return m_address; }

private:
    static void stop(QProcess& process)
    {
        if (process.state() == QProcess::NotRunning)
            return;
        process.terminate();
        if (!process.waitForFinished(5000)) {
            process.kill();
            process.waitForFinished(5000);
        }
    }

    QDir m_dir;
    QProcess m_bus;
    QProcess m_keyring;
    QString m_address;
};

} // namespace qmr::test
