#include "HostileDevice.h"

#include <QtNetwork/QHostAddress>

#include <sys/socket.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

constexpr long kEndless = 3'000'000; // far beyond what the program takes of a text
constexpr qsizetype kMostPieces = 400;
constexpr std::size_t kLoggedLength = 80;
constexpr std::size_t kEndlessPiece = 50'000;

} // namespace

HostileDevice::HostileDevice(std::string zOutside) : mOutside(std::move(zOutside)) {
    mPatience.setSingleShot(true);
    mWhim.setSingleShot(true);
    QObject::connect(&mServer, &QTcpServer::newConnection, &mServer, [this] { OnConnection(); });
    QObject::connect(&mSendTimer, &QTimer::timeout, &mSendTimer, [this] { OnWantsToSend(); });
    QObject::connect(&mPatience, &QTimer::timeout, &mPatience, [this] { Leave(mpChoice->OneIn(2)); });
    QObject::connect(&mWhim, &QTimer::timeout, &mWhim, [this] { Send(mpTexts->Anything()); });
    BeginSession(0);
    if (!mServer.listen(QHostAddress(QLatin1String(kAddress)), ScriptedDevice::kPort)) {
        throw std::runtime_error("the hostile device cannot listen");
    }
}

void HostileDevice::BeginSession(std::uint64_t zSeed) {
    Leave(true);
    mpChoice = std::make_unique<SeededChoice>(zSeed);
    mpTexts = std::make_unique<HostileTexts>(*mpChoice, mOutside);
    mpTexts->mHonesty = mpChoice->Of(std::vector{2, 5, 10, 20, 40});
    mpTexts->mNameHonesty = mpChoice->Of(std::vector{1, 2, 4, 10});
}

// --- The connection ---

void HostileDevice::OnConnection() {
    while (QTcpSocket* connection = mServer.nextPendingConnection()) {
        Leave(false);
        mpConnection = connection;
        connection->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(connection, &QTcpSocket::readyRead, &mServer, [this] { OnReadable(); });
        ChooseManners();
        Send(mpTexts->Welcome());
    }
}

/// How this connection will go.
void HostileDevice::ChooseManners() {
    mGreatestPiece = mpChoice->Of(std::vector{0, 0, 0, 1, 3, 50, 2000});
    mBytesToLive = std::numeric_limits<long>::max();
    if (mpChoice->OneIn(8)) {
        mBytesToLive = mpChoice->Between(0, mpChoice->OneIn(2) ? 100 : 3000);
    }
    if (mpChoice->OneIn(10)) {
        mWhim.start(mpChoice->Between(1, 50));
    }
    const bool isPatient = mpChoice->OneIn(12);
    mPatience.setInterval(isPatient ? 1000 : mpChoice->Between(5, 60));
    if (isPatient && mpChoice->OneIn(10)) {
        mPatience.setInterval(600'000);
    }
}

void HostileDevice::Leave(bool zBreaksOff) {
    for (QTimer* timer : {&mSendTimer, &mPatience, &mWhim}) {
        timer->stop();
    }
    mIncoming.clear();
    mOutgoing.clear();
    mEndlessBytes = 0;
    QTcpSocket* const connection = mpConnection;
    mpConnection = nullptr;
    if (connection == nullptr) {
        return;
    }
    connection->disconnect(&mServer);
    if (zBreaksOff) {
        const linger atOnce{1, 0};
        ::setsockopt(static_cast<int>(connection->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                     sizeof atOnce);
        connection->abort();
    } else {
        connection->close();
    }
    connection->deleteLater();
}

// --- What it hears ---

/// The bodies of uploads are passed over by the way: they hold no command.
void HostileDevice::OnReadable() {
    static const QByteArray kEnd = "</cmd>";
    mIncoming += mpConnection->readAll();
    for (qsizetype end = mIncoming.indexOf(kEnd); end >= 0; end = mIncoming.indexOf(kEnd)) {
        const qsizetype begin = std::max<qsizetype>(mIncoming.lastIndexOf("<cmd ", end), 0);
        const std::string command = mIncoming.mid(begin, end - begin).toStdString();
        mIncoming.remove(0, end + kEnd.size());
        ++mCommandCount;
        std::cout << "The device is asked " << command.substr(0, kLoggedLength) << '\n';
        Answer(command);
    }
}

void HostileDevice::Answer(const std::string& zCommand) {
    const auto seldom = static_cast<std::size_t>(6 * mpTexts->mHonesty);
    mPatience.start();
    if (mpChoice->OneIn(seldom)) {
        return;
    }
    if (mpChoice->OneIn(seldom)) {
        mEndlessBytes = kEndless;
    }
    Send(mpChoice->OneIn(seldom) ? mpTexts->Anything() : AnswerTo(zCommand));
    if (mpChoice->OneIn(seldom)) {
        Send(mpTexts->Anything());
    }
}

std::string HostileDevice::AnswerTo(const std::string& zCommand) {
    if (zCommand.starts_with("<cmd dir>")) {
        return mpTexts->Listing();
    }
    if (zCommand.starts_with("<cmd dir_recurse>")) {
        return mpTexts->DirRecurse();
    }
    return zCommand.starts_with("<cmd download>") ? mpTexts->File() : "";
}

// --- What it says ---

void HostileDevice::Send(const std::string& zBytes) {
    mOutgoing += QByteArray::fromStdString(zBytes);
    mPatience.start();
    mSendTimer.start(0);
}

/// Pieces are not so small that a long text takes for ever.
qsizetype HostileDevice::NextPieceSize() {
    qsizetype size = mOutgoing.size();
    if (mGreatestPiece > 0) {
        size = std::max<qsizetype>(mpChoice->Between(1, mGreatestPiece), mOutgoing.size() / kMostPieces);
    }
    return static_cast<qsizetype>(std::min<long>(size, mBytesToLive));
}

void HostileDevice::OnWantsToSend() {
    if (mOutgoing.isEmpty() && mEndlessBytes > 0) {
        SendEndlessly();
    }
    if (mOutgoing.isEmpty() || mpConnection == nullptr) {
        mSendTimer.stop();
        return;
    }
    if (mpConnection->bytesToWrite() > 0) {
        return;
    }
    mPatience.start();
    const QByteArray piece = mOutgoing.left(NextPieceSize());
    mOutgoing.remove(0, piece.size());
    mBytesToLive -= piece.size();
    mpConnection->write(piece);
    mpConnection->flush();
    if (mBytesToLive == 0) {
        Leave(mpChoice->OneIn(2));
    }
}

void HostileDevice::SendEndlessly() {
    mOutgoing = QByteArray::fromStdString(HostileTexts::Filler(kEndlessPiece));
    mEndlessBytes -= mOutgoing.size();
}
