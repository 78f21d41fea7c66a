#include "AsyncSocket.h"

#include "SocketFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <netdb.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace {

class AsyncSocketTest : public SocketFixture {};

// Before a connection

TEST_F(AsyncSocketTest, StartsDisconnected) {
    AsyncSocket socket;
    EXPECT_EQ(socket.delegate(), nullptr);
    EXPECT_EQ(socket.userData(), 0);
    EXPECT_FALSE(socket.isConnected());
    EXPECT_TRUE(socket.canSafelySetDelegate());
    EXPECT_EQ(socket.connectedHost(), "");
    EXPECT_EQ(socket.connectedPort(), 0);
    EXPECT_EQ(socket.localHost(), "");
    EXPECT_EQ(socket.localPort(), 0);
    EXPECT_TRUE(socket.unreadData().isEmpty());
}

TEST_F(AsyncSocketTest, CarriesTheValuesOfItsCaller) {
    AsyncSocket socket(&mDelegate, 42);
    EXPECT_EQ(socket.delegate(), &mDelegate);
    EXPECT_EQ(socket.userData(), 42);
    socket.setUserData(43);
    EXPECT_EQ(socket.userData(), 43);
    socket.setDelegate(nullptr);
    EXPECT_EQ(socket.delegate(), nullptr);
}

TEST_F(AsyncSocketTest, RemembersItsLoopModes) {
    EXPECT_EQ(mpSocket->runLoopModes().size(), 1U);
    EXPECT_TRUE(mpSocket->setRunLoopModes({"default", "modal"}));
    EXPECT_FALSE(mpSocket->setRunLoopModes({}));
    EXPECT_EQ(mpSocket->runLoopModes(), (Lines{"default", "modal"}));
}

TEST_F(AsyncSocketTest, HasTheUsualTerminators) {
    EXPECT_EQ(AsyncSocket::ZeroData(), QByteArray(1, '\0'));
    EXPECT_EQ(AsyncSocket::LFData(), QByteArray("\n"));
    EXPECT_EQ(AsyncSocket::CRData(), QByteArray("\r"));
    EXPECT_EQ(AsyncSocket::CRLFData(), QByteArray("\r\n"));
}

// Connecting

std::string MisuseText(AsyncSocket& zrSocket, std::uint16_t zPort) {
    std::optional<SocketError> error;
    try {
        zrSocket.connectToHost("127.0.0.1", zPort, error);
    } catch (const AsyncSocketException& exception) {
        return exception.what();
    }
    return "";
}

TEST_F(AsyncSocketTest, ConnectsOnlyWithADelegate) {
    AsyncSocket socket;
    EXPECT_EQ(MisuseText(socket, mPeer.Port()),
              "Attempting to connect without a delegate. Set a delegate first.");
}

TEST_F(AsyncSocketTest, ConnectsOnlyOnce) {
    const std::string kText =
        "Attempting to connect while connected or accepting connections. Disconnect first.";
    ASSERT_TRUE(Connect());
    EXPECT_EQ(MisuseText(*mpSocket, mPeer.Port()), kText);
    ASSERT_TRUE(WaitForLine("connected to 127.0.0.1"));
    EXPECT_EQ(MisuseText(*mpSocket, mPeer.Port()), kText);
    EXPECT_TRUE(mpSocket->isConnected()) << "the connection is not disturbed";
}

TEST_F(AsyncSocketTest, ReportsTheConnection) {
    mConnectError = MakeErrnoError(EIO);
    ASSERT_TRUE(Connect());
    EXPECT_FALSE(mConnectError);
    EXPECT_FALSE(mpSocket->isConnected());
    EXPECT_EQ(mDelegate.mLines, Lines{"will connect"});
    ASSERT_TRUE(WaitForLine("connected to 127.0.0.1"));
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_EQ(mpSocket->connectedHost(), "127.0.0.1");
    EXPECT_EQ(mpSocket->connectedPort(), mPeer.Port());
    EXPECT_EQ(mpSocket->localHost(), "127.0.0.1");
    EXPECT_NE(mpSocket->localPort(), 0);
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, (Lines{"will connect", "connected to 127.0.0.1"}));
}

