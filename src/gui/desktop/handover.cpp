// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/handover.h"

#include "base/bundle/bundle.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QTimer>

#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr int answerMilliseconds = 3000;
constexpr int silenceMilliseconds = 5000;
constexpr qint64 longestMessage = qint64{16} * 1024 * 1024;
constexpr QDataStream::Version wire = QDataStream::Qt_6_0;
const QByteArray taken = QByteArrayLiteral("taken");

// Nobody else may listen there in the place of the running copy, or see what is handed over.
bool isOwnFolder(const QString& folder)
{
    const QFileInfo info(folder);
    return !folder.isEmpty() && info.isDir() && !info.isSymLink() && info.ownerId() == ::geteuid() &&
           (info.permissions() & (QFile::WriteGroup | QFile::WriteOther)) == 0;
}

// One by one: a list that is read as a whole makes room first for as many as are announced, and noise announces
// billions.
QStringList readPaths(QDataStream& stream)
{
    quint32 count = 0;
    stream >> count;
    QStringList paths;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QString path;
        stream >> path;
        paths << path;
    }
    return paths;
}

} // namespace

QString Handover::socketPath()
{
    const QByteArray home =
        QCryptographicHash::hash(homeFolder().toUtf8(), QCryptographicHash::Sha256).toHex().left(12);
    // Not the temporary folder of a run, which every start empties.
    for (const QString& folder : {qEnvironmentVariable("XDG_RUNTIME_DIR"), systemTemporaryFolder()}) {
        if (isOwnFolder(folder)) {
            return stringByAppendingPathComponent(folder, QStringLiteral("tavrix-%1.socket").arg(QLatin1String(home)));
        }
    }
    return {};
}

bool Handover::handOver(const QStringList& paths)
{
    const QString path = socketPath();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        return false;
    }
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(answerMilliseconds)) {
        return false;
    }
    QDataStream stream(&socket);
    stream.setVersion(wire);
    stream << paths;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(answerMilliseconds)) {
            return false;
        }
    }
    return socket.waitForReadyRead(answerMilliseconds) && socket.readAll() == taken;
}

Handover::Handover(QObject* parent) : QObject(parent)
{
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &Handover::takeConnection);
}

bool Handover::listen()
{
    const QString path = socketPath();
    if (path.isEmpty()) {
        return false;
    }
    QLocalServer::removeServer(path);
    const bool listens = server_.listen(path);
    if (!listens) {
        logLine(QStringLiteral("hand-over           :-( %@"), {server_.errorString()});
    }
    return listens;
}

void Handover::takeConnection()
{
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { takeText(socket); });
        // Who says nothing, or never ends, is not another start.
        QTimer::singleShot(silenceMilliseconds, socket, &QLocalSocket::abort);
        takeText(socket);
    }
}

void Handover::takeText(QLocalSocket* socket)
{
    if (socket->bytesAvailable() > longestMessage) {
        socket->abort();
        return;
    }
    QDataStream stream(socket);
    stream.setVersion(wire);
    stream.startTransaction();
    const QStringList paths = readPaths(stream);
    if (!stream.commitTransaction()) {
        return;
    }
    socket->write(taken);
    socket->flush();
    socket->disconnectFromServer();
    Q_EMIT arrived(paths);
}

} // namespace tavrix
