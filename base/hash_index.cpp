#include <frontpanel_base/hash_index.h>

#include <sys/auxv.h>

#include <cstring>

namespace frontpanel {

// The kernel gives each process some random bytes when it begins.
std::uint64_t hash_seed() {
    std::uint64_t seed = 0;
    // The interface of the C library gives addresses as numbers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto* const bytes = reinterpret_cast<const char*>(getauxval(AT_RANDOM));
    if (bytes != nullptr) {
        std::memcpy(&seed, bytes, sizeof seed);
    }
    return seed;
}

}  // namespace frontpanel
