#pragma once

#include "SeededChoice.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

/// Answers whatever comes up while the program runs event loops of its own: prompts and alerts by any of
/// their buttons, the progress window by Cancel once the user has waited long enough.
class ImpatientUser {
public:
    ImpatientUser();
    ImpatientUser(const ImpatientUser&) = delete;
    ImpatientUser& operator=(const ImpatientUser&) = delete;

    /// Begins anew with other choices.
    void BeginSession(std::uint64_t zSeed);

    /// Begins to wait for something, for a while of the user's own choice; or for as long as it takes.
    void BeginToWait();

    void WaitPatiently() { mPatience = QDeadlineTimer(QDeadlineTimer::Forever); }

private:
    void Look();
    void Answer(QWidget& zrWindow);

    SeededChoice mChoice{0};
    QTimer mTimer;
    QDeadlineTimer mPatience{QDeadlineTimer::Forever};
};
