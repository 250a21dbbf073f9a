// The least that an application does: a device of its own, a menu, and a value that is read, stepped
// and written back.
#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/front_panel_messages.h>
#include <frontpanel_data/timer.h>

#include <cstdio>
#include <cstring>

namespace {

// A device with one integer parameter.
class Device : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int length) override {
        if (length < sizeof m_value) {
            return 1;
        }
        std::memcpy(buffer, &m_value, sizeof m_value);
        return 0;
    }
    int Set(unsigned int, unsigned int, const void* buffer, unsigned int length) override {
        if (length != sizeof m_value) {
            return 1;
        }
        std::memcpy(&m_value, buffer, length);
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

    int32_t value() const { return m_value; }

private:
    int32_t m_value = 41;
};

bool steps_a_value(const Index_t& index) {
    Device device;
    Integer_model level(17, &index, 0, 100, 0);
    return level.Refresh(&device) == Data_model::OK && level.Inc_value(1, 0) == Data_model::OK &&
           level.Commit(&device) == Data_model::OK && device.value() == 42;
}

bool builds_a_menu(const Index_t& index) {
    Node_entry root("Main", "the main menu", &index, nullptr, Data_entry::VISIBLE_ALL,
                    Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    Node_entry audio("Audio:x", "the audio menu", &index, &root, Data_entry::VISIBLE_ALL,
                     Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    return root.Get_child() == &audio && audio.Get_parent() == &root &&
           std::strcmp(audio.Get_name(), "Audio") == 0 && root.Remove(&audio) == 0;
}

bool keeps_time() {
    LinuxTimer timer;
    long left = -1;
    return timer.set(0) == 0 && timer.expired() && timer.remaining(&left) == 0 && left == 0 &&
           get_host_time_ns() != 0;
}

bool knows_the_keys() {
    const FrontPanel::Message& select = FrontPanel::SelectPressMessage;
    return select.type == FrontPanel::PushButtonUIT && select.length == 4 &&
           select.payload[3] == 11 &&
           dynamic_cast<const FrontPanel::PayloadMessage*>(&select) != nullptr;
}

}  // namespace

int main() {
    const Index_t index = {0, {}};
    if (debug != 0) {
        std::fprintf(stderr, "diagnostics are on before anybody asked for them\n");
        return 1;
    }
    if (!steps_a_value(index)) {
        std::fprintf(stderr, "the value did not reach the device\n");
        return 1;
    }
    if (!builds_a_menu(index)) {
        std::fprintf(stderr, "the menu does not hold together\n");
        return 1;
    }
    if (!keeps_time() || !knows_the_keys()) {
        std::fprintf(stderr, "time or messages are not as they are told\n");
        return 1;
    }
    return 0;
}
