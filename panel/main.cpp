#include "application.h"

int main(int argc, char* argv[]) {
    return panel::run(argc, argv);
}
