#include "application.h"

int main(int argc, char* argv[]) {
    return frontpanel::run(argc, argv);
}
