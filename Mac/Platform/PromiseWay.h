#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <functional>
#include <string>

/// One way in which the target of a drag can tell the destination of promised files. A way is made with the
/// function that takes the destination, an absolute local folder in the file system's bytes. It is called at
/// most once, from inside the target's request: it must return at once, and the files come later.
class PromiseWay {
public:
    using OnDestination = std::function<void(const std::string& zFolder)>;

    PromiseWay() = default;
    virtual ~PromiseWay() = default;
    PromiseWay(const PromiseWay&) = delete;
    PromiseWay& operator=(const PromiseWay&) = delete;

    /// The data formats that the drag offers for this way.
    virtual QStringList Formats() const = 0;

    /// The data of one of these formats. Targets ask while the drag hovers over them too.
    virtual QByteArray Data(const QString& zFormat) = 0;

    /// The drag has started; the windowing system knows its source.
    virtual void OnStarted() {}

    /// The drag was dropped on a target that accepted it.
    virtual void OnDropped() {}
};
