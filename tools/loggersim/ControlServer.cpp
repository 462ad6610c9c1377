#include "loggersim/ControlServer.h"

#include <QFile>
#include <QLocalSocket>
#include <array>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace loggersim {

namespace {

constexpr int lineMax = 4096;

} // namespace

ControlServer::ControlServer(Fleet *fleet, QObject *parent)
    : QObject(parent), m_commands(fleet, [this] { emit quitRequested(); })
{
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::slotConnection);
}

bool ControlServer::listen(const QString &path)
{
    // A socket that an earlier run left behind is replaced; any other file there is not ours to overwrite.
    struct stat status
    {
    };
    if (::lstat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISSOCK(status.st_mode)) {
        m_error = QStringLiteral("there is another file");
        return false;
    }
    QLocalServer::removeServer(path);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    const bool listening = m_server.listen(path);
    m_error = listening ? QString() : m_server.errorString();
    return listening;
}

QString ControlServer::errorString() const
{
    return m_error;
}

void ControlServer::listenOnStandardInput()
{
    m_standardInput = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    connect(m_standardInput.get(), &QSocketNotifier::activated, this, [this] { slotStandardInput(); });
}

void ControlServer::slotConnection()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        auto input = std::make_shared<QByteArray>();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, input] {
            *input += socket->readAll();
            socket->write(answer(*input));
            socket->flush();
        });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void ControlServer::slotStandardInput()
{
    std::array<char, lineMax> buffer;
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count <= 0) {
        m_standardInput->setEnabled(false);
        return;
    }
    m_standardLines.append(buffer.data(), static_cast<int>(count));
    const QByteArray answers = answer(m_standardLines);
    std::fwrite(answers.constData(), 1, static_cast<size_t>(answers.size()), stdout);
    std::fflush(stdout);
}

QByteArray ControlServer::answer(QByteArray &input) const
{
    QByteArray answers;
    for (int end = input.indexOf('\n'); end >= 0; end = input.indexOf('\n')) {
        answers += m_commands.execute(input.left(end));
        input.remove(0, end + 1);
    }
    if (input.size() > lineMax)
        input.clear();
    return answers;
}

} // namespace loggersim
