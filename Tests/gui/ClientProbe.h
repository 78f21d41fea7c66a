#pragma once

#include "Controller.h"

#include <memory>
#include <utility>

/// Looks at the protocol client, of which the widgets show something only when the program looks itself, and
/// changes what no connection of today does.
class ControllerProbe {
public:
    static bool IsIdle(const Controller& zrController) {
        return zrController.mpSocket->GetState() == FTS_IDLE;
    }

    /// What the connection does with bytes from the device, within the event that calls this.
    static void Receive(Controller& zrController, const std::string& zBytes) {
        zrController.mpAdmission->Receive(zBytes.data(), static_cast<int>(zBytes.size()));
    }

    /// A row that stands for no record, which no listing of today makes.
    static void AddRowWithoutRecord(Controller& zrController) {
        zrController.mTableEntries.push_back({"..", "Folder", "", std::nullopt});
        zrController.mpTableModel->Reload();
    }

    static void UseAttention(Controller& zrController, std::unique_ptr<Attention> zpAttention) {
        zrController.mpAttention = std::move(zpAttention);
    }

    static float FileProgress(const Controller& zrController) { return zrController.mpSocket->GetProgress(); }
};
