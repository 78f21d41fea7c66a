#include "SocketStreams.h"

#include "ScriptedPeer.h"
#include "WaitFor.h"

#include <QtCore/QAbstractEventDispatcher>

#include <gtest/gtest.h>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>

#include <algorithm>
#include <functional>

namespace {

using Names = std::vector<std::string>;

/// Bytes of which every stretch of a few bytes occurs once.
std::string MakePattern(std::size_t zSize) {
    std::string bytes(zSize, '\0');
    std::uint32_t state = 1;
    for (char& rByte : bytes) {
        state = state * 1664525U + 1013904223U;
        rByte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

std::string NameOf(StreamEvent zEvent) {
    switch (zEvent) {
    case StreamEvent::kOpenCompleted:
        return "open";
    case StreamEvent::kHasBytesAvailable:
        return "bytes";
    case StreamEvent::kCanAcceptBytes:
        return "room";
    case StreamEvent::kErrorOccurred:
        return "error";
    case StreamEvent::kEndEncountered:
        return "end";
    }
    return "?";
}

class SocketStreamsTest : public ::testing::Test, public SocketStreamsClient {
protected:
    void onReadStreamEvent(StreamEvent zEvent) override { Record("read " + NameOf(zEvent)); }

    void onWriteStreamEvent(StreamEvent zEvent) override { Record("write " + NameOf(zEvent)); }

    void Record(const std::string& zName) {
        mEvents.push_back(zName);
        if (mHook) {
            mHook(zName);
        }
    }

    bool HasSeen(const std::string& zName) const { return std::ranges::count(mEvents, zName) > 0; }

    bool WaitForEvent(const std::string& zName) {
        return WaitFor([&] { return HasSeen(zName); });
    }

    StreamError OpenTo(const std::string& zHost, std::uint16_t zPort, HostLookup zLookup = LookUpHost) {
        mpStreams = std::make_unique<SocketStreams>(zHost, zPort, *this, std::move(zLookup));
        return mpStreams->Open();
    }

    /// Connects to the peer and forgets the events of that.
    void OpenToPeer() {
        ASSERT_EQ(OpenTo("127.0.0.1", mPeer.Port()), StreamError());
        ASSERT_TRUE(WaitForEvent("write room"));
        ASSERT_TRUE(WaitFor([this] { return mPeer.HasConnection() || mPeer.Accept(); }));
        mEvents.clear();
    }

    std::string ReadAll(std::size_t zStep = 100) {
        std::string bytes;
        while (mpStreams->HasBytesAvailable()) {
            const std::size_t size = bytes.size();
            bytes.resize(size + zStep);
            bytes.resize(size + mpStreams->Read(bytes.data() + size, zStep));
        }
        return bytes;
    }

    /// Writes as much as the streams take at once.
    std::size_t Write(const std::string& zBytes) { return mpStreams->Write(zBytes.data(), zBytes.size()); }

    ScriptedPeer mPeer;
    std::unique_ptr<SocketStreams> mpStreams;
    Names mEvents;
    std::function<void(const std::string&)> mHook;
};

int GetOption(int zDescriptor, int zLevel, int zName) {
    int value = -1;
    socklen_t size = sizeof value;
    ::getsockopt(zDescriptor, zLevel, zName, &value, &size);
    return value;
}

// Opening

TEST_F(SocketStreamsTest, OpensBothSidesAndThenHasRoom) {
    EXPECT_EQ(OpenTo("127.0.0.1", mPeer.Port()), StreamError());
    EXPECT_TRUE(mEvents.empty()) << "events come from the event loop";
    EXPECT_FALSE(mpStreams->CanAcceptBytes());
    EXPECT_EQ(mpStreams->GetPeerAddress().GetHost(), "");
    EXPECT_TRUE(WaitForEvent("write room"));
    EXPECT_EQ(mEvents, (Names{"read open", "write open", "write room"}));
    EXPECT_TRUE(mpStreams->CanAcceptBytes());
    EXPECT_FALSE(mpStreams->HasBytesAvailable());
    EXPECT_EQ(mpStreams->GetPeerAddress().GetHost(), "127.0.0.1");
    EXPECT_EQ(mpStreams->GetPeerAddress().GetPort(), mPeer.Port());
    EXPECT_EQ(mpStreams->GetLocalAddress().GetHost(), "127.0.0.1");
}

TEST_F(SocketStreamsTest, NoticesADeviceThatWasSwitchedOff) {
    OpenToPeer();
    const int descriptor = mpStreams->GetDescriptor();
    EXPECT_EQ(GetOption(descriptor, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(GetOption(descriptor, IPPROTO_TCP, TCP_KEEPIDLE), 15);
    EXPECT_EQ(GetOption(descriptor, IPPROTO_TCP, TCP_KEEPINTVL), 5);
    EXPECT_EQ(GetOption(descriptor, IPPROTO_TCP, TCP_KEEPCNT), 4);
    EXPECT_EQ(GetOption(descriptor, IPPROTO_TCP, TCP_NODELAY), 1);
}

TEST_F(SocketStreamsTest, ReportsARefusedConnectionOnBothSides) {
    const RefusingPort refusing;
    EXPECT_EQ(OpenTo("127.0.0.1", refusing.Port()), StreamError());
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mEvents, (Names{"read error", "write error"}));
    EXPECT_EQ(mpStreams->GetError(), (StreamError{StreamErrorDomain::kPosix, ECONNREFUSED}));
    RunLoopPasses(10);
    EXPECT_EQ(mEvents.size(), 2U) << "once";
}

TEST_F(SocketStreamsTest, ReturnsTheErrorWhenItCannotEvenStart) {
    EXPECT_EQ(OpenTo("255.255.255.255", 1), (StreamError{StreamErrorDomain::kPosix, ENETUNREACH}));
    EXPECT_EQ(OpenTo("", 1), (StreamError{StreamErrorDomain::kNetDB, EAI_NONAME}));
    RunLoopPasses(5);
    EXPECT_TRUE(mEvents.empty());
}

/// A lookup that finds the given addresses for every name.
HostLookup Finds(std::vector<std::pair<std::string, std::uint16_t>> zAddresses) {
    return [addresses = std::move(zAddresses)](const std::string&, std::uint16_t) {
        ResolvedHost host;
        for (const auto& [text, port] : addresses) {
            host.addresses.push_back(ResolveNumericHost(text, port)->addresses.at(0));
        }
        return host;
    };
}

TEST_F(SocketStreamsTest, TriesTheAddressesOfANameInTurn) {
    const RefusingPort refusing;
    const HostLookup lookup = Finds({{"255.255.255.255", 1},
                                     {"127.0.0.1", refusing.Port()},
                                     {"127.0.0.1", mPeer.Port()},
                                     {"127.0.0.1", refusing.Port()}});
    EXPECT_EQ(OpenTo("device", 1, lookup), StreamError());
    EXPECT_TRUE(WaitForEvent("write room"));
    EXPECT_EQ(mpStreams->GetPeerAddress().GetPort(), mPeer.Port());
    EXPECT_FALSE(HasSeen("read error"));
}

TEST_F(SocketStreamsTest, ReportsTheErrorOfTheLastAddress) {
    const RefusingPort refusing;
    const std::pair<std::string, std::uint16_t> unreachable("255.255.255.255", 1);
    const std::pair<std::string, std::uint16_t> refused("127.0.0.1", refusing.Port());
    OpenTo("device", 1, Finds({unreachable, refused}));
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mpStreams->GetError().code, ECONNREFUSED);
    mEvents.clear();
    OpenTo("device", 1, Finds({refused, unreachable}));
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mpStreams->GetError().code, ENETUNREACH);
    EXPECT_EQ(mEvents, (Names{"read error", "write error"}));
}

TEST_F(SocketStreamsTest, ReportsANameThatIsNotFound) {
    OpenTo("device", 1, [](const std::string&, std::uint16_t) { return ResolvedHost{EAI_AGAIN, {}}; });
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mpStreams->GetError(), (StreamError{StreamErrorDomain::kNetDB, EAI_AGAIN}));
    mEvents.clear();
    OpenTo("device", 1, Finds({}));
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mpStreams->GetError(), (StreamError{StreamErrorDomain::kNetDB, EAI_NONAME}));
}