TEST_F(AsyncSocketTest, ConnectsToAName) {
    ASSERT_TRUE(mpSocket->connectToHost("localhost", mPeer.Port(), mConnectError));
    EXPECT_TRUE(WaitForLine("connected to 127.0.0.1"));
}

TEST_F(AsyncSocketTest, TheDelegateMayRefuse) {
    mDelegate.mWillConnect = false;
    EXPECT_FALSE(Connect());
    ASSERT_TRUE(mConnectError);
    EXPECT_EQ(mConnectError->domain, "AsyncSocketErrorDomain");
    EXPECT_EQ(mConnectError->code, 1);
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, Lines{"will connect"});
    mDelegate.mWillConnect = true;
    EXPECT_TRUE(Connect()) << "the next attempt is free";
}

TEST_F(AsyncSocketTest, AFailedCallHasNoCallbacks) {
    mpSocket->readDataWithTimeout(-1.0, 1);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(mpSocket->connectToHost("255.255.255.255", 10240, mConnectError));
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("AsyncSocket 0x[0-9a-f]+ couldn't open read stream,\n"));
    ASSERT_TRUE(mConnectError);
    EXPECT_EQ(mConnectError->domain, "POSIX");
    EXPECT_EQ(mConnectError->code, ENETUNREACH);
    EXPECT_EQ(mConnectError->description, std::strerror(ENETUNREACH));
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, Lines{"will connect"});
    EXPECT_TRUE(mpSocket->canSafelySetDelegate()) << "closing has emptied the queues";
}

TEST_F(AsyncSocketTest, ALaterFailureIsThePairOfDisconnectCallbacks) {
    const RefusingPort refusing;
    ASSERT_TRUE(mpSocket->connectToHost("127.0.0.1", refusing.Port(), mConnectError));
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(
        mDelegate.mLines,
        (Lines{"will connect", "will disconnect POSIX " + std::to_string(ECONNREFUSED), "disconnected"}));
    EXPECT_FALSE(mpSocket->isConnected());
}

TEST_F(AsyncSocketTest, AnUnknownNameIsALaterFailure) {
    ASSERT_TRUE(mpSocket->connectToHost("no such device", 10240, mConnectError));
    EXPECT_TRUE(WaitForLine("disconnected"));
    ASSERT_TRUE(mDelegate.mError);
    EXPECT_EQ(mDelegate.mError->domain, "kCFStreamErrorDomainNetDB");
    EXPECT_EQ(mDelegate.mError->description, ::gai_strerror(mDelegate.mError->code));
}

TEST_F(AsyncSocketTest, AConnectTimeOutClosesWithAnError) {
    const SilentPort silent;
    ASSERT_TRUE(mpSocket->connectToHost("127.0.0.1", silent.Port(), 0.02, mConnectError));
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines,
              (Lines{"will connect", "will disconnect AsyncSocketErrorDomain 2", "disconnected"}));
}

TEST_F(AsyncSocketTest, AConnectTimeOutEndsWithTheConnection) {
    ASSERT_TRUE(Connect(0.05));
    ASSERT_TRUE(WaitForLine("connected to 127.0.0.1"));
    RunLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(mpSocket->isConnected());
}

TEST_F(AsyncSocketTest, WithoutATimeOutItWaitsForTheStreams) {
    const SilentPort silent;
    ASSERT_TRUE(mpSocket->connectToHost("127.0.0.1", silent.Port(), mConnectError));
    RunLoopPasses(20);
    EXPECT_EQ(mDelegate.mLines, Lines{"will connect"});
    EXPECT_FALSE(mpSocket->isConnected());
}

// Closing

