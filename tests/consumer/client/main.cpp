// The least that an application does: it reaches the library's exported state.
#include <frontpanel_data/data_interface.h>

#include <cstdio>

int main() {
    if (debug != 0) {
        std::fprintf(stderr, "diagnostics are on before anybody asked for them\n");
        return 1;
    }
    debug = 0x1;
    return 0;
}
