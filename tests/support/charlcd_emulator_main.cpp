// A character display that reads its bytes from a pipe, and prints its grid whenever it changes: for panels that are
// tried by hand and by scripts.
// usage: charlcd_emulator PIPE COLUMNS ROWS
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/charlcd_emulator.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: charlcd_emulator PIPE COLUMNS ROWS\n", stderr);
        return 2;
    }
    support::Charlcd_emulator display(std::atoi(argv[2]), std::atoi(argv[3]));
    const int pipe = open(argv[1], O_RDONLY);
    if (pipe < 0) {
        std::perror(argv[1]);
        return 1;
    }
    // A terminal shows one picture in place of the one before.
    const char* const start = isatty(STDOUT_FILENO) != 0 ? "\x1B[H\x1B[2J" : "";
    std::array<char, 4096> bytes{};
    for (ssize_t size = 0; (size = read(pipe, bytes.data(), bytes.size())) > 0;) {
        display.feed({bytes.data(), static_cast<size_t>(size)});
        std::fputs((start + display.picture()).c_str(), stdout);
        std::fflush(stdout);
    }
    return display.mistakes() == 0 ? 0 : 1;
}