TEST_F(AsyncSocketTest, DisconnectIsReportedOnTheNextPass) {
    ConnectToPeer();
    mpSocket->disconnect();
    EXPECT_TRUE(mDelegate.mLines.empty());
    EXPECT_FALSE(mpSocket->isConnected());
    EXPECT_TRUE(WaitForLine("disconnected"));
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, Lines{"disconnected"}) << "once, and without an announcement";
    EXPECT_EQ(ReceiveToEnd(), "");
}

TEST_F(AsyncSocketTest, DisconnectWithoutAConnectionIsNotReported) {
    mpSocket->disconnect();
    RunLoopPasses(5);
    EXPECT_TRUE(mDelegate.mLines.empty());
}

TEST_F(AsyncSocketTest, DisconnectDuringTheAttemptIsReported) {
    ASSERT_TRUE(Connect());
    mpSocket->disconnect();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will connect", "disconnected"}));
}

TEST_F(AsyncSocketTest, EveryCloseIsReported) {
    ASSERT_TRUE(Connect());
    mpSocket->disconnect();
    ASSERT_TRUE(Connect());
    mpSocket->disconnect();
    EXPECT_TRUE(WaitFor([this] { return mDelegate.mLines.size() == 4; }));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will connect", "will connect", "disconnected", "disconnected"}));
}

TEST_F(AsyncSocketTest, TheEndOfTheStreamIsNoError) {
    ConnectToPeer();
    mDelegate.mError = MakeErrnoError(EIO);
    mPeer.Close();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will disconnect", "disconnected"}));
    EXPECT_FALSE(mDelegate.mError);
}

TEST_F(AsyncSocketTest, AResetIsAnError) {
    ConnectToPeer();
    mPeer.Reset();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines,
              (Lines{"will disconnect POSIX " + std::to_string(ECONNRESET), "disconnected"}));
}

TEST_F(AsyncSocketTest, TheStreamsAreStillThereWhenTheCloseIsAnnounced) {
    ConnectToPeer();
    bool wasConnected = false;
    mDelegate.mHook = [&](const std::string& line) {
        wasConnected = wasConnected || (line == "will disconnect" && mpSocket->isConnected());
    };
    mPeer.Close();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_TRUE(wasConnected);
}

TEST_F(AsyncSocketTest, AClosedSocketConnectsAgain) {
    ConnectToPeer();
    mpSocket->disconnectAfterReading();
    EXPECT_TRUE(WaitForLine("disconnected"));
    ASSERT_TRUE(Connect());
    EXPECT_TRUE(WaitForLine("connected to 127.0.0.1"));
    EXPECT_TRUE(WaitFor([this] { return mPeer.Accept(); }));
    mpSocket->writeData("again", -1.0, 1);
    EXPECT_TRUE(WaitForReceived(5)) << "writes are allowed again";
}

TEST_F(AsyncSocketTest, ANewConnectionStartsAfresh) {
    ConnectToPeer();
    mpSocket->readDataToData("\n", -1.0, 1);
    mPeer.Send("line\nleft over");
    EXPECT_TRUE(WaitForLine("read line\n #1"));
    mpSocket->disconnectAfterReading();
    mpSocket->disconnect();
    ASSERT_TRUE(Connect());
    EXPECT_TRUE(WaitForLine("connected to 127.0.0.1"));
    EXPECT_TRUE(WaitFor([this] { return mPeer.Accept(); }));
    mpSocket->readDataWithTimeout(-1.0, 2);
    mPeer.Send("new");
    EXPECT_TRUE(WaitForLine("read new #2"));
    EXPECT_TRUE(mpSocket->isConnected()) << "the deferred disconnect was of the first connection";
}

