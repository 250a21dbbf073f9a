// The simulated device, and the drivers beside it, as scripts see them.
#ifndef FRONTPANEL_APP_SIMULATED_SCRIPT_DEVICE_H
#define FRONTPANEL_APP_SIMULATED_SCRIPT_DEVICE_H

#include <cstdint>
#include <deque>
#include <set>
#include <tuple>

#include <frontpanel_binding/parameter_table.h>
#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_simulator/card_service.h>
#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_ui/script_device.h>

namespace frontpanel {

// Takes the fault and write callbacks of the device, and the write callback of the cache, for its life.
class Simulated_script_device : public Script_device {
public:
    // `cards` is null when none run, `driven` when no parameter lives at a driver. `parameters` are what the menu declares.
    // All outlive the object.
    Simulated_script_device(Memory_device& device, const Card_service* cards,
                            const Parameter_table& parameters, Device_cache* driven = nullptr);
    ~Simulated_script_device() override;

    std::optional<Parameter_name> find(const std::string& name) const override;
    bool has_parameter(const Parameter_name& parameter) const override;
    std::string why_fixed(const Parameter_name& parameter) const override;
    std::optional<std::string> set(const Parameter_name& parameter,
                                   const std::string& value) override;
    void set_fault(const Parameter_name& parameter, bool write, bool on) override;
    std::optional<Write> oldest_write() const override;
    void drop_write() override { m_writes.pop_front(); }
    int selected_option(int slot, int list) const override;

private:
    bool is_driven(const Parameter_name& parameter) const;

    using Fault = std::tuple<bool, uint32_t, uint32_t>;  // write, pid, variable index

    Memory_device& m_device;
    const Card_service* m_cards;
    const Parameter_table& m_parameters;
    Device_cache* m_driven;
    std::deque<Write> m_writes;
    std::set<Fault> m_faults;
};

}  // namespace frontpanel

#endif
