#pragma once

#include "HostileTexts.h"
#include "ScriptedDevice.h"
#include "SeededChoice.h"

#include <QtCore/QByteArray>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <memory>
#include <string>

/// A device in the test's own process and event loop that does what it likes, as a seed says: it answers
/// wrong, in pieces, twice, unasked, for ever or not at all, and goes when it likes.
///
/// It loses its patience with a program that says nothing: mostly soon, so that a walk takes no longer than
/// it must, but sometimes only after people have lost theirs, or never.
class HostileDevice {
public:
    /// zOutside is a local folder into which names try to lead.
    explicit HostileDevice(std::string zOutside);
    HostileDevice(const HostileDevice&) = delete;
    HostileDevice& operator=(const HostileDevice&) = delete;

    /// An address of the loopback that no scripted device takes.
    static constexpr const char* kAddress = "127.0.0.66";

    /// Begins anew: what it does from now on depends on the seed and on what it is asked.
    void BeginSession(std::uint64_t zSeed);

    /// Breaks the connection off.
    void EndSession() { Leave(true); }

    int CommandCount() const { return mCommandCount; }

private:
    void OnConnection();
    void ChooseManners();
    void OnReadable();
    void Answer(const std::string& zCommand);
    std::string AnswerTo(const std::string& zCommand);
    void Send(const std::string& zBytes);
    void OnWantsToSend();
    qsizetype NextPieceSize();
    void SendEndlessly();
    void Leave(bool zBreaksOff);

    std::string mOutside;
    std::unique_ptr<SeededChoice> mpChoice;
    std::unique_ptr<HostileTexts> mpTexts;
    QTcpServer mServer;
    QPointer<QTcpSocket> mpConnection;
    QTimer mSendTimer;
    QTimer mPatience;
    QTimer mWhim; ///< when it says something that nobody asked for
    QByteArray mIncoming;
    QByteArray mOutgoing;
    int mGreatestPiece = 0; ///< bytes of one pass of the event loop; 0 is everything
    long mBytesToLive = 0;  ///< how many bytes are sent before it leaves
    long mEndlessBytes = 0; ///< what is still to come of a reply without an end
    int mCommandCount = 0;
};
