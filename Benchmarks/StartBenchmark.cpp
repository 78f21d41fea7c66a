#include "JobReport.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

// benchmark_start MAPS_FILE COMMAND...: how long a program takes from its start to a painted window, seen
// from outside by another client of the display, and what memory it holds a second later. MAPS_FILE receives
// the list of the files that it has mapped by then.

namespace {

using tClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kPatience = 60s;
constexpr auto kLook = 250us;
constexpr auto kSettle = 1s;
constexpr std::uint16_t kLeastWidth = 200; // narrower windows are helpers of the toolkit

struct sFree {
    void operator()(void* zpMemory) const { std::free(zpMemory); }
};

template <typename T>
using tReply = std::unique_ptr<T, sFree>;

/// The display as a bystander sees it.
class Display {
public:
    Display() : mpConnection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(mpConnection) != 0) {
            throw std::runtime_error("no display");
        }
        mRoot = xcb_setup_roots_iterator(xcb_get_setup(mpConnection)).data->root;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(mpConnection, mRoot, XCB_CW_EVENT_MASK, &events);
        WaitForServer();
    }

    ~Display() { xcb_disconnect(mpConnection); }

    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// Takes what has been told since the last call; true once a window is there and something is in it.
    bool ShowsPaintedWindow() {
        while (const tReply<xcb_generic_event_t> event{xcb_poll_for_event(mpConnection)}) {
            if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY) {
                Consider(reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window);
            }
        }
        return mWindow != XCB_NONE && IsPainted();
    }

private:
    /// The server has done everything asked before when this answer is here.
    void WaitForServer() {
        tReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(mpConnection, xcb_get_input_focus(mpConnection), nullptr));
    }

    void Consider(xcb_window_t zWindow) {
        const tReply<xcb_get_geometry_reply_t> geometry{
            xcb_get_geometry_reply(mpConnection, xcb_get_geometry(mpConnection, zWindow), nullptr)};
        if (geometry && geometry->width >= kLeastWidth) {
            mWindow = zWindow;
            mX = static_cast<std::int16_t>(geometry->width / 2);
            mY = static_cast<std::int16_t>(geometry->height * 3 / 4);
        }
    }

    /// The empty display is black, and both programs' tables are light.
    bool IsPainted() {
        const tReply<xcb_get_image_reply_t> image{xcb_get_image_reply(
            mpConnection,
            xcb_get_image(mpConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, mWindow, mX, mY, 1, 1, 0x00FFFFFF),
            nullptr)};
        if (!image) {
            return false;
        }
        const std::uint8_t* const pPixel = xcb_get_image_data(image.get());
        return (pPixel[0] | pPixel[1] | pPixel[2]) != 0;
    }

    xcb_connection_t* mpConnection;
    xcb_window_t mRoot = XCB_NONE;
    xcb_window_t mWindow = XCB_NONE;
    std::int16_t mX = 0;
    std::int16_t mY = 0;
};

/// A started program; it ends with this object.
class Program {
public:
    explicit Program(char** zpCommand) : mProcess(::fork()) {
        if (mProcess == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it ends with this program, whatever ends that
            ::execvp(*zpCommand, zpCommand);
            ::_exit(127);
        }
        if (mProcess < 0) {
            throw std::runtime_error("fork failed");
        }
    }

    ~Program() {
        if (mRuns) {
            ::kill(mProcess, SIGTERM);
            ::waitpid(mProcess, nullptr, 0);
        }
    }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void RequireRunning() {
        mRuns = ::waitpid(mProcess, nullptr, WNOHANG) == 0;
        if (!mRuns) {
            throw std::runtime_error("the program has ended");
        }
    }

    std::string Id() const { return std::to_string(mProcess); }

private:
    pid_t mProcess;
    bool mRuns = true;
};

double SecondsToPaint(Display& zrDisplay, Program& zrProgram, tClock::time_point zStart) {
    while (!zrDisplay.ShowsPaintedWindow()) {
        zrProgram.RequireRunning();
        if (tClock::now() - zStart > kPatience) {
            throw std::runtime_error("no painted window");
        }
        std::this_thread::sleep_for(kLook);
    }
    return std::chrono::duration<double>(tClock::now() - zStart).count();
}

void Run(const char* zMapsFile, char** zpCommand) {
    Display display;
    const auto start = tClock::now();
    Program program(zpCommand);
    const double seconds = SecondsToPaint(display, program, start);
    std::this_thread::sleep_for(kSettle);
    program.RequireRunning();
    std::printf("{\"seconds\": %.9f, \"settled_kib\": %ld}\n", seconds, MemoryKib("VmRSS", program.Id()));
    std::ofstream(zMapsFile) << std::ifstream("/proc/" + program.Id() + "/maps").rdbuf();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("benchmark_start MAPS_FILE COMMAND...\n", stderr);
        return 2;
    }
    try {
        Run(argv[1], argv + 2);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
