#pragma once

#include <optional>
#include <string>
#include <vector>

class QMimeData;
class QUrl;

/// The absolute path that a URL from another program stands for, byte for byte as it is in the file system
/// (RFC 8089, the file scheme). Nothing for other schemes, for files of other computers, and for what is no
/// path alone.
std::optional<std::string> LocalPath(const QUrl& zUrl);

/// The local paths among what a drag carries, in its order.
std::vector<std::string> LocalPaths(const QMimeData& zData);
