#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

/// Reads and replaces whole settings files. Does without <filesystem>, which would double the memory of a guardian.
/// Paths are absolute.
namespace ambertide::settings_file {

/// Bytes; nothing larger is a settings file.
inline constexpr off_t mostBytes = 1024 * 1024;

/// The whole file; empty when there is none. Nothing when it cannot be read (errno says why), is larger than
/// `mostBytes` (EFBIG) or is no regular file (EINVAL).
std::optional<std::string> read(const std::string &file);

/// The path of the folder that the file is in.
std::string folderOf(const std::string &file);

/// Makes the folder and those above it, where they are missing, for this user alone.
void makeFolder(const std::string &folder);

/// Replaces `expected`, the present content (empty where there is no file), by `text`. At every moment, even in a power
/// failure, the file has one or the other in full. A link stays a link, and its target is replaced; a dangling one is
/// an error. The file keeps its mode, and a new one is for this user alone. Makes the folder if it is missing. False
/// with errno set when that fails, ESTALE when the file holds something else by now; nothing has changed then.
bool replace(const std::string &file, const std::string &expected, const std::string &text);

} // namespace ambertide::settings_file