// Receiving

TEST_F(SocketStreamsTest, BuffersWhatComesIn) {
    OpenToPeer();
    mPeer.Send("0123456789");
    EXPECT_TRUE(WaitForEvent("read bytes"));
    EXPECT_EQ(mpStreams->BytesAvailable(), 10U);
    char byte = '?';
    EXPECT_EQ(mpStreams->Read(&byte, 1), 1U);
    EXPECT_EQ(byte, '0');
    EXPECT_EQ(ReadAll(4), "123456789");
    EXPECT_EQ(mpStreams->Read(&byte, 1), 0U);
}

TEST_F(SocketStreamsTest, HoldsABoundedAmountAndLosesNothing) {
    OpenToPeer();
    const std::string sent = MakePattern(3 * SocketStreams::kBufferSize + 12345);
    mPeer.Send(sent);
    EXPECT_TRUE(WaitFor([this] {
        mPeer.PumpOut();
        return mpStreams->BytesAvailable() == SocketStreams::kBufferSize;
    }));
    RunLoopPasses(10);
    EXPECT_EQ(mpStreams->BytesAvailable(), SocketStreams::kBufferSize);
    std::string received;
    EXPECT_TRUE(WaitFor([&] {
        mPeer.PumpOut();
        received += ReadAll(777);
        return received.size() >= sent.size();
    }));
    EXPECT_TRUE(received == sent);
}

