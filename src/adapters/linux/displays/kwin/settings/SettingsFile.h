#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

/// Without <filesystem>, which would double the memory of a guardian. Paths are absolute.
namespace ambertide::settings_file {

/// Bytes. More is no file of settings.
inline constexpr off_t mostBytes = 1024 * 1024;

/// The whole file; empty when there is none. Nothing when it cannot be read (errno says why), is larger than that
/// (EFBIG) or no file at all (EINVAL).
std::optional<std::string> read(const std::string &file);

/// That of the file's folder.
std::string folderOf(const std::string &file);

/// With all above it, where they are missing; the user's alone.
void makeFolder(const std::string &folder);

/// Puts `text` in the place of `expected`, which the file holds, empty where there is none. Either is there whole at
/// any moment, a power cut included. A link stays and leads to the new text, unless it leads nowhere; the file keeps
/// its mode, and a new one is the user's alone. Makes the folder it is in. False with errno set when that fails, ESTALE
/// when the file holds something else by now; then nothing has changed.
bool replace(const std::string &file, const std::string &expected, const std::string &text);

} // namespace ambertide::settings_file
