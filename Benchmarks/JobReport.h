#pragma once

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

/// A figure of /proc/PID/status in KiB, such as "VmHWM"; 0 where there is none.
inline long MemoryKib(const std::string& zKey, const std::string& zProcess = "self") {
    std::ifstream status("/proc/" + zProcess + "/status");
    for (std::string word; status >> word;) {
        if (word == zKey + ":") {
            long kib = 0;
            status >> kib;
            return kib;
        }
    }
    return 0;
}

/// Measures the job between its construction and Print: seconds, and how much memory was held at most.
class JobReport {
public:
    JobReport() : mBeforeKib(RestartPeak()), mStart(std::chrono::steady_clock::now()) {}

    /// Ends the measurement; one line for the script that started this program.
    void Print() const {
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - mStart;
        std::printf("{\"seconds\": %.9f, \"before_kib\": %ld, \"peak_kib\": %ld}\n", taken.count(),
                    mBeforeKib, MemoryKib("VmHWM"));
    }

private:
    /// Makes the peak of before forgotten and returns what is held now.
    static long RestartPeak() {
        std::ofstream("/proc/self/clear_refs") << "5";
        return MemoryKib("VmRSS");
    }

    long mBeforeKib;
    std::chrono::steady_clock::time_point mStart;
};
