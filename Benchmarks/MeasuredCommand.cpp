#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>

// benchmark_command REPORT_FILE COMMAND...: runs another program and writes how long it took, from its start
// to its end, and how much memory it held at most. A child's peak counts from what its parent holds when it
// starts it, which is why the script, a large process, does not do this itself.

namespace {

constexpr int kNotStarted = 127;

void WriteReport(const char* zPath, double zSeconds, long zPeakKib) {
    if (std::FILE* const pReport = std::fopen(zPath, "w")) {
        std::fprintf(pReport, "{\"seconds\": %.9f, \"peak_kib\": %ld}\n", zSeconds, zPeakKib);
        std::fclose(pReport);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("benchmark_command REPORT_FILE COMMAND...\n", stderr);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it ends with this program, whatever ends that
        ::execvp(argv[2], argv + 2);
        std::fprintf(stderr, "%s: %s\n", argv[2], std::strerror(errno));
        ::_exit(kNotStarted);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        std::perror("benchmark_command");
        return 1;
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    WriteReport(argv[1], taken.count(), usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
