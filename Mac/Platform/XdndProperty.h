#pragma once

#include "DirectSave.h"

#include <cstdint>

struct xcb_connection_t;

/// The property on X11: "XdndDirectSave0" of the window that owns the drag's selection.
class XdndProperty : public DirectSaveProperty {
public:
    /// None where the program does not run on X11.
    static std::unique_ptr<DirectSaveProperty> Make();

    explicit XdndProperty(xcb_connection_t* zpConnection);
    bool SetPromise(const std::string& zName) override;
    std::string ReadPromise() override;

private:
    xcb_connection_t* mpConnection;
    std::uint32_t mWindow = 0;
};
