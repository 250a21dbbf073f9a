// What an abstract class's table of virtual operations holds for the operations that it leaves open. The linker puts
// this function in place of the compiler's (`--wrap`), so that the dynamic linker has nothing to look up for them at
// start-up. A call still ends as the compiler's function ends it.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names.
__attribute__((noreturn)) void __real___cxa_pure_virtual();
__attribute__((noreturn, visibility("hidden"))) void __wrap___cxa_pure_virtual();

void __wrap___cxa_pure_virtual() {
    __real___cxa_pure_virtual();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}