TEST_F(AsyncSocketTest, AFailureOfTheFirstConnectionDoesNotCloseTheSecond) {
    ConnectToPeer();
    mDelegate.mHook = [this](const std::string& line) {
        if (line == "partial 5 #1") {
            mpSocket->disconnect();
            EXPECT_TRUE(Connect());
        }
    };
    mpSocket->readDataToData("\n", -1.0, 5, 1);
    mPeer.Send("too long");
    EXPECT_TRUE(WaitForLine("connected to 127.0.0.1"));
    RunLoopPasses(5);
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_EQ(std::ranges::count(mDelegate.mLines, "disconnected"), 1) << "the first one's";
    EXPECT_FALSE(mDelegate.Has("will disconnect AsyncSocketErrorDomain 3"));
}

TEST_F(AsyncSocketTest, TheFirstFailureCounts) {
    ConnectToPeer();
    mDelegate.mHook = [this](const std::string& line) {
        if (line.starts_with("will disconnect")) {
            mPeer.Close();
            RunLoopPasses(10);
        }
    };
    mpSocket->readDataToLength(1, 0.0, 1);
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will disconnect AsyncSocketErrorDomain 4", "disconnected"}));
}

TEST_F(AsyncSocketTest, DestructionClosesWithoutAReport) {
    ConnectToPeer();
    mpSocket.reset();
    EXPECT_EQ(ReceiveToEnd(), "");
    EXPECT_TRUE(mDelegate.mLines.empty());
}

TEST_F(AsyncSocketTest, DestructionCancelsTheReportOfAClose) {
    ConnectToPeer();
    mpSocket->readDataWithTimeout(-1.0, 1);
    mpSocket->disconnect();
    mpSocket.reset();
    RunLoopPasses(10);
    EXPECT_TRUE(mDelegate.mLines.empty());
}

TEST_F(AsyncSocketTest, WithoutItsDelegateItKeepsQuiet) {
    ConnectToPeer();
    mpSocket->readDataToLength(4, -1.0, 1);
    mpSocket->readDataWithTimeout(-1.0, 2);
    mpSocket->writeData("data", -1.0, 3);
    mpSocket->setDelegate(nullptr);
    mPeer.Send("lo");
    EXPECT_TRUE(WaitForReceived(4));
    mPeer.Send("ng reply");
    RunLoopPasses(5);
    mPeer.Close();
    EXPECT_TRUE(WaitFor([this] { return !mpSocket->isConnected(); }));
    RunLoopPasses(5);
    EXPECT_TRUE(mDelegate.mLines.empty());
}

// What a delegate may do inside its callbacks

struct CallbackCase {
    const char* name;
    const char* line; ///< the callback
};

void PrintTo(const CallbackCase& zCase, std::ostream* zpStream) {
    *zpStream << zCase.name;
}

class AsyncSocketCallbackTest : public SocketFixture, public ::testing::WithParamInterface<CallbackCase> {
protected:
    /// Goes through every callback; "disconnected" comes last.
    void RunThroughCallbacks(const std::function<void()>& zAction) {
        mDelegate.mHook = [this, zAction](const std::string& line) {
            if (line.starts_with(GetParam().line) && !mActed) {
                mActed = true;
                zAction();
            }
        };
        Connect();
        if (mpSocket) {
            mpSocket->readDataToLength(8, -1.0, 1);
            mpSocket->writeData("data", -1.0, 2);
            mPeer.Send("four");
        }
        EXPECT_TRUE(WaitFor([this] {
            mPeer.PumpOut();
            if (mDelegate.Has("partial 4 #1")) {
                mPeer.Send("more");
            }
            if (mDelegate.Has("read fourmore #1")) {
                mPeer.Close();
            }
            return mActed;
        }));
        RunLoopPasses(10);
    }

    bool mActed = false;
};

TEST_P(AsyncSocketCallbackTest, MayDestroyTheSocket) {
    RunThroughCallbacks([this] { mpSocket.reset(); });
    EXPECT_TRUE(std::string_view(mDelegate.mLines.back()).starts_with(GetParam().line));
}