TEST_F(SocketStreamsTest, ReportsTheEndAfterEverythingWasRead) {
    OpenToPeer();
    mPeer.Send("last words");
    mPeer.FinishSending();
    EXPECT_TRUE(WaitForEvent("read bytes"));
    RunLoopPasses(20);
    EXPECT_EQ(mEvents, Names{"read bytes"});
    EXPECT_EQ(ReadAll(), "last words");
    EXPECT_EQ(mEvents, Names{"read bytes"}) << "not from within a call of the streams";
    EXPECT_TRUE(WaitForEvent("read end"));
    EXPECT_EQ(mEvents, (Names{"read bytes", "read end"}));
    EXPECT_EQ(mpStreams->GetError(), StreamError());
}

TEST_F(SocketStreamsTest, ReportsAResetAfterEverythingWasRead) {
    OpenToPeer();
    mPeer.Send("last words");
    EXPECT_TRUE(WaitForEvent("read bytes"));
    mPeer.Reset();
    RunLoopPasses(20);
    EXPECT_EQ(mEvents, Names{"read bytes"});
    EXPECT_EQ(ReadAll(), "last words");
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mEvents, (Names{"read bytes", "read error", "write error"}));
    EXPECT_EQ(mpStreams->GetError(), (StreamError{StreamErrorDomain::kPosix, ECONNRESET}));
}

/// How often the event loop of this thread woke up within a short while in which nothing happened outside.
int CountWakeUps() {
    int count = 0;
    auto* pDispatcher = QAbstractEventDispatcher::instance();
    const QMetaObject::Connection counting =
        QObject::connect(pDispatcher, &QAbstractEventDispatcher::awake, [&count] { ++count; });
    RunLoopFor(std::chrono::milliseconds(50));
    QObject::disconnect(counting);
    return count;
}

TEST_F(SocketStreamsTest, SleepsWhileNothingHappens) {
    constexpr int kFew = 10; // a loop that cannot sleep wakes up thousands of times
    OpenToPeer();
    EXPECT_LT(CountWakeUps(), kFew) << "idle";

    Write("something");
    EXPECT_TRUE(WaitFor([this] {
        mPeer.Pump();
        return mPeer.Received() == "something";
    }));
    EXPECT_LT(CountWakeUps(), kFew) << "everything is sent";

    mPeer.Send(MakePattern(4 * SocketStreams::kBufferSize));
    EXPECT_TRUE(WaitFor([this] { return mpStreams->BytesAvailable() == SocketStreams::kBufferSize; }));
    EXPECT_LT(CountWakeUps(), kFew) << "the incoming buffer is full and nobody reads";

    mPeer.Reset();
    EXPECT_LT(CountWakeUps(), kFew) << "the connection is broken and nobody reads";
}

