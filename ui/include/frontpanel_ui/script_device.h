// The device behind a panel that plays a script: the operations that scripts need.
//
// An application that plays scripts implements it over its own device. Menu thread only.
#ifndef FRONTPANEL_UI_SCRIPT_DEVICE_H
#define FRONTPANEL_UI_SCRIPT_DEVICE_H

#include <optional>
#include <string>

#include <frontpanel_ui/script.h>

namespace frontpanel {

class Script_device {
public:
    // A value that the panel wrote, or tried to.
    struct Write {
        Parameter_name parameter;
        std::string value;  // as a script writes it: a number in decimal, or the text
        bool failed;
    };

    Script_device() = default;
    virtual ~Script_device() = default;
    Script_device(const Script_device&) = delete;
    Script_device& operator=(const Script_device&) = delete;

    // The address of the parameter with this name; nothing when the menu declares none.
    virtual std::optional<Parameter_name> find(const std::string& /*name*/) const {
        return std::nullopt;
    }
    // Whether the device has the parameter. The operations below are called with addresses of such parameters only.
    virtual bool has_parameter(const Parameter_name& parameter) const = 0;
    // Why a script cannot change the parameter or make it fail; empty when it can. Otherwise the two operations below
    // are not called for the parameter.
    virtual std::string why_fixed(const Parameter_name& /*parameter*/) const { return ""; }
    // Changes the parameter as the device does by itself. Empty on success, else why it cannot hold the value.
    virtual std::optional<std::string> set(const Parameter_name& parameter,
                                           const std::string& value) = 0;
    // Makes the panel's reads of the parameter, or its writes, fail from now on, or work again.
    virtual void set_fault(const Parameter_name& parameter, bool write, bool on) = 0;
    // The oldest write of the panel that was not dropped yet; empty when there is none. `drop_write` drops it.
    virtual std::optional<Write> oldest_write() const = 0;
    virtual void drop_write() = 0;
    // The option of list `list` that the card in the slot has selected, from 0; -1 for none.
    virtual int selected_option(int slot, int list) const = 0;
};

}  // namespace frontpanel

#endif
