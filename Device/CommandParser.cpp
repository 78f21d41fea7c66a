#include "CommandParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace {

constexpr std::string_view kOpening = "<cmd ";
constexpr std::string_view kClosing = "</cmd>";

/// How the body of a command is put together: firstKey "..." and, where there is one, secondKey "...".
struct Shape {
    std::string_view name;
    Verb verb;
    std::string_view firstKey;
    std::string_view secondKey;
};

constexpr std::array kShapes{
    Shape{"dir", Verb::Dir, "Path = \"", ""},
    Shape{"dir_recurse", Verb::DirRecurse, "Path = \"", ""},
    Shape{"md", Verb::MakeDir, "Path = \"", ""},
    Shape{"del", Verb::Delete, "Path = \"", ""},
    Shape{"rename", Verb::Rename, "From = \"", "\" To = \""},
    Shape{"download", Verb::Download, "Name = \"", ""},
    Shape{"upload", Verb::Upload, "Name = \"", "\" Length = \""},
};

struct Values {
    std::string_view first;
    std::string_view second;
};

/// The values of a command's body. A quote inside a value is part of it: only the outermost ones and the
/// key between the two values count.
std::optional<Values> SplitValues(std::string_view body, const Shape& shape) {
    if (!body.starts_with(shape.firstKey) || body.size() == shape.firstKey.size() || !body.ends_with('"')) {
        return std::nullopt;
    }
    body = body.substr(shape.firstKey.size(), body.size() - shape.firstKey.size() - 1);
    if (shape.secondKey.empty()) {
        return Values{body, {}};
    }
    const std::size_t between = body.rfind(shape.secondKey);
    if (between == std::string_view::npos) {
        return std::nullopt;
    }
    return Values{body.substr(0, between), body.substr(between + shape.secondKey.size())};
}

/// A decimal number that is nothing else, or 0.
std::uint64_t ParseLength(std::string_view text) {
    std::uint64_t length = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, length);
    return error == std::errc() && stop == end ? length : 0;
}

/// Fills the command from what stands between its tags; false when it is not understood.
bool ReadCommand(Command& command) {
    std::string_view text = command.text;
    text = text.substr(kOpening.size(), text.size() - kOpening.size() - kClosing.size());
    const std::size_t nameEnd = text.find('>');
    const auto* shape = std::ranges::find(kShapes, text.substr(0, nameEnd), &Shape::name);
    if (nameEnd == std::string_view::npos || shape == kShapes.end()) {
        return false;
    }
    command.verb = shape->verb;
    const std::optional<Values> values = SplitValues(text.substr(nameEnd + 1), *shape);
    if (!values) {
        return command.verb == Verb::Upload;
    }
    command.path = values->first;
    if (command.verb == Verb::Rename) {
        command.newPath = values->second;
    } else if (command.verb == Verb::Upload) {
        command.length = ParseLength(values->second);
    }
    return true;
}

/// How many bytes at the start cannot be part of a command, whatever follows.
std::size_t CountForeignBytes(std::string_view bytes) {
    const std::size_t opening = bytes.find(kOpening);
    if (opening != std::string_view::npos) {
        return opening;
    }
    for (std::size_t tail = std::min(bytes.size(), kOpening.size() - 1); tail > 0; --tail) {
        if (bytes.ends_with(kOpening.substr(0, tail))) {
            return bytes.size() - tail;
        }
    }
    return bytes.size();
}

} // namespace

ParseResult ParseCommand(std::string_view bytes) {
    using Kind = ParseResult::Kind;
    ParseResult result;
    const std::size_t foreign = CountForeignBytes(bytes);
    if (foreign > 0) {
        result.kind = Kind::NoCommand;
        result.consumed = foreign;
        return result;
    }
    const std::string_view candidate = bytes.substr(0, kMaxCommandLength);
    const std::size_t closing = candidate.find(kClosing);
    if (closing == std::string_view::npos) {
        result.kind = candidate.size() == kMaxCommandLength ? Kind::TooLong : Kind::NeedMore;
        return result;
    }
    result.consumed = closing + kClosing.size();
    result.command.text = candidate.substr(0, result.consumed);
    result.kind = ReadCommand(result.command) ? Kind::Parsed : Kind::NotUnderstood;
    return result;
}