TEST_F(SocketStreamsTest, SleepsAfterTheEnd) {
    OpenToPeer();
    mPeer.Send("unread");
    mPeer.FinishSending();
    EXPECT_TRUE(WaitForEvent("read bytes"));
    EXPECT_LT(CountWakeUps(), 10);
}

// Sending

TEST_F(SocketStreamsTest, SendsWhatWasWritten) {
    OpenToPeer();
    EXPECT_EQ(Write("to the "), 7U);
    EXPECT_EQ(Write("peer"), 4U);
    EXPECT_TRUE(WaitFor([this] {
        mPeer.Pump();
        return mPeer.Received() == "to the peer";
    }));
}

TEST_F(SocketStreamsTest, TakesNothingBeforeItIsOpen) {
    OpenTo("127.0.0.1", mPeer.Port());
    EXPECT_EQ(Write("too early"), 0U);
}

TEST_F(SocketStreamsTest, TakesABoundedAmountAndLosesNothing) {
    OpenToPeer();
    const std::string bytes = MakePattern(16 * SocketStreams::kBufferSize);
    EXPECT_EQ(Write(bytes), SocketStreams::kBufferSize);
    EXPECT_FALSE(mpStreams->CanAcceptBytes());
    EXPECT_EQ(Write("x"), 0U);
    EXPECT_TRUE(WaitForEvent("write room"));

    std::size_t written = SocketStreams::kBufferSize;
    mHook = [&](const std::string& event) {
        if (event == "write room") {
            written += Write(bytes.substr(written, 10000));
        }
    };
    EXPECT_TRUE(WaitFor([&] {
        mPeer.Pump();
        written += Write(bytes.substr(written, 10000));
        return mPeer.Received().size() == bytes.size();
    }));
    EXPECT_TRUE(mPeer.Received() == bytes);
}

TEST_F(SocketStreamsTest, StopsTakingWhileThePeerDoesNot) {
    OpenToPeer();
    // Until the buffers of the system are full too.
    const std::string bytes = MakePattern(SocketStreams::kBufferSize);
    std::size_t written = 0;
    int passesWithoutRoom = 0;
    EXPECT_TRUE(WaitFor([&] {
        const std::size_t count = Write(bytes);
        written += count;
        passesWithoutRoom = count == 0 ? passesWithoutRoom + 1 : 0;
        return passesWithoutRoom > 10;
    }));
    EXPECT_FALSE(mpStreams->CanAcceptBytes());
    EXPECT_LT(CountWakeUps(), 10) << "waiting for a peer that does not read";
    EXPECT_TRUE(WaitFor([&] {
        mPeer.Pump();
        return mPeer.Received().size() == written;
    }));
}

