// A driver of the application's own, behind a cache, without a menu.
#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_drivers/driver.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "device.h"

namespace {

class Constant_driver : public frontpanel::Driver {
public:
    void add(const frontpanel::Json_value& /*source*/,
             const frontpanel::Driver_parameter& /*parameter*/) override {}
    frontpanel::Driver_result connect() override { return frontpanel::Driver_result::done(); }
    frontpanel::Driver_result read(const std::vector<std::size_t>& numbers,
                                   frontpanel::Value_sink& sink) override {
        for (const std::size_t number : numbers) {
            sink.value(number, 42);
        }
        return frontpanel::Driver_result::done();
    }
    frontpanel::Driver_result write(std::size_t /*number*/,
                                    const frontpanel::Parameter_value& /*value*/) override {
        return frontpanel::Driver_result::refused("it is a constant");
    }
};

}  // namespace

int main() {
    Device others;
    frontpanel::Device_cache cache(others);
    const std::size_t driver = cache.add_driver("constant", std::make_unique<Constant_driver>());
    frontpanel::Driver_parameter parameter;
    parameter.pid = 7;
    parameter.max = 100;
    cache.add_parameter(driver, parameter);
    cache.start();
    cache.read_all(std::chrono::seconds(10));
    std::int32_t value = 0;
    return cache.Get(7, 0, &value, sizeof value) == 0 && value == 42 ? 0 : 1;
}
