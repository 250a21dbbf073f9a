// The entry for a pure virtual operation in the virtual tables of abstract classes. The linker puts this function in
// place of the C++ runtime's (`--wrap`), so that the dynamic linker has no symbol to look up for these entries at
// start-up. A call ends the program as the runtime's function does.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names.
__attribute__((noreturn)) void __real___cxa_pure_virtual();
__attribute__((noreturn, visibility("hidden"))) void __wrap___cxa_pure_virtual();

void __wrap___cxa_pure_virtual() {
    __real___cxa_pure_virtual();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}
