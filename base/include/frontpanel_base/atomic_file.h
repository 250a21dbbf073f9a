// Writes a file so that a reader finds the old text or the new one, never a part.
#ifndef FRONTPANEL_BASE_ATOMIC_FILE_H
#define FRONTPANEL_BASE_ATOMIC_FILE_H

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>

namespace frontpanel {

// How long a process that is writing the same file is waited for.
inline constexpr std::chrono::seconds LOCK_PATIENCE{5};

// Replaces the file, or creates it, in one step: also when the process or the device ends in the middle, and when
// several processes do so at a time, of which the last one wins. The new text is on the disk afterwards. A link is
// followed, also one to a file that is still to be created. A file that is replaced keeps its mode, and its owner and
// group where the process may set them. The temporary file is beside it. Input_error when the file cannot be written;
// then it is unchanged. Also when the temporary file is a pipe, a link or another user's, or another process locks it
// for longer than `patience`.
void write_whole_file(const std::string& file, const std::string& text,
                      std::chrono::milliseconds patience = LOCK_PATIENCE);

// Input_error when `write_whole_file` would have to fail, as in a folder that is read-only.
void check_writable(const std::string& file, std::chrono::milliseconds patience = LOCK_PATIENCE);

// The file that a name leads to through links, also when that file is still to be created.
std::filesystem::path target_of(const std::string& file, std::error_code& error);

// "FILE.new", the file that `write_whole_file` writes first.
std::string temporary_of(const std::string& file);

}  // namespace frontpanel

#endif
