#pragma once

#include <string>

/// Gives this thread a view of the file systems of its own, once; false where the system does not allow it.
/// Needs a private network before, since the right to mount comes with that.
bool EnterPrivateMounts();

/// Something mounted for a while, seen only here. EnterPrivateMounts comes before.
class Mount {
public:
    /// A small disk of its own, in a folder that is made.
    static Mount Disk(const std::string& folder, const std::string& size);

    /// A device file in the place of a file that is made.
    static Mount Device(const std::string& path, const std::string& device);

    ~Mount();
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    /// From now on nothing can be written to this disk.
    void MakeReadOnly() const;

private:
    Mount(std::string path, const char* source, const char* type, unsigned long flags, const char* data);

    std::string mPath;
};

/// While one exists, the permissions of files hold for this thread even if it is root's.
class OrdinaryUser {
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    unsigned mBefore;
};
