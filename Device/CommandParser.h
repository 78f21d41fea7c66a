#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The longest command that is accepted, in bytes with its tags. Clients send at most 255.
inline constexpr std::size_t kMaxCommandLength = 4096;

enum class Verb { Dir, DirRecurse, MakeDir, Delete, Rename, Download, Upload };

/// One command as it came, its paths still being the client's words.
struct Command {
    Verb verb = Verb::Dir;
    std::string path;
    std::string newPath;      ///< Rename only.
    std::uint64_t length = 0; ///< Upload only; 0 when the text is no length at all.
    std::string text;         ///< The whole command with its tags, for the log.
};

/// What stands at the start of the received bytes.
struct ParseResult {
    enum class Kind {
        NeedMore,      ///< The beginning of a command: wait for the rest.
        NoCommand,     ///< Bytes outside of any command.
        NotUnderstood, ///< A command between its tags, with an unknown verb or other values than it takes.
        TooLong,       ///< A command that does not end within kMaxCommandLength.
        Parsed,
    };
    Kind kind = Kind::NeedMore;
    std::size_t consumed = 0; ///< How many bytes the caller is to drop.
    Command command;          ///< Only its text when NotUnderstood.
};

/// Reads the start of the bytes received so far. The result does not depend on how they were cut into
/// packets, and no more than kMaxCommandLength bytes need to be kept while more are needed.
///
/// An upload whose text is not understood is Parsed with a length of 0: its body follows nonetheless, so
/// the caller has to deal with it.
ParseResult ParseCommand(std::string_view bytes);
