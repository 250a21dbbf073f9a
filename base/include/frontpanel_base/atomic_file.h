// Writes a file so that whoever reads it finds the old text or the new one, never a part.
#ifndef FRONTPANEL_BASE_ATOMIC_FILE_H
#define FRONTPANEL_BASE_ATOMIC_FILE_H

#include <string>

namespace frontpanel {

// Replaces the file, or creates it, in one step: also when the process or the device ends in the middle, and when
// several processes do so at a time, of which the last one wins. The new text is on the disk afterwards. A link is
// followed. Beside the file stands "FILE.new" meanwhile. Input_error when it cannot be written; then the file is
// as it was.
void write_whole_file(const std::string& file, const std::string& text);

// Input_error when `write_whole_file` would have to fail, as in a folder that is read-only.
void check_writable(const std::string& file);

}  // namespace frontpanel

#endif
