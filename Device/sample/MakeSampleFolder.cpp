// Writes a small folder of generated sounds and texts, the same bytes every time, for quillbox-device to
// serve.

#include "SoundFiles.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct SampleFile {
    const char* path;
    std::string content;
};

std::vector<SampleFile> Sounds() {
    return {
        {"Été à la mer.wav", MakeWav({44100, 2, 16, 0.5, {523.25, 659.26, 783.99, 1046.50}})},
        {"Field recordings/Birdsong.wav", MakeWav({48000, 1, 24, 0.25, {2093.0, 2349.3, 0.0, 2637.0}})},
        {"Field recordings/Harbour.aiff", MakeAiff({44100, 1, 16, 1.0, {110.0, 103.83}})},
        {"Field recordings/Raw takes/take 1.wav", MakeWav({44100, 1, 16, 1.0, {440.0}})},
        {"Field recordings/Raw takes/take 2.wav", MakeWav({96000, 2, 24, 1.0, {440.0}})},
        {"Straßenmusik/Akkordeon.wav", MakeWav({44100, 2, 16, 0.4, {392.0, 440.0, 493.88, 392.0}})},
        {"Straßenmusik/Geige & Gitarre.aif", MakeAiff({48000, 2, 24, 0.5, {587.33, 880.0}})},
        {"Metronome/60 bpm.wav", MakeWav({22050, 1, 16, 1.0, {1000.0, 800.0, 800.0}})},
        {"Metronome/120 bpm.wav", MakeWav({22050, 1, 16, 0.5, {1000.0, 800.0, 800.0}})},
    };
}

std::vector<SampleFile> Texts() {
    return {
        {"Read me first.txt", "A folder to try things on: listen, copy, upload, delete.\n"},
        {"Field recordings/Notes.txt", "Birdsong: early, no wind.\nHarbour: two ships' horns.\n"},
        {"Field recordings/Raw takes/take 3 (nothing recorded).wav", ""},
        {"Straßenmusik/Setliste.txt", "1. Akkordeon\n2. Geige & Gitarre\n3. Zugabe\n"},
        {"Documents/Packing list.txt", "recorder\nspare batteries\nwindshield\nheadphones\n"},
        {"Documents/About the sounds.txt", "All sounds are computed sine tones. Use them as you like.\n"},
    };
}

/// A day in May 2024 for the first entry, the next day for the next: a listing then has something to sort.
fs::file_time_type DateOf(int index) {
    using namespace std::chrono;
    constexpr sys_seconds kFirst = sys_days(year(2024) / month(5) / day(1)) + hours(12);
    return file_clock::from_sys(kFirst + days(index));
}

void WriteAll(const fs::path& folder, const std::vector<SampleFile>& files) {
    int index = 0;
    for (const SampleFile& file : files) {
        const fs::path path = folder / file.path;
        fs::create_directories(path.parent_path());
        std::ofstream stream(path, std::ios::binary);
        stream << file.content;
        stream.close();
        if (!stream) {
            throw fs::filesystem_error("cannot write", path, std::make_error_code(std::errc::io_error));
        }
        fs::last_write_time(path, DateOf(index++));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        static_cast<void>(std::fputs("usage: make-sample-folder DIR\n", stderr));
        return 2;
    }
    try {
        WriteAll(argv[1], Sounds());
        WriteAll(argv[1], Texts());
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "make-sample-folder: %s\n", error.what()));
        return 1;
    }
    return 0;
}
