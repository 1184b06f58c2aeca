#include "ui/handover/Handover.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QStandardPaths>

#include <array>
#include <memory>

namespace mirovane {

namespace {

constexpr int connectMs = 500;
constexpr int answerMs = 3000;

constexpr std::array answers{"elsewhere", "shown", "not found"};

QByteArray lineOf(const HandoverRequest& request) {
    const QJsonObject object{{QStringLiteral("datafile"), request.datafile},
                             {QStringLiteral("find"), request.find}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

HandoverRequest requestOf(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    return {object.value(QStringLiteral("datafile")).toString(),
            object.value(QStringLiteral("find")).toString()};
}

std::optional<HandoverAnswer> answerOf(const QByteArray& line) {
    for (std::size_t answer = 0; answer < answers.size(); ++answer)
        if (line.trimmed() == answers[answer])
            return static_cast<HandoverAnswer>(answer);
    return std::nullopt;
}

/// Nothing when the other side is silent.
std::optional<HandoverAnswer> ask(const QString& path, const HandoverRequest& request) {
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(connectMs)) {
        if (socket.error() == QLocalSocket::ConnectionRefusedError)
            QFile::remove(path); // nobody listens there, and nobody will
        return std::nullopt;
    }
    socket.write(lineOf(request));
    while (!socket.canReadLine())
        if (!socket.waitForReadyRead(answerMs))
            return std::nullopt;
    return answerOf(socket.readLine());
}

} // namespace

QString handoverFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/mirovane");
}

std::optional<HandoverAnswer> handOver(const QString& folder, const HandoverRequest& request) {
    const QDir windows(folder);
    for (const QString& name : windows.entryList({QStringLiteral("window-*")}, QDir::System))
        if (const auto answer = ask(windows.filePath(name), request);
            answer && *answer != HandoverAnswer::Elsewhere)
            return answer;
    return std::nullopt;
}

/// The process number makes the name this program's own: whatever is there by it is left over.
CHandoverServer::CHandoverServer(const QString& folder, Handler handler) : handler_(std::move(handler)) {
    QDir().mkpath(folder);
    const QString path =
        QDir(folder).filePath(QStringLiteral("window-%1").arg(QCoreApplication::applicationPid()));
    QLocalServer::removeServer(path);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    server_.listen(path);
    connect(&server_, &QLocalServer::newConnection, this, &CHandoverServer::serve);
}

void CHandoverServer::serve() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine())
                return;
            const HandoverAnswer answer = handler_(requestOf(socket->readLine()));
            socket->write(QByteArray(answers[static_cast<std::size_t>(answer)]) + '\n');
            socket->disconnectFromServer();
        });
    }
}

} // namespace mirovane
