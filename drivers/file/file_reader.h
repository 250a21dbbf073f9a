// Reads small files, each once: several parameters may be words of one file, or be in a folder with one name file.
//
// Nothing waits, and a pipe is not read at all: what was read of it is gone, and of a number that is written in two pieces
// the second would be taken for another number.
#ifndef FRONTPANEL_DRIVER_FILE_FILE_READER_H
#define FRONTPANEL_DRIVER_FILE_FILE_READER_H

#include <cstddef>
#include <map>
#include <string>

namespace frontpanel {

class File_reader {
public:
    // Of a larger file only the whole lines within this many bytes are read.
    static constexpr std::size_t LARGEST = std::size_t{64} * 1024;

    struct Content {
        std::string text;
        std::string failure;      // empty: none
        bool is_missing = false;  // the failure is that there is no such file
    };

    // Valid as long as the reader.
    const Content& read(const std::string& path);

private:
    std::map<std::string, Content> m_contents;
};

// Replaces what the file holds, in one call. Why that failed; empty when it did not. The file is not created.
std::string write_file(const std::string& path, const std::string& text);

}  // namespace frontpanel

#endif
