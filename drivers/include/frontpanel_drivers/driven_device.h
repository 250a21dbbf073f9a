// The drivers of a menu file with their parameters, behind a cache. docs/menu-file.md describes "drivers" and "source".
#ifndef FRONTPANEL_DRIVERS_DRIVEN_DEVICE_H
#define FRONTPANEL_DRIVERS_DRIVEN_DEVICE_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_drivers/driver.h>

namespace frontpanel {

using Driver_table = std::vector<const Driver_row*>;

// Whether a parameter of the file lives at a driver.
bool has_source(const Json_value& parameter);
// Whether any parameter of the file lives at a driver.
bool has_sources(const Json_value& file);

// How a driver that the table lacks, or has without `create`, is reported.
enum class Lacking_drivers {
    REFUSED,   // as an error: its parameters cannot be reached
    WARNED_OF  // as a warning: another device replaces every driver
};

class Driven_device {
public:
    static constexpr std::size_t MOST_DRIVERS = 32;

    // Reads the member "device" of `file`. Errors in its drivers and sources are added to `problems`, and reading goes
    // on; do not start a device with errors. `folder` is that of the file; `others` has the parameters without a
    // source, and outlives the device.
    Driven_device(const Json_value& file, Problems& problems, const Driver_table& drivers,
                  const std::string& folder, Data_interface& others,
                  Device_cache_settings settings = {},
                  Lacking_drivers lacking = Lacking_drivers::REFUSED);
    Driven_device(const Driven_device&) = delete;
    Driven_device& operator=(const Driven_device&) = delete;

    // The device for the menu. The drivers work after its `start` was called.
    Device_cache& cache() { return m_cache; }
    // Has every driver warn of what is valid but probably a mistake. Requires: the cache has not been started.
    void check(Problems& problems) const;

private:
    class Reader;

    Device_cache m_cache;
    std::vector<const Driver*> m_drivers;  // the cache's own
};

}  // namespace frontpanel

#endif
