#include "device_link.h"

namespace panel {

Device_link link_to(Memory_device& device) {
    const auto read_failed = [&device](const Data_entry& entry) {
        unsigned int varidx = 0;
        Data_model::Index_convert(entry.Get_index(), varidx);
        return device.last_read_failed(entry.Get_pid(), varidx);
    };
    return {device, read_failed};
}

}  // namespace panel
