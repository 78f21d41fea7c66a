#pragma once

#include "ClientProtocol.h"

#include <string>

/// Takes what a device sends before the client sees it, so that no sequence of bytes reaches an assertion
/// of the client, grows memory without bound or replaces a local file by a wrong one.
class cReceiveAdmission {
public:
    explicit cReceiveAdmission(cClientProtocol& zrClient);

    /// Takes received bytes, cut anywhere; a length of 0 or less does nothing.
    void Receive(const char* zpData, int zLength);

    /// Forgets what the last connection left unfinished. To be called for each new connection.
    void Clear();

private:
    int ReceiveText(const char* zpData, int zLength);
    int ReceiveLength(const char* zpData, int zLength);
    int ReceiveBody(const char* zpData, int zLength);
    bool IsDiscarding();

    cClientProtocol& mrClient;
    std::string mLengthPrefix; ///< the first bytes of a length that arrives in pieces
    bool mDownloadEnded = false;
    cDeviceDirList mUnclaimedList;
};