TEST_P(AsyncSocketCallbackTest, MayDisconnect) {
    RunThroughCallbacks([this] { mpSocket->disconnect(); });
    EXPECT_FALSE(mpSocket->isConnected());
    EXPECT_TRUE(mpSocket->canSafelySetDelegate());
    const bool reported = GetParam().line != std::string("will connect");
    EXPECT_EQ(std::ranges::count(mDelegate.mLines, "disconnected"), reported ? 1 : 0);
}

TEST_P(AsyncSocketCallbackTest, MayConnectAnew) {
    ScriptedPeer other;
    RunThroughCallbacks([&] {
        mpSocket->disconnect();
        std::optional<SocketError> error;
        EXPECT_TRUE(mpSocket->connectToHost("127.0.0.1", other.Port(), error));
    });
    EXPECT_TRUE(WaitFor([&] { return mpSocket->isConnected(); }));
    EXPECT_EQ(mpSocket->connectedPort(), other.Port());
    mpSocket->writeData("hello", -1.0, 9);
    EXPECT_TRUE(WaitFor([&] {
        other.Pump();
        return other.Received() == "hello";
    }));
}

TEST_P(AsyncSocketCallbackTest, MayRunTheEventLoop) {
    RunThroughCallbacks([] { RunLoopPasses(5); });
    EXPECT_TRUE(WaitFor([this] {
        mPeer.PumpOut();
        return mDelegate.Has("disconnected") || mDelegate.Has("partial 4 #1");
    }));
    EXPECT_LE(std::ranges::count(mDelegate.mLines, "read fourmore #1"), 1);
    EXPECT_LE(std::ranges::count(mDelegate.mLines, "disconnected"), 1);
}

const std::array<CallbackCase, 6> kCallbacks{{{"Connected", "connected"},
                                              {"Partial", "partial"},
                                              {"Read", "read"},
                                              {"Written", "written"},
                                              {"WillDisconnect", "will disconn"},
                                              {"Disconnected", "disconnected"}}};

INSTANTIATE_TEST_SUITE_P(Callbacks, AsyncSocketCallbackTest, ::testing::ValuesIn(kCallbacks),
                         [](const auto& info) { return info.param.name; });

TEST_F(AsyncSocketTest, MayBeDestroyedWhenAskedWhetherToConnect) {
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    EXPECT_FALSE(Connect());
    EXPECT_EQ(mpSocket, nullptr);
    ASSERT_TRUE(mConnectError);
    EXPECT_EQ(mConnectError->code, kAsyncSocketCanceledError);
}

TEST_F(AsyncSocketTest, MayBeDisconnectedWhenAskedWhetherToConnect) {
    mDelegate.mHook = [this](const std::string&) { mpSocket->disconnect(); };
    EXPECT_FALSE(Connect());
    ASSERT_TRUE(mConnectError);
    EXPECT_EQ(mConnectError->code, kAsyncSocketCanceledError);
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, Lines{"will connect"});
}

// The steps out of turn

/// Opens the steps of a socket to the tests, and connects it by a lookup of their choice.
class OpenedSocket : public AsyncSocket {
public:
    using AsyncSocket::AsyncSocket;
    using AsyncSocket::CompleteCurrentRead;
    using AsyncSocket::CompleteCurrentWrite;
    using AsyncSocket::EndCurrentRead;
    using AsyncSocket::onReadStreamEvent;
    using AsyncSocket::onWriteStreamEvent;

    HostLookup mLookup = LookUpHost;

protected:
    std::unique_ptr<SocketStreams> MakeStreams(const std::string& zHost, std::uint16_t zPort) override {
        return std::make_unique<SocketStreams>(zHost, zPort, static_cast<SocketStreamsClient&>(*this),
                                               mLookup);
    }
};

struct MisstepCase {
    void (*step)(OpenedSocket& socket);
    const char* condition;
};

void PrintTo(const MisstepCase& c, std::ostream* stream) {
    *stream << c.condition;
}

