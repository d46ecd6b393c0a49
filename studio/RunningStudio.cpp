#include "studio/RunningStudio.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QLocalSocket>
#include <QLockFile>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

// A studio that does not answer in this time hangs.
constexpr int kAnswerMs = 5000;
constexpr char kTaken = '1';
constexpr char kBusy = '0';
constexpr auto kStream = QDataStream::Qt_6_4;

/// Where studios meet that show the same; empty when there is no place for it.
QString SocketName() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!folder.startsWith(u'/')) return {};
    QCryptographicHash surroundings(QCryptographicHash::Sha1);
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "KV_REGISTRY",
                             "KV_ADDINS", "KV_TEXTS", "XDG_STATE_HOME"}) {
        surroundings.addData(qgetenv(name).append('\0'));
    }
    const QString hash = QString::fromLatin1(surroundings.result().first(8).toHex());
    return folder + u"/korvala-studio-"_s + hash;
}

/// What a running studio answers; 0: there is none, or it hangs.
char Ask(const QString& socket, const QString& project, const QByteArray& activation) {
    QLocalSocket studio;
    studio.connectToServer(socket);
    if (!studio.waitForConnected(kAnswerMs)) return 0;
    QDataStream stream(&studio);
    stream.setVersion(kStream);
    stream << project << activation;
    char answer = 0;
    while (studio.bytesAvailable() == 0 && studio.waitForReadyRead(kAnswerMs)) {
    }
    return studio.getChar(&answer) ? answer : '\0';
}

}  // namespace

bool RunningStudio::HandOver(const QString& project) {
    const QString socket = SocketName();
    if (socket.isEmpty()) return false;
    // Two that are started at once do not both find nobody.
    QLockFile lock(socket + u".lock"_s);
    if (!lock.tryLock(kAnswerMs)) return false;
    const char answer = Ask(socket, project, activation_);
    if (answer == 0) Listen(socket);
    return answer == kTaken;
}

void RunningStudio::Listen(const QString& socket) {
    // What a studio has left that was killed.
    QLocalServer::removeServer(socket);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_.listen(socket)) {
        qWarning("kvstudio: other starts do not find this window: %s",
                 qUtf8Printable(server_.errorString()));
    }
}

void RunningStudio::SetHandler(Show show) {
    show_ = std::move(show);
    connect(&server_, &QLocalServer::newConnection, this, &RunningStudio::Answer);
    if (server_.hasPendingConnections()) Answer();
}

void RunningStudio::Answer() {
    while (QLocalSocket* asking = server_.nextPendingConnection()) {
        connect(asking, &QLocalSocket::disconnected, asking, &QObject::deleteLater);
        const auto read = [this, asking] {
            QDataStream stream(asking);
            stream.setVersion(kStream);
            stream.startTransaction();
            QString project;
            QByteArray activation;
            stream >> project >> activation;
            if (!stream.commitTransaction()) return;  // the rest is still to come
            // Qt gives it to the desktop when the window asks to be in front.
            if (!activation.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", activation);
            asking->putChar(show_(project) ? kTaken : kBusy);
            asking->disconnectFromServer();
        };
        connect(asking, &QLocalSocket::readyRead, this, read);
        read();
    }
}

}  // namespace studio
