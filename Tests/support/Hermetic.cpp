#include "Hermetic.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::filesystem::path MakeFreshFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillbox-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder for the tests");
    }
    return pattern;
}

void UseFolder(const char* variable, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    ::setenv(variable, folder.c_str(), 1);
}

} // namespace

HermeticHome::HermeticHome() : mRoot(MakeFreshFolder()) {
    ::setenv("LC_ALL", "C.UTF-8", 1); // the system's words for its errors too
    UseFolder("HOME", mRoot / "home");
    UseFolder("XDG_CONFIG_HOME", mRoot / "home/.config");
    UseFolder("XDG_DATA_HOME", mRoot / "home/.local/share");
    UseFolder("XDG_CACHE_HOME", mRoot / "home/.cache");
    UseFolder("XDG_RUNTIME_DIR", mRoot / "run");
    std::filesystem::permissions(mRoot / "run", std::filesystem::perms::owner_all);
    std::filesystem::create_directories(mRoot / "home/Documents");
    UseFolder("TMPDIR", mRoot / "tmp");
}

HermeticHome::~HermeticHome() {
    std::error_code ignored;
    std::filesystem::remove_all(mRoot, ignored);
}

TestFolder::TestFolder() : mPath(MakeFreshFolder()) {}

TestFolder::~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TestFolder::Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = mPath / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
}

std::string TestFolder::Read(const std::string& name) const {
    std::ifstream stream(mPath / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
