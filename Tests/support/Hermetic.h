#pragma once

#include <filesystem>
#include <string>

/// A home, configuration and temporary folder of its own for this process, set up before any code under
/// test looks for one and removed at the end.
class HermeticHome {
public:
    HermeticHome();
    ~HermeticHome();
    HermeticHome(const HermeticHome&) = delete;
    HermeticHome& operator=(const HermeticHome&) = delete;

private:
    std::filesystem::path mRoot;
};

/// A fresh folder, removed with everything in it at the end of the test.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }

    /// The full path of an entry, as the byte string that the code under test takes.
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }

    /// Writes a file, making its folders, and returns its full path.
    std::string Write(const std::string& name, const std::string& content) const;

    /// The content of a file; "" when it cannot be read.
    std::string Read(const std::string& name) const;

private:
    std::filesystem::path mPath;
};
