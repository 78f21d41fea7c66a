#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A device in the test's own process and event loop, at the port that the program always connects to.
///
/// It answers from a small tree of files, which takes in what is uploaded, deletes and makes folders, so that
/// a test only says what is special: another welcome, other answers, answers that wait, arrive in pieces or
/// never. It serves the newest connection.
class ScriptedDevice {
public:
    /// Listens at a loopback address of this process; devices of one process differ by zNumber (0 to 2).
    explicit ScriptedDevice(int zNumber = 0);
    ScriptedDevice(const ScriptedDevice&) = delete;
    ScriptedDevice& operator=(const ScriptedDevice&) = delete;

    static constexpr std::uint16_t kPort = 10240;

    const std::string& Address() const { return mAddress; }

    // --- What it holds ---

    /// Adds an entry to its folder ("" is the root), behind those that are there. A file has a size of its
    /// own when that is not its content's.
    void AddFolder(const std::string& zPath, const std::string& zRights = "cd-");
    void AddFile(const std::string& zPath, const std::string& zContent = "content",
                 const std::string& zRights = "cd-", std::optional<long> zAnnouncedSize = {});
    void Remove(const std::string& zPath);

    /// What it holds under a path; nothing where there is no file, or where it is not whole yet.
    std::optional<std::string> Content(const std::string& zPath) const;

    /// The rights that a listing of the folder announces for the folder itself.
    void SetFolderRights(const std::string& zPath, const std::string& zRights);

    // --- How it answers ---

    /// What a new connection is greeted with; "" for silence.
    std::string mWelcome = R"(<welcome>Name = "Scripted" Version = "1.10" ID = "0042"</welcome>)";

    /// Asked first for every command, which comes as its whole text; nothing leaves the answer to the tree,
    /// and "" sends none.
    std::function<std::optional<std::string>(const std::string& zCommand)> mOnCommand;

    /// How many bytes are sent in one pass of the event loop; 0 sends answers whole.
    int mPieceSize = 0;

    /// From now on answers wait, the welcome included, until Release sends them all.
    void Hold() { mHolding = true; }

    void Release();

    /// From now on nothing is taken from the connection, so that a long upload cannot end, until it listens
    /// again.
    void StopListening();
    void ListenAgain();

    /// Sends bytes that nobody asked for, behind what is still to be sent.
    void Send(const std::string& zBytes);

    /// Closes the connection in good order, at once.
    void DropConnection();

    /// Breaks the connection off, so that the program sees a reset.
    void ResetConnection();

    /// Ends listening too: later attempts are refused.
    void SwitchOff();

    /// Listens again.
    void SwitchOn();

    // --- What it has seen ---

    bool HasConnection() const;

    int ConnectionCount() const { return mConnectionCount; }

    const std::vector<std::string>& Commands() const { return mCommands; }

    /// How many commands held this text.
    int CountOf(const std::string& zPart) const;

    void ForgetCommands() { mCommands.clear(); }

    /// The texts of the commands and of the answers, for tests that make their own.
    static std::string DirCommand(const std::string& zPath);
    static std::string DownloadCommand(const std::string& zPath);
    static std::string UploadCommand(const std::string& zPath, std::size_t zLength);
    static std::string DeleteCommand(const std::string& zPath);
    static std::string MakeDirCommand(const std::string& zPath);
    std::string DirReply(const std::string& zPath) const;
    static std::string LengthPrefix(std::size_t zLength);

private:
    struct sEntry {
        std::string path;
        bool isFolder;
        std::string content;
        std::string rights;
        long announcedSize;
    };

    void OnConnection();
    void OnReadable();
    bool TakeBody();
    bool TakeCommand();
    void Store(const std::string& zPath, const std::string& zContent);
    void OnWantsToSend();
    void Answer(const std::string& zCommand);
    std::string AnswerFromTree(const std::string& zCommand) const;
    void Change(const std::string& zCommand);
    std::string DirRecurseReply(const std::string& zPath) const;
    std::string DownloadReply(const std::string& zPath) const;
    const sEntry* Find(const std::string& zPath) const;

    std::string mAddress;
    QTcpServer mServer;
    QPointer<QTcpSocket> mpConnection;
    QTimer mSendTimer;
    std::vector<sEntry> mEntries;
    std::string mRootRights = "cd-";
    QByteArray mIncoming;
    std::string mUploadPath;     ///< of the body that is coming in
    qsizetype mUploadLength = 0; ///< 0 without one
    bool mListening = true;
    QByteArray mOutgoing;
    bool mHolding = false;
    int mConnectionCount = 0;
    std::vector<std::string> mCommands;
};
