// A path in which "*" matches a number that the kernel assigns: "/sys/class/hwmon/hwmon*/temp1_input".
//
// A file with a name in the folder selects one of several matching folders. The name is checked at each use, so that a
// device that comes back under another number, or another device under its number, is not confused with it.
#ifndef FRONTPANEL_DRIVER_FILE_PATH_PATTERN_H
#define FRONTPANEL_DRIVER_FILE_PATH_PATTERN_H

#include <cstddef>
#include <string>
#include <vector>

#include "file_reader.h"

namespace frontpanel {

class Path_pattern {
public:
    static constexpr std::size_t LONGEST = 1024;
    static constexpr std::size_t MOST_STARS = 4;
    static constexpr std::size_t MOST_FOUND = 256;

    // `name` is what the file `name_file` holds, in the folder that the last "*" names, or else in that of the file itself;
    // empty for none. Requires: `mistake_in(path)` is empty.
    Path_pattern(const std::string& path, std::string name, std::string name_file);
    // What is wrong with a path; empty for nothing.
    static std::string mistake_in(const std::string& path);

    struct Found {
        std::string path;         // empty: none
        std::string failure;      // why
        bool is_missing = false;  // there is none, for sure
    };
    // The one file that is meant now. Each time among all, so that a second one is never taken for the first.
    Found find(File_reader& reader) const;

private:
    // Both note a reason in `doubt` if the answer is unknown.
    bool has_name(const std::string& path, File_reader& reader, std::string& doubt) const;
    std::vector<std::string> expand(std::string& doubt) const;

    std::vector<std::string> m_parts;  // of the path, between slashes; at least two
    std::size_t m_last_star;           // among the parts; that of the folder when there is none
    bool m_has_star;
    std::string m_name;
    std::string m_name_file;
};

}  // namespace frontpanel

#endif