class AsyncSocketDeathTest : public ::testing::TestWithParam<MisstepCase> {};

TEST_P(AsyncSocketDeathTest, StopsTheProgram) {
    OpenedSocket socket;
    EXPECT_EXIT(GetParam().step(socket), testing::KilledBySignal(SIGABRT),
                std::string("Mac/AsyncSocket:[0-9]+: failed assertion `") + GetParam().condition + "'");
}

INSTANTIATE_TEST_SUITE_P(
    Missteps, AsyncSocketDeathTest,
    ::testing::Values(
        MisstepCase{[](OpenedSocket& socket) { socket.CompleteCurrentRead(); },
                    "Trying to complete current read when there is no current read."},
        MisstepCase{[](OpenedSocket& socket) { socket.EndCurrentRead(); },
                    "Trying to end current read when there is no current read."},
        MisstepCase{[](OpenedSocket& socket) { socket.CompleteCurrentWrite(); },
                    "Trying to complete current write when there is no current write."},
        MisstepCase{[](OpenedSocket& socket) { socket.onReadStreamEvent(StreamEvent::kHasBytesAvailable); },
                    "theReadStream != NULL"},
        MisstepCase{[](OpenedSocket& socket) { socket.onWriteStreamEvent(StreamEvent::kCanAcceptBytes); },
                    "theWriteStream != NULL"}));

TEST_F(AsyncSocketTest, LogsUnexpectedStreamEvents) {
    OpenedSocket socket(&mDelegate);
    ASSERT_TRUE(socket.connectToHost("127.0.0.1", mPeer.Port(), mConnectError));
    testing::internal::CaptureStdout();
    socket.onReadStreamEvent(StreamEvent::kCanAcceptBytes);
    socket.onWriteStreamEvent(StreamEvent::kHasBytesAvailable);
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("AsyncSocket 0x[0-9a-f]+ received unexpected CFReadStream callback, "
                                      "CFStreamEventType 4.\n"
                                      "AsyncSocket 0x[0-9a-f]+ received unexpected CFWriteStream callback, "
                                      "CFStreamEventType 2.\n"));
}

/// A listener that no Internet address leads to.
class LocalListener {
public:
    LocalListener() : mListener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        mAddress.storage.ss_family = AF_UNIX;
        mAddress.length = sizeof(sa_family_t);
        if (::bind(mListener.Get(), mAddress.Get(), mAddress.length) != 0 ||
            ::listen(mListener.Get(), 1) != 0) {
            throw std::runtime_error("cannot listen");
        }
        // The system has chosen a name.
        mAddress.length = sizeof mAddress.storage;
        ::getsockname(mListener.Get(), reinterpret_cast<sockaddr*>(&mAddress.storage), &mAddress.length);
    }

    const SocketAddress& Address() const { return mAddress; }

private:
    FileDescriptor mListener;
    SocketAddress mAddress;
};

TEST_F(AsyncSocketTest, ClosesWhenTheAddressIsNotOfTheInternet) {
    const LocalListener listener;
    OpenedSocket socket(&mDelegate);
    socket.mLookup = [&listener](const std::string&, std::uint16_t) {
        return ResolvedHost{0, {listener.Address()}};
    };
    testing::internal::CaptureStdout();
    ASSERT_TRUE(socket.connectToHost("device", 1, mConnectError));
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("AsyncSocket 0x[0-9a-f]+ couldn't get socket from streams, AsyncSocket "
                                      "couldn't determine IP version of socket. Disconnecting.\n"));
    ASSERT_TRUE(mDelegate.mError);
    EXPECT_EQ(mDelegate.mError->domain, "AsyncSocketErrorDomain");
    EXPECT_EQ(mDelegate.mError->description, "AsyncSocket couldn't determine IP version of socket");
    EXPECT_FALSE(mDelegate.Has("connected to "));
}

} // namespace
