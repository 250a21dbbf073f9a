#include "mosquitto_library.h"

#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <utility>

#define FRONTPANEL_MOSQUITTO_FILE "libmosquitto.so.1"

namespace frontpanel {
namespace {

// An ELF note with dlopen metadata, in which packaging tools look for libraries that a program opens at run time.
constexpr char OPENED_LIBRARY[] =
    R"([{"feature":"mqtt","description":"Values at MQTT brokers","priority":"recommended",)"
    R"("soname":[")" FRONTPANEL_MOSQUITTO_FILE R"("]}])";

struct Dlopen_note {
    std::uint32_t owner_size;
    std::uint32_t text_size;
    std::uint32_t type;
    char owner[4];
    char text[sizeof OPENED_LIBRARY];
};

template <std::size_t... AT>
constexpr Dlopen_note note_of(std::index_sequence<AT...> /*places*/) {
    return {4, sizeof OPENED_LIBRARY, 0x407c0c0a, {'F', 'D', 'O', '\0'}, {OPENED_LIBRARY[AT]...}};
}

[[gnu::used, gnu::section(".note.dlopen")]] alignas(4) const Dlopen_note NOTE =
    note_of(std::make_index_sequence<sizeof OPENED_LIBRARY>());

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

// False if a function is missing.
bool find_functions(void* library, Mosquitto_library& opened) {
#define FRONTPANEL_FIND(name) find(library, #name, opened.name)&&
    return FRONTPANEL_MOSQUITTO_FUNCTIONS(FRONTPANEL_FIND) true;
#undef FRONTPANEL_FIND
}

std::string last_fault() {
    const char* const text = dlerror();
    return std::string("MQTT needs a library that cannot be opened: ") +
           (text != nullptr ? text : "unknown error");
}

}  // namespace

// The library stays open: a process that has needed a broker will need it again.
std::optional<Mosquitto_library> open_mosquitto(const char* file, std::string& fault) {
    Mosquitto_library opened;
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr || !find_functions(library, opened)) {
        fault = last_fault();
        return std::nullopt;
    }
    return opened;
}

const Mosquitto_library* mosquitto_library(std::string& fault) {
    static std::mutex mutex;
    static std::optional<Mosquitto_library> library;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!library) {
        library = open_mosquitto(FRONTPANEL_MOSQUITTO_FILE, fault);
        if (library) {
            library->mosquitto_lib_init();
        }
    }
    return library ? &*library : nullptr;
}

}  // namespace frontpanel
