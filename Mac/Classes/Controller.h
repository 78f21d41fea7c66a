#pragma once

#include "AsyncSocket.h"
#include "Attention.h"
#include "ClientProtocol.h"
#include "Discover.h"
#include "FileInfoValue.h"
#include "MainWindow.h"
#include "ModalSession.h"
#include "OpenPanel.h"
#include "ProgressController.h"
#include "ReceiveAdmission.h"
#include "SocketClientProtocol.h"
#include "TableModel.h"

#include <QtCore/QElapsedTimer>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class cAudioConversion;

/// One row of the table: a value for each column identifier, and the record behind it.
struct sTableEntry {
    std::string Name;
    std::string Type;
    std::string DateModified;
    std::optional<FileInfoValue> FileInfo; ///< none for a row that stands for no record
};

/// The main window's controller, and the application's delegate: the connection to one device, the
/// browser of its folders, and what people do with them.
///
/// Everything runs on the main thread. An operation waits by pumping the event loop, so any callback,
/// quitting included, may run inside any of the waiting calls below; after each of them the connection is
/// looked at again. Its bodies are split by the work they do: Session (connection, waiting), Browser (table,
/// folders, enabled states), Lifecycle (launch, end), Transfers (what both ways share), Download, Upload,
/// Edit (delete, new folders), DragDrop.
class Controller : public AsyncSocketDelegate, public TableDataSource, private DeviceListSource {
public:
    /// What one polling step found. StillWaiting: ask again. Done: the client is idle and nothing is left in
    /// the socket's queue, even if people cancelled meanwhile. FailedOrDisconnected: the client failed or the
    /// connection is lost. Cancelled: people asked for it; the operation still runs.
    enum eReply { StillWaiting = 0, Done = 1, FailedOrDisconnected = 2, Cancelled = 3 };

    /// The window and the panel must outlive the controller.
    Controller(MainWindow& zrWindow, OpenPanel& zrPanel);
    ~Controller() override;
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    // --- Lifecycle ---

    void applicationDidFinishLaunching();

    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }

    /// Saves the settings, ends the connection and every running operation and prompt, and leaves the
    /// event loop with status 0. Works in the middle of anything; answers true.
    bool applicationShouldTerminate();

    /// Sets the main window's opacity, 1.0 is opaque.
    void changeTransparency(double zOpacity);

    void OnAbout();
    void OnUserGuide();
    void OnCopyDiagnostics();

    /// The one door through which people's actions come in: does nothing while another action, a prompt or
    /// the progress window runs, whichever way the action came, and returns false then.
    bool Perform(void (Controller::*zOperation)());
    bool Perform(const std::function<void()>& zOperation);

    // --- Session ---

    void OnConnectButton();

    /// Connects to the chosen address and shows zStartDir. False when the attempt failed or was cancelled.
    bool ConnectDevice(const std::string& zStartDir = {});

    /// Resets the protocol client, then disconnects without a message.
    bool DisconnectDevice();

    /// Closes the connection, empties the table and shows zMessage ("" for the hint how to begin).
    /// Returns when the connection is gone. Leaves the client as it is, unlike the one above.
    bool DisconnectDevice(const std::string& zMessage);

    bool IsConnected() const { return !mClientSockets.empty(); }

    /// The socket's last error text, else the protocol client's, else "". The client keeps its last failure
    /// text for good; once that has ended and explained one connection attempt it counts no more, since it
    /// would lock people out.
    std::string GetLastError() const;

    void SetStatusText(const std::string& zText);

    /// The client's way to the device: queues the bytes and returns zLength.
    int SendBytes(const char* zpBytes, int zLength);

    /// One step of waiting for the client's operation to end; the caller repeats it while it is
    /// StillWaiting. Disconnects a client that has failed. zpSession may be null.
    eReply CheckForReply(ModalSession* zpSession);

    /// After a cancel: gives the running operation 4 seconds to end. StillWaiting when it did not.
    eReply WaitForReply();

    /// Centres the progress window over the main window and begins its modal session; it shows when the
    /// operation has lasted a while. The caller ends the session and closes the window.
    std::unique_ptr<ModalSession> InitProgressDialogue(const std::string& zTitle);

    /// Size in bytes and number of files of a device folder's tree. False, and nothing stored, where it
    /// cannot be asked for; when the answer does not come, what is known by then is stored, and true
    /// returned.
    bool GetDirRecurseInfo(const std::string& zPath, std::uint32_t& zrFileSize, std::int32_t& zrNumFiles);

    /// Lists a device folder into zpDirList (null: the listing on screen). False when it failed, was
    /// cancelled, or the client is busy.
    bool GetDirectoryContents(ModalSession* zpSession, const std::string& zPath,
                              cDeviceDirList* zpDirList = nullptr);

    // --- Browser ---

    /// Lists a device folder ("" is the root) and shows it.
    void SetCurrentDirectory(const std::string& zPath);
    void SetDirectoryText(const std::string& zText);

    /// Brings buttons and fields in line with the connection, the folder's rights and the selection.
    void UpdateControls();

    void OnBackButton();
    void OnTableViewDoubleClick();

    /// Opens the folder that alone is selected, wherever the keyboard is in the table.
    void OnOpen();
    void OnRefresh();

    int numberOfRowsInTableView() const override;
    std::string tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const override;
    bool tableViewShouldSelectRow(int zRow) const override;
    bool tableViewShouldShowCellExpansionForTableColumn(const std::string& zColumn, int zRow) const override;
    std::string tableViewIconNameForRow(int zRow) const override;
    void tableViewSortDescriptorsDidChange(const sSortDescriptor& zDescriptor) override;
    void tableViewSelectionDidChange();
    void tableViewColumnDidResize();

    // --- Download ---

    void OnDownloadButton();

    /// Downloads the entries of zrDeviceFileList into a local folder and shows the list's folder again.
    /// Returns the error text; "" also when people cancelled.
    std::string DownloadFiles(const std::string& zDestination, const cDeviceDirList& zrDeviceFileList);

    // --- Upload ---

    void OnUploadButton();

    /// The same for a folder with everything in it.
    void OnUploadFolder();

    /// Uploads local files and folders (full paths) into a device folder, after asking about everything that
    /// is there already in the folder on screen. Returns the error text; "" also when people cancelled.
    std::string UploadFiles(const std::vector<std::string>& zPaths, const std::string& zrDevicePath);

    // --- Delete and Create Folder ---

    /// Deletes what is selected, after a question. Nothing keeps the remaining items from being deleted:
    /// neither one that the device refuses nor Cancel, which ends the wait for one of them.
    void OnDeleteButton();

    /// Asks for a name and makes a folder of its plain form, see ConvertNameForDevice, in the folder shown.
    void OnCreateFolderButton();

    // --- Drag and drop ---

    eDragOperation tableViewValidateDrop(int zRow) override;

    /// Uploads local files and folders into the folder shown, whatever the row. False where that is refused:
    /// without a connection, and into a folder that is read-only.
    bool tableViewAcceptDrop(const std::vector<std::string>& zPaths, int zRow) override;

    /// Offers the selected rows as files that will be there once they are dropped. Always false, as the
    /// table is to start no drag of its own.
    bool tableViewWriteRowsWithIndexes(const std::vector<int>& zRows) override;

    /// Downloads what is selected into the local folder where it was dropped. The names that it returns are
    /// none: nobody needs them.
    std::vector<std::string> namesOfPromisedFilesDroppedAtDestination(const std::string& zDestination);

    // --- Socket callbacks ---

    void onSocketDidConnectToHost(AsyncSocket& zrSocket, const std::string& zHost,
                                  std::uint16_t zPort) override;
    void onSocketDidReadData(AsyncSocket& zrSocket, const QByteArray& zData, long zTag) override;
    void onSocketDidWriteDataWithTag(AsyncSocket& zrSocket, long zTag) override;
    void onSocketWillDisconnectWithError(AsyncSocket& zrSocket,
                                         const std::optional<SocketError>& zError) override;
    void onSocketDidDisconnect(AsyncSocket& zrSocket) override;
    void onSocketDidAcceptNewSocket(AsyncSocket& zrSocket, AsyncSocket& zrNewSocket) override;

