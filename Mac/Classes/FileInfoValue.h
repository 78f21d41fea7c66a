#pragma once

#include "ClientProtocol.h"

/// Carries one device record into a table row. The record belongs to the listing on screen, so a value
/// is good only until that listing is fetched again.
class FileInfoValue {
public:
    explicit FileInfoValue(const cClientProtocol::cDeviceFileInfo* zpFileInfo) { init(zpFileInfo); }

    void init(const cClientProtocol::cDeviceFileInfo* zpFileInfo) { mpFileInfo = zpFileInfo; }

    const cClientProtocol::cDeviceFileInfo* mpFileInfo = nullptr;
};
