#include "ClientProtocol.h"
#include "ReceiveAdmission.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

// How long the client takes to read a listing, from its first byte to the filled list: for several lengths,
// as it comes from a fast network, and in the small pieces of a slow one.

namespace {

class SilentClient : public cClientProtocol {
public:
    int Send(const char* /*zpData*/, int zLength) override { return zLength; }
};

/// A listing as a device sends it, of about 125 bytes for each entry: 4,000 are just below what is taken.
std::string Listing(std::int64_t zEntries) {
    std::string text = "<dir>Rights = \"cd-\"\n";
    for (std::int64_t number = 0; number < zEntries; ++number) {
        text += R"(<item Type = "File" Date = "2024-05-02 08:05" Size = "88244" Rights = "cd-" Name = )";
        text += "\"Harbour recordings, night, " + std::to_string(100'000 + number * 7919 % zEntries) +
                ".wav\">\n";
    }
    return text + "</dir>";
}

void ReadListing(benchmark::State& zrState) {
    const std::string listing = Listing(zrState.range(0));
    const auto piece = static_cast<std::size_t>(zrState.range(1));
    SilentClient client;
    cReceiveAdmission admission(client);
    cDeviceDirList list;
    for ([[maybe_unused]] auto round : zrState) {
        client.GetDir("", &list);
        for (std::string_view rest = listing; !rest.empty();
             rest.remove_prefix(std::min(piece, rest.size()))) {
            admission.Receive(rest.data(), static_cast<int>(std::min(piece, rest.size())));
        }
        if (list.mFile.size() != static_cast<std::size_t>(zrState.range(0))) {
            throw std::runtime_error("the listing was not read: " + client.GetErrorStr());
        }
    }
    zrState.counters["bytes"] = static_cast<double>(listing.size());
}

constexpr std::int64_t kWhole = 1 << 20;
constexpr std::int64_t kSmallPiece = 256;

BENCHMARK(ReadListing)
    ->ArgNames({"entries", "piece"})
    ->ArgsProduct({{500, 1000, 2000, 4000}, {kWhole, kSmallPiece}})
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
