#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Runs a fuzz target once over every file of the folders named. None at all is an error, since a corpus that
/// was not found would look like one that passed.
int main(int argc, char** argv) {
    int count = 0;
    for (const char* folder : std::vector<const char*>(argv + 1, argv + argc)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    return count > 0 ? 0 : 1;
}