/// Fills the buffers of the system as well as those of the streams, while the peer does not read.
class FilledSocketStreamsTest : public SocketStreamsTest {
protected:
    void SetUp() override {
        OpenToPeer();
        // The system calls a socket writable when a third of its buffer is free; let that be little.
        const int size = 4096;
        ::setsockopt(mpStreams->GetDescriptor(), SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
        int passesWithoutRoom = 0;
        ASSERT_TRUE(WaitFor([&] {
            const std::string bytes = MakePattern(SocketStreams::kBufferSize);
            const std::size_t count = Write(bytes);
            mWritten.append(bytes, 0, count);
            passesWithoutRoom = count == 0 ? passesWithoutRoom + 1 : 0;
            return passesWithoutRoom > 10;
        }));
        mEvents.clear();
    }

    std::string mWritten;
};

TEST_F(FilledSocketStreamsTest, SendTheRestAfterTheyWereClosed) {
    mpStreams.reset();
    EXPECT_TRUE(WaitFor([this] {
        mPeer.Pump();
        return mPeer.HasEnded();
    }));
    EXPECT_EQ(mPeer.Received().size(), mWritten.size());
    EXPECT_TRUE(mPeer.Received() == mWritten);
    EXPECT_TRUE(mEvents.empty());
}

TEST_F(FilledSocketStreamsTest, GiveUpSendingTheRestToAPeerThatIsGone) {
    const qsizetype before = QCoreApplication::instance()->children().size();
    mpStreams.reset();
    ASSERT_EQ(QCoreApplication::instance()->children().size(), before + 1);
    mPeer.Reset();
    EXPECT_TRUE(WaitFor([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return QCoreApplication::instance()->children().size() == before;
    }));
}

TEST_F(FilledSocketStreamsTest, AreStillSendingWhenTheProgramEnds) {
    // In a process of its own this is also about the end of the application, which closes what is left.
    const qsizetype before = QCoreApplication::instance()->children().size();
    mpStreams.reset();
    EXPECT_EQ(QCoreApplication::instance()->children().size(), before + 1);
}

TEST_F(FilledSocketStreamsTest, ReportAFailureToSendThoughNobodyReads) {
    mPeer.Send("unread");
    EXPECT_TRUE(WaitForEvent("read bytes"));
    mPeer.Reset();
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(mEvents, (Names{"read bytes", "read error", "write error"}));
    EXPECT_FALSE(mpStreams->CanAcceptBytes());
    EXPECT_EQ(ReadAll(), "unread") << "what nobody has read can still be had";
}

TEST_F(FilledSocketStreamsTest, ReportAFailureToSendAfterWhatAReaderTakesPieceByPiece) {
    mPeer.Send(std::string(50, 'r'));
    EXPECT_TRUE(WaitForEvent("read bytes"));
    mPeer.Reset();
    std::string received;
    QTimer reader;
    QObject::connect(&reader, &QTimer::timeout, [&] {
        char byte = '?';
        received.append(&byte, mpStreams->Read(&byte, 1));
    });
    reader.start(0);
    EXPECT_TRUE(WaitForEvent("write error"));
    EXPECT_EQ(received.size(), 50U);
}

// Destruction

class DestroyedSocketStreamsTest : public SocketStreamsTest,
                                   public ::testing::WithParamInterface<const char*> {};

TEST_P(DestroyedSocketStreamsTest, ReportNothingMore) {
    mHook = [this](const std::string& event) {
        if (event == "read bytes") {
            ReadAll();
        }
        if (event == GetParam()) {
            mpStreams.reset();
        }
    };
    OpenTo("127.0.0.1", mPeer.Port());
    mPeer.Send("bytes");
    EXPECT_TRUE(WaitFor([this] {
        mPeer.Pump();
        if (HasSeen("read bytes")) {
            mPeer.Reset();
        }
        return HasSeen(GetParam());
    }));
    RunLoopPasses(10);
    EXPECT_EQ(mpStreams, nullptr);
    EXPECT_EQ(mEvents.back(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Events, DestroyedSocketStreamsTest,
                         ::testing::Values("read open", "write open", "write room", "read bytes",
                                           "read error", "write error"));

TEST_F(SocketStreamsTest, MayBeDestroyedAtTheEnd) {
    OpenToPeer();
    mHook = [this](const std::string&) { mpStreams.reset(); };
    mPeer.FinishSending();
    EXPECT_TRUE(WaitForEvent("read end"));
    EXPECT_EQ(mpStreams, nullptr);
}

TEST_F(SocketStreamsTest, MayBeDestroyedWhenTheConnectionIsRefused) {
    const RefusingPort refusing;
    mHook = [this](const std::string&) { mpStreams.reset(); };
    OpenTo("127.0.0.1", refusing.Port());
    EXPECT_TRUE(WaitForEvent("read error"));
    EXPECT_EQ(mEvents, Names{"read error"});
}

TEST_F(SocketStreamsTest, MayBeDestroyedWhenTheNameIsNotFound) {
    mHook = [this](const std::string&) { mpStreams.reset(); };
    OpenTo("device", 1, Finds({}));
    EXPECT_TRUE(WaitForEvent("read error"));
    EXPECT_EQ(mEvents, Names{"read error"});
}

TEST_F(SocketStreamsTest, MayBeDestroyedBeforeTheNameIsFound) {
    OpenTo("device", 1, Finds({{"127.0.0.1", mPeer.Port()}}));
    mpStreams.reset();
    RunLoopPasses(10);
    EXPECT_TRUE(mEvents.empty());
}

} // namespace
