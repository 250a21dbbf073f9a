// A menu with one number: the smallest application. It turns the encoder, and writes the value.
#include <frontpanel_data/data_entry.h>

#include <cstdio>
#include <cstring>

// The device: a single parameter. A real application asks its hardware here.
class Device : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int length) override {
        std::memcpy(buffer, &m_volume, length < sizeof m_volume ? length : sizeof m_volume);
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int length) override {
        std::memcpy(&m_volume, buffer, length < sizeof m_volume ? length : sizeof m_volume);
        std::printf("device: parameter %u is now %d\n", pid, m_volume);
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

private:
    int m_volume = 9;
};

int main() {
    Device device;
    const Index_t index = {1, {0}};
    char format[] = "0:Mute,%d dB", conversion[] = "v-20";
    Node_entry menu("Audio", "The menu", &index, nullptr, Data_entry::VISIBLE_ALL, -1, nullptr,
                    nullptr, nullptr);
    Range_entry volume("Volume", "Loudness", 120, &index, 0, 10, 5, format, conversion, &menu,
                       Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true, -1, nullptr, nullptr,
                       nullptr);
    volume.setValidRangeAndValues({{0, 11, {}}});
    for (const int step : {0, 1, 1, -20}) {  // what the encoder does
        char line[17] = {};
        Data_entry::EntryTypeSpecificOperation(&volume, &device, nullptr, true,
                                               Data_entry::OPERATION_REFRESH, nullptr);
        volume.Inc_value(step, 0);
        volume.Get_display_string(line, 16, false, 0);
        std::printf("%s: %s\n", volume.Get_name(), line);
        volume.Commit(&device);
    }
}
