#include "AudioConversion.h"

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <string>

// benchmark_conversion SOURCE FOLDER: one conversion for an upload and nothing else, so that the whole
// program can be timed beside others that make the same 16-bit WAV file.

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("benchmark_conversion SOURCE FOLDER\n", stderr);
        return 2;
    }
    const std::string folder = argv[2];
    cAudioConversion conversion(argv[1]);
    conversion.ConvertForUpload(&folder);
    if (!conversion.message.empty()) {
        std::fprintf(stderr, "%s\n", conversion.message.c_str());
        return 1;
    }
    return 0;
}
