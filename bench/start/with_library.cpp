// A program that is linked to the library and does nothing with it.
#include <frontpanel_data/timer.h>

int main(int count, char** /*arguments*/) {
    return count > 1 ? static_cast<int>(get_host_time()) : 0;
}
