#pragma once

#include "Announcer.h"
#include "Replies.h"

#include <QtCore/QStringList>
#include <QtNetwork/QHostAddress>

#include <string>

/// What the command line asks for.
struct Options {
    QString root;
    QHostAddress address;
    quint16 port = 0;
    DeviceIdentity identity;
    AnnouncementPlan announcements;

    bool helpWanted = false;
    std::string message; ///< The help text, or what is wrong with the options; "" when they are usable.
};

/// Reads the arguments of the program, its own name first.
Options ReadOptions(const QStringList& arguments);
