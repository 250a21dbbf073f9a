// A menu file over a device of the application's own: load it, show it, hand it keys.
#include <frontpanel_displays/text_display.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_ui/panel.h>

#include <cstring>
#include <iostream>
#include <map>

// The device: two parameters. A real application asks its hardware here.
class Device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        std::memcpy(buffer, &m_values[pid], length < sizeof(int) ? length : sizeof(int));
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int length) override {
        std::memcpy(&m_values[pid], buffer, length < sizeof(int) ? length : sizeof(int));
        std::cout << "device: parameter " << pid << " is now " << m_values[pid] << '\n';
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

private:
    std::map<unsigned int, int> m_values{{120, 4}, {121, 0}};
};

int main() try {
    using namespace frontpanel;
    Device device;
    const Loaded_menu loaded = load_menu("menu.json", device);
    Panel panel(*loaded.menu);
    Text_display display(std::cout);  // or `panel.run(terminal)`: see the other displays
    display.show(panel.frame());
    for (const Key::Kind kind : {Key::SELECT, Key::UP, Key::SELECT, Key::DOWN}) {
        panel.press({kind, 0});
        display.show(panel.frame());
    }
} catch (const frontpanel::Input_error& error) {
    std::cerr << error.what() << '\n';
    return 2;
}
