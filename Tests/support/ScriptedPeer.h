#pragma once

#include <array>
#include <cstdint>
#include <string>

/// The other end of a TCP connection, for tests of clients: a listener on 127.0.0.1, on a port that the
/// system chose, and the newest connection to it. Nothing here blocks; Pump moves the bytes and is meant
/// to be called from the conditions of WaitFor.
class ScriptedPeer {
public:
    ScriptedPeer();
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    std::uint16_t Port() const { return mPort; }

    /// Takes the next waiting connection in place of the current one; false when none is waiting.
    bool Accept();

    bool HasConnection() const { return mConnection >= 0; }

    /// Queues bytes; they are sent as far as the system takes them.
    void Send(const std::string& bytes);

    /// Accepts when there is no connection yet, sends what is queued and receives what has come.
    void Pump();

    /// Sends what is queued, but receives nothing.
    void PumpOut();

    bool HasSentAll() const { return mOutgoing.size() == mSent; }

    const std::string& Received() const { return mReceived; }

    /// Whether the client has closed the connection or broken it off.
    bool HasEnded() const { return mEnded; }

    /// Ends the sending direction; call it when everything is sent.
    void FinishSending();

    /// Closes the connection in good order.
    void Close();

    /// Breaks the connection off, so that the client sees a reset.
    void Reset();

private:
    int mListener = -1;
    int mConnection = -1;
    std::uint16_t mPort = 0;
    std::string mOutgoing;
    std::size_t mSent = 0;
    std::string mReceived;
    bool mEnded = false;
};

/// A port of 127.0.0.1 at which connections are refused.
class RefusingPort {
public:
    RefusingPort();
    ~RefusingPort();
    RefusingPort(const RefusingPort&) = delete;
    RefusingPort& operator=(const RefusingPort&) = delete;

    std::uint16_t Port() const { return mPort; }

private:
    int mSocket = -1;
    std::uint16_t mPort = 0;
};

/// A port of 127.0.0.1 at which connections are neither accepted nor refused: its queue is full.
class SilentPort {
public:
    SilentPort();
    ~SilentPort();
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;

    std::uint16_t Port() const { return mPort; }

private:
    int mListener = -1;
    std::array<int, 3> mFillers{-1, -1, -1};
    std::uint16_t mPort = 0;
};
