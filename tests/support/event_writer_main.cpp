// An input device for panels that are tried by hand and by scripts: writes the events of standard input, "TYPE CODE
// VALUE" in numbers a line, to a pipe as the kernel writes them, each with its report.
// usage: event_writer PIPE
#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <iostream>

namespace {

bool send(int pipe, int type, int code, int value) {
    input_event event{};
    event.type = static_cast<uint16_t>(type);
    event.code = static_cast<uint16_t>(code);
    event.value = value;
    return write(pipe, &event, sizeof event) == static_cast<ssize_t>(sizeof event);
}

}  // namespace

int main(int argc, char** argv) {
    const int pipe = argc == 2 ? open(argv[1], O_WRONLY) : -1;
    if (pipe < 0) {
        std::fputs("usage: event_writer PIPE\n", stderr);
        return 2;
    }
    for (int type = 0, code = 0, value = 0; std::cin >> type >> code >> value;) {
        if (!send(pipe, type, code, value) || !send(pipe, EV_SYN, SYN_REPORT, 0)) {
            std::perror(argv[1]);
            return 1;
        }
    }
    return 0;
}
