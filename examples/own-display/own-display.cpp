// A display and keys of the application's own, in a loop of its own. A list of keys stands for the buttons.
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_ui/panel.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>

using frontpanel::Key;

// The device: two numbers. A real application asks its hardware here.
class Device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        std::memcpy(buffer, &m_values[pid], length < sizeof(int) ? length : sizeof(int));
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int length) override {
        std::memcpy(&m_values[pid], buffer, length < sizeof(int) ? length : sizeof(int));
        std::printf("device: parameter %u is now %d\n", pid, m_values[pid]);
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

private:
    std::map<unsigned int, int> m_values = {{120, 9}, {121, 0}};
};

// The display: a real one writes the cells to its controller.
class Printer : public frontpanel::Display {
public:
    void show(const frontpanel::Frame& frame) override {
        for (int row = 0; row < frame.lcd.size().rows; ++row) {
            std::printf("|%s|\n", frame.lcd.text(row).c_str());
        }
        std::printf("%s\n", frame.leds.edit ? "(edit)" : "");
    }
};

int main() {
    Device device;
    const frontpanel::Loaded_menu loaded = frontpanel::load_menu("menu.json", device);

    // A real loop leaves the panel's clock alone, and waits with poll() until `panel.due()`.
    frontpanel::Time now{};
    frontpanel::Panel_options options;
    options.size = {16, 2};
    options.clock = [&now] { return now; };
    frontpanel::Panel panel(*loaded.menu, options);
    Printer display;
    display.show(panel.frame());

    for (const Key::Kind key :
         {Key::SELECT, Key::UP, Key::SELECT, Key::DOWN, Key::SELECT, Key::UP, Key::SELECT}) {
        now += std::chrono::milliseconds(300);
        if (now >= panel.due()) {
            panel.tick();
        }
        panel.press({key});
        if (panel.has_changed()) {
            display.show(panel.frame());
        }
    }
}
