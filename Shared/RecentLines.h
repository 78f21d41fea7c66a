#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The last lines of a text that never ends. It takes bounded memory, whatever comes: at most kLines lines,
/// and of each no more than kLongestLine bytes. Adding copies these bytes and does nothing else; memory is
/// asked for only until the lines have come round once.
class cRecentLines {
public:
    static constexpr std::size_t kLines = 200;
    static constexpr std::size_t kLongestLine = 512;

    /// Takes any bytes, a line in as many pieces as it comes in; a line feed ends it.
    void Add(std::string_view zText);

    /// The lines without their line feeds, the oldest first, a last one that has no end yet included. Each is
    /// readable UTF-8: "?" stands for a control character and U+FFFD for what is no UTF-8. One that is too
    /// long is cut between two characters and ends in an ellipsis.
    std::vector<std::string> Lines() const;

private:
    void Append(std::string_view zPart);

    std::array<std::string, kLines> mLines; ///< one byte more than the longest line tells that there is more
    std::size_t mBegun = 0; ///< lines so far; each takes the place of the one kLines before it
    bool mHasOpenLine = false;
};

/// What the program has written to its log, which is its standard output. Main thread only.
cRecentLines& RecentLog();
