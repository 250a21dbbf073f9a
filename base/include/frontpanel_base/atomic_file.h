// Writes a file so that a reader finds either the old text or the new one, never a part.
#ifndef FRONTPANEL_BASE_ATOMIC_FILE_H
#define FRONTPANEL_BASE_ATOMIC_FILE_H

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>

namespace frontpanel {

// How long to wait for another process that is writing the same file.
inline constexpr std::chrono::seconds LOCK_PATIENCE{5};

// Replaces or creates the file in one step, even if the process or the device fails in the middle. When several
// processes write it at the same time, the last one wins. The new text is on the disk afterwards. Follows links, also
// to a file that does not exist yet. A file that is replaced keeps its mode, and its owner and group where the process
// may set them. The temporary file is beside it. Input_error, with the file unchanged, when the file cannot be written;
// also when the temporary file is a pipe, a link or another user's, or another process locks it for longer than
// `patience`.
void write_whole_file(const std::string& file, const std::string& text,
                      std::chrono::milliseconds patience = LOCK_PATIENCE);

// Input_error when `write_whole_file` would have to fail, as in a folder that is read-only.
void check_writable(const std::string& file, std::chrono::milliseconds patience = LOCK_PATIENCE);

// The file that a name leads to through links, also when that file does not exist yet.
std::filesystem::path target_of(const std::string& file, std::error_code& error);

// "FILE.new", the file that `write_whole_file` writes first.
std::string temporary_of(const std::string& file);

}  // namespace frontpanel

#endif
