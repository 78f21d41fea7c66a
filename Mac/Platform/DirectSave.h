#pragma once

#include "PromiseWay.h"

#include <memory>

/// The window property through which source and target of a direct save speak.
class DirectSaveProperty {
public:
    DirectSaveProperty() = default;
    virtual ~DirectSaveProperty() = default;
    DirectSaveProperty(const DirectSaveProperty&) = delete;
    DirectSaveProperty& operator=(const DirectSaveProperty&) = delete;

    /// Writes the promised name on the source of the running drag. False when there is no source.
    virtual bool SetPromise(const std::string& zName) = 0;

    /// What the property holds now; "" when it cannot be read.
    virtual std::string ReadPromise() = 0;
};

/// The direct save protocol (XDS, https://www.freedesktop.org/wiki/Specifications/XDS): the source promises a
/// name, the target replaces it by the URL of the file to be saved and asks for the format "XdndDirectSave0".
/// Only the folder of that URL is used, since one name stands for all the files of the drag.
class DirectSave : public PromiseWay {
public:
    /// zName is that of the first promised file; what no file can be called is replaced in it.
    DirectSave(std::unique_ptr<DirectSaveProperty> zpProperty, const std::string& zName,
               OnDestination zOnDestination);

    QStringList Formats() const override;

    /// "S" for a local file URL; "E" for any other URL; empty while the property still holds the name, and
    /// before the drop.
    QByteArray Data(const QString& zFormat) override;
    void OnStarted() override;
    void OnDropped() override;

private:
    std::unique_ptr<DirectSaveProperty> mpProperty;
    std::string mName;
    OnDestination mOnDestination;
    bool mIsPromised = false;
    bool mIsDropped = false;
    bool mIsTaken = false;
};
