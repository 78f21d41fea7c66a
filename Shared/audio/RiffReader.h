#pragma once

#include "StdioStream.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

/// A chunk that a cRiffReader has entered. Offsets count from the start of the file.
struct cRiffChunk {
    char id[5] = {};         ///< four characters and a zero
    std::uint32_t size = 0;  ///< bytes of data as stored; of a RIFF or LIST chunk without the form type
    char type[5] = {};       ///< form type of a RIFF or LIST chunk, else ""
    std::uint32_t start = 0; ///< offset of the data, behind the form type where there is one
    std::uint32_t end = 0;   ///< offset just past the chunk and its pad byte
};

/// Walks the nested chunks of a RIFF file (Multimedia Programming Interface, version 1.0,
/// IBM and Microsoft, August 1991). The chunks entered form a stack, with the outer RIFF chunk at its bottom;
/// the stream stands somewhere in the innermost.
///
/// Sizes are taken as the file states them, whether the file holds that much or not. RIFF ends where 32 bits
/// do: a chunk that would end later ends at the last offset, 2^32 - 1, and what a larger file holds beyond is
/// not found. Every walk moves forward through the file, by at least one header a step.
class cRiffReader {
public:
    /// Opens a file, or takes over a seekable stream, and rewinds. `file` is null afterwards when that
    /// failed, so also for a file that is not RIFF.
    explicit cRiffReader(const std::string& zPath);
    explicit cRiffReader(std::FILE* zpFile);

    /// Enters the outer RIFF chunk and no other. False, with an empty stack, when the file does not begin
    /// with one.
    bool Rewind();

    /// Enters a child of the innermost chunk: the first of that name, wherever the stream stands; with a null
    /// name the one whose header comes next in the stream. The stream then stands at the start of its data.
    /// False when there is none; the stream then stands at the start of the innermost chunk's data.
    bool Descend(const char* zpName);

    /// Leaves the innermost chunk for what follows it. False in the outer RIFF chunk, which is never left,
    /// and when the stream cannot be moved there.
    bool Ascend();

    /// The innermost chunk, until the next one is entered or left: its id, null when nothing is entered; its
    /// form type, null when it has none; its size, 0 when nothing is entered.
    const char* CurrentId() const;
    const char* CurrentType() const;
    std::uint32_t CurrentSize() const;

    /// The next text that describes the file, from where the last call stopped: an item of an INFO list or a
    /// DISP chunk. zrDescription is an English name for it. The text ends at its first zero byte, whatever
    /// the item's size, at the latest where the file ends. False when there is no more; the next call begins
    /// anew.
    bool NextInfo(std::string& zrDescription, std::string& zrValue);

    tStdioStream file;             ///< null when this reader is of no use
    std::uint32_t riffSize = 0;    ///< bytes in the outer RIFF chunk, its form type not counted
    std::vector<cRiffChunk> stack; ///< innermost last

private:
    bool Seek(std::uint32_t zPosition);
    bool ReadHeader(cRiffChunk& zrChunk);
    bool ReadChild(cRiffChunk& zrChunk);
    bool ReadItem(std::string& zrDescription, std::string& zrValue);
    bool IsInInfoList() const;
};
