#include "JobReport.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// What the wire, the disk and the device allow: the same jobs as benchmark_transfers over the same protocol,
// by bare blocking calls with nothing around them. It trusts the device, keeps nobody informed and replaces
// no file safely.

namespace {

constexpr char kUsage[] = "benchmark_floor download-file NAME SIZE FOLDER | download-folder NAME FOLDER |\n"
                          "                upload DEVICE_FOLDER PATH...";
constexpr std::uint16_t kDevicePort = 10240;
constexpr std::size_t kBufferSize = 262'144;

using tWords = std::vector<std::string>;

std::size_t Checked(ssize_t zResult, const char* zCall) {
    if (zResult < 0) {
        throw std::system_error(errno, std::generic_category(), zCall);
    }
    return static_cast<std::size_t>(zResult);
}

class Descriptor {
public:
    Descriptor(int zDescriptor, const char* zCall)
        : mDescriptor(static_cast<int>(Checked(zDescriptor, zCall))) {}

    ~Descriptor() { ::close(mDescriptor); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return mDescriptor; }

private:
    int mDescriptor;
};

void WriteAll(int zFile, const char* zpBytes, std::size_t zLength) {
    while (zLength > 0) {
        const std::size_t written = Checked(::write(zFile, zpBytes, zLength), "write");
        zpBytes += written;
        zLength -= written;
    }
}

/// One connection to the device at 127.0.0.1, welcomed.
class Connection {
public:
    Connection() : mSocket(::socket(AF_INET, SOCK_STREAM, 0), "socket"), mBuffer(kBufferSize) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(kDevicePort);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int noDelay = 1; // as the program and the device have it
        Checked(::setsockopt(mSocket.Get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay),
                "setsockopt");
        Checked(::connect(mSocket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                "connect");
        ReadText("</welcome>");
    }

    void Send(const char* zpBytes, std::size_t zLength) {
        while (zLength > 0) {
            const std::size_t sent =
                Checked(::send(mSocket.Get(), zpBytes, std::min(zLength, kBufferSize), MSG_NOSIGNAL), "send");
            zpBytes += sent;
            zLength -= sent;
        }
    }

    void Send(const std::string& zText) { Send(zText.data(), zText.size()); }

    std::string ReadText(std::string_view zEnd) {
        std::string text;
        while (!text.ends_with(zEnd)) {
            text.append(mBuffer.data(), Receive(mBuffer.size()));
        }
        return text;
    }

    std::string List(const std::string& zFolder) {
        Send("<cmd dir>Path = \"User/" + zFolder + "\"</cmd>");
        return ReadText("</dir>");
    }

    void Download(const std::string& zDevicePath, const std::string& zLocalPath) {
        Send("<cmd download>Name = \"User/" + zDevicePath + "\"</cmd>");
        std::size_t awaited = ReadLength();
        const Descriptor file(::open(zLocalPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666),
                              "open");
        while (awaited > 0) {
            const std::size_t length = Receive(awaited);
            WriteAll(file.Get(), mBuffer.data(), length);
            awaited -= length;
        }
    }

private:
    std::size_t Receive(std::size_t zMost) {
        const std::size_t length =
            Checked(::recv(mSocket.Get(), mBuffer.data(), std::min(zMost, mBuffer.size()), 0), "recv");
        if (length == 0) {
            throw std::runtime_error("the device has left");
        }
        return length;
    }

    std::size_t ReadLength() {
        std::array<unsigned char, 4> bytes{};
        for (std::size_t have = 0; have < bytes.size();) {
            const std::size_t length = Receive(bytes.size() - have);
            std::memcpy(bytes.data() + have, mBuffer.data(), length);
            have += length;
        }
        return bytes[0] | std::size_t{bytes[1]} << 8 | std::size_t{bytes[2]} << 16 |
               std::size_t{bytes[3]} << 24;
    }

    Descriptor mSocket;
    std::vector<char> mBuffer;
};

std::string Value(std::string_view zEntry, std::string_view zKey) {
    const std::size_t begin = zEntry.find('"', zEntry.find(zKey)) + 1;
    return std::string(zEntry.substr(begin, zEntry.find('"', begin) - begin));
}

void DownloadTree(Connection& zrConnection, const std::string& zDevicePath, const std::string& zLocalPath) {
    std::filesystem::create_directory(zLocalPath);
    const std::string listing = zrConnection.List(zDevicePath);
    for (std::size_t begin = listing.find("<item"); begin != std::string::npos;
         begin = listing.find("<item", begin + 1)) {
        const std::string_view entry =
            std::string_view(listing).substr(begin, listing.find('>', begin) - begin);
        const std::string name = "/" + Value(entry, "Name");
        if (Value(entry, "Type") == "Dir") {
            DownloadTree(zrConnection, zDevicePath + name, zLocalPath + name);
        } else {
            zrConnection.Download(zDevicePath + name, zLocalPath + name);
        }
    }
}

void UploadFile(Connection& zrConnection, const std::string& zLocalPath, const std::string& zDevicePath) {
    const Descriptor file(::open(zLocalPath.c_str(), O_RDONLY | O_CLOEXEC), "open");

    struct stat about {};

    Checked(::fstat(file.Get(), &about), "fstat");
    const auto size = static_cast<std::size_t>(about.st_size);
    const std::unique_ptr<char[]> body(new char[size]); // a vector would fill it once more
    for (std::size_t have = 0; have < size;) {
        const std::size_t length = Checked(::read(file.Get(), body.get() + have, size - have), "read");
        if (length == 0) {
            throw std::runtime_error(zLocalPath + " became shorter");
        }
        have += length;
    }
    zrConnection.Send("<cmd upload>Name = \"User/" + zDevicePath + "\" Length = \"" + std::to_string(size) +
                      "\"</cmd>");
    zrConnection.Send(body.get(), size);
}

void UploadItem(Connection& zrConnection, const std::filesystem::path& zPath, const std::string& zFolder) {
    if (!std::filesystem::is_directory(zPath)) {
        UploadFile(zrConnection, zPath.string(), zFolder + "/" + zPath.filename().string());
        return;
    }
    const std::size_t rootLength = zPath.parent_path().string().size();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(zPath)) {
        if (entry.is_regular_file()) {
            const std::string path = entry.path().string();
            UploadFile(zrConnection, path, zFolder + path.substr(rootLength));
        }
    }
}

void RunJob(const tWords& zWords) {
    Connection connection;
    const JobReport report;
    if (zWords.at(0) == "download-file") {
        connection.Download(zWords.at(1), zWords.at(3) + "/" + zWords.at(1));
    } else if (zWords.at(0) == "download-folder") {
        DownloadTree(connection, zWords.at(1), zWords.at(2) + "/" + zWords.at(1));
    } else if (zWords.at(0) == "upload") {
        for (std::size_t item = 2; item < zWords.size(); ++item) {
            UploadItem(connection, zWords[item], zWords.at(1));
        }
        connection.List(zWords.at(1)); // its answer tells that the device has everything
    } else {
        throw std::runtime_error(kUsage);
    }
    report.Print();
}

} // namespace

int main(int argc, char** argv) {
    try {
        RunJob({argv + 1, argv + argc});
    } catch (const std::out_of_range&) {
        std::fprintf(stderr, "%s\n", kUsage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
