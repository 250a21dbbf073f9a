// A program that is linked to the libraries that the library needs, and does nothing with them.
#include <cmath>
#include <stdexcept>

int main(int count, char** /*arguments*/) {
    if (count > 2) {
        throw std::runtime_error("no arguments");
    }
    return count > 1 ? static_cast<int>(std::tan(count)) : 0;
}