private:
    friend class ControllerProbe; // tests of what no connection of today sets

    struct sDownload;
    struct sListingProgress;
    struct sUpload;

    Controller(MainWindow& zrWindow, OpenPanel& zrPanel, const sMainWindowControls& zControls);
    void ShowMessage(const std::string& zTitle, const std::string& zMessage);
    void CentreOverWindow(QWidget& zrDialog) const;
    void AskForAttention();

    // Session
    const std::vector<HostRecord>& GetDeviceList() const override;
    bool EnsureListening() override;
    bool ChooseDevice();
    void OpenSocket();
    bool WaitForWelcome(ModalSession& zrSession);
    void GreetDevice();
    void ShowConnected();
    void EndConnectionAttempt();
    static std::string ErrorText(const SocketError& zError);
    bool HasSocket(const AsyncSocket& zrSocket) const;
    bool IsAllDone() const;      ///< idle, and nothing left in the socket's queue
    bool OperationEnded() const; ///< that, or an error, or the connection is lost
    bool IsClientBusy() const;   ///< in an operation: neither idle nor failed
    eReply AwaitReply(ModalSession* zpSession, const std::function<void()>& zBeforeStep = {});
    void CloseProgress(ModalSession& zrSession);
    std::string LostTransferText();

    // Browser
    void RemoveAllRows();
    void ShowCurrentListing();
    void ShowFailedListing();
    void SetEmptyText(const char* zText);
    void OpenFolder(const std::string& zPath);
    void OpenRow(int zRow);
    void GoOnFrom(const std::string& zName);
    int SelectedFolder() const;
    sTableEntry MakeTableEntry(const cClientProtocol::cDeviceFileInfo& zrInfo) const;
    bool IsShown(const cClientProtocol::cDeviceFileInfo& zrInfo) const;
    const cClientProtocol::cDeviceFileInfo* RecordAt(int zRow) const;
    void SetEnabled(QWidget& zrControl, bool zEnabled);
    void UpdateConnectedControls();
    void UpdateDisconnectedControls();

    // Transfers
    bool MayGoOn(std::string& zrErrorText);
    bool LetWindowLive(ModalSession& zrSession);
    static bool EndsTheCommand(const std::string& zName);
    static bool IsPlainEntryName(const std::string& zName);
    static void LogSkipped(const std::string& zName, const char* zReason);
    static std::string DevicePathIn(const std::string& zFolder, const std::string& zName);
    int AskToOverwrite(bool zIsFolder, const std::string& zName);

    // Download
    cDeviceDirList SelectedRecords() const;
    void DownloadInto(const std::string& zDestination, const cDeviceDirList& zList);
    bool ChooseDestination(std::string& zrDestination);
    bool MeasureDownload(const cDeviceDirList& zrList, std::uint64_t& zrTotal);
    void RefreshAfterTransfer(ModalSession& zrSession, const std::string& zPath);
    bool DownloadFilesRecurse(const std::string& zDestination, const cDeviceDirList& zrDeviceFileList,
                              sDownload& zrDownload);
    bool DownloadFolder(const std::string& zDestination, const std::string& zDeviceDir,
                        const cClientProtocol::cDeviceFileInfo& zInfo, sDownload& zrDownload);
    bool DownloadListing(const std::string& zDestination, const cDeviceDirList& zList,
                         const std::string& zName, sDownload& zrDownload);
    bool DownloadFile(const std::string& zDestination, const std::string& zDeviceDir,
                      const cClientProtocol::cDeviceFileInfo& zInfo, sListingProgress& zrProgress,
                      sDownload& zrDownload);
    int AskForPlace(const std::string& zLocalPath, bool zIsTaken, sDownload& zrDownload);
    bool WaitForDownload(const cClientProtocol::cDeviceFileInfo& zInfo, sListingProgress& zrProgress,
                         sDownload& zrDownload);
    void ShowDownload(const cClientProtocol::cDeviceFileInfo& zInfo, const sListingProgress& zProgress,
                      const sDownload& zDownload);
    static float DownloadPosition(const cClientProtocol::cDeviceFileInfo& zInfo, float zFileProgress,
                                  const sListingProgress& zProgress, const sDownload& zDownload);

    // Upload
    void UploadChosen(sOpenPanelRequest zRequest);
    void UploadIntoShownFolder(const std::vector<std::string>& zPaths);
    bool DecideUploads(const std::vector<std::string>& zPaths, sUpload& zrUpload);
    int AskForUpload(const std::string& zPath, sUpload& zrUpload);
    bool CollectFolder(std::string zPath, sUpload& zrUpload);
    void SendFiles(sUpload& zrUpload);
    bool UploadFile(const std::string& zPath, sUpload& zrUpload);
    void ShowConversions(cAudioConversion& zrRecord, sUpload& zrUpload);
    void ShowUpload(const std::string& zName, double zDone, const sUpload& zUpload);
    bool WaitForUpload(const std::string& zName, cAudioConversion& zrRecord, sUpload& zrUpload);

    // Delete and Create Folder
    std::string DeleteQuestion(const std::vector<int>& zRows) const;
    std::string DeleteRows(const std::vector<int>& zRows);
    void WaitForDelete(ModalSession& zrSession, std::size_t zNumber, std::size_t zCount);
    std::string AskForFolderName();
    std::string CreateFolder(const std::string& zTypedName);
    void MakeDeviceFolder(const std::string& zPath);
    bool RefusesWhileBusy(const char* zTitle);
    void ListAfterEdit();

    MainWindow& mrWindow;
    OpenPanel& mrPanel;

    QWidget* bgView;
    QPushButton* mpConnectButton;
    QPushButton* mpBackButton;
    QPushButton* mpCreateFolderButton;
    QPushButton* mpDeleteButton;
    QPushButton* mpUploadButton;
    QPushButton* mpDownloadButton;
    DeviceTableView* tableView;
    TableModel* mpTableModel;
    std::unique_ptr<ProgressController> progressDlg;
    QLineEdit* mpStatusText;
    QLineEdit* mpDirectoryText;
    std::unique_ptr<cSocketClientProtocol> mpSocket; ///< the protocol client, which sends through a socket
    std::vector<sTableEntry> mTableEntries;
    std::vector<std::shared_ptr<AsyncSocket>> mClientSockets; ///< one or none
    std::unique_ptr<Discover> discover; ///< null while the network interfaces cannot be read
    std::string mLastSocketError;
    bool mSuperUser = false;
    std::string mFileTypes;
    cDeviceDirList mCurrentDirList;
    std::string mIPAddressStr;
    std::int32_t mPortNumber = 0;
    std::string mDeviceName;

    std::unique_ptr<cReceiveAdmission> mpAdmission;
    /// The rights of the folder on screen; the client's are those of whatever it listed last.
    std::int32_t mShownRights = kRightReadOnly;
    /// Whether the client's failure text is news; false once it has ended a connection attempt.
    bool mClientFailureCounts = false;
    QElapsedTimer mSinceWindowLived;
    std::unique_ptr<Attention> mpAttention;
    bool mPerforming = false;
    bool mTerminating = false;
};
