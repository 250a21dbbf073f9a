// A menu over a device of the application's own: no simulator, no cards.
#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_menu/shown_value.h>
#include "support/json_places.h"

namespace frontpanel {
namespace {

// Numbers alone, and neither products nor sockets.
class Own_device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int /*varidx*/, void* buffer, unsigned int length) override {
        ++accesses;
        const auto found = numbers.find(pid);
        if (found == numbers.end() || length != sizeof found->second) {
            return 1;
        }
        std::memcpy(buffer, &found->second, sizeof found->second);
        return 0;
    }
    int Set(unsigned int pid, unsigned int /*varidx*/, const void* buffer,
            unsigned int length) override {
        ++accesses;
        std::memcpy(&numbers[pid], buffer, length);
        return 0;
    }
    int Get_prod_list(PROD_LIST_S* /*list*/, bool /*remote*/, bool /*refresh*/) override {
        return 1;
    }
    int Set_product_id(prod_id_t /*product*/) override { return 1; }
    int Get_prod_alias_name(char* /*name*/, prod_id_t /*product*/) override { return 1; }

    std::map<unsigned int, int32_t> numbers;
    int accesses = 0;
};

// A menu file with one parameter that has these further members, and these items.
std::string file_with(const std::string& members, const std::string& items,
                      const std::string& device = "") {
    return R"({"device": {"parameters": [
        {"name": "gain", "pid": 5, "type": "integer", "min": 0, "max": 9)" +
           members + "}]" + device + R"(}, "menu": {"name": "Main", "items": [)" + items + "]}}";
}

constexpr const char* GAIN = R"({"type": "range", "name": "Gain", "parameter": "gain"})";

TEST(MenuOverADevice, ShowsAndWritesWhatTheDeviceHolds) {
    Own_device device;
    device.numbers[5] = 7;
    const Loaded_menu loaded = load_menu_text("menu.json", file_with("", GAIN), device);
    EXPECT_TRUE(loaded.warnings.empty());
    EXPECT_EQ(device.accesses, 0) << "loading leaves the device alone";
    Data_entry& gain = *loaded.menu->root().Get_child();
    EXPECT_EQ(refresh(gain, loaded.menu->access()), 0);
    EXPECT_EQ(shown_value(gain), "7");
    constexpr int32_t QUIET = 2;
    gain.Set_value(&QUIET, sizeof QUIET);
    EXPECT_EQ(commit(gain, loaded.menu->access()), 0);
    EXPECT_EQ(device.numbers[5], 2);
}

TEST(MenuOverADevice, MembersOfASimulatedDeviceAreIgnoredWithOneWarning) {
    const std::string warning =
        ": warning: \"value\", \"products\" and \"cards\" describe a simulated device and are ignored";
    const std::string more = R"(, "products": [{"slot": 99}], "cards": [{"slot": 99}])";
    const std::string all = file_with(R"(, "value": 99)", GAIN, more);
    Own_device device;
    EXPECT_EQ(
        load_menu_text("menu.json", all, device).warnings,
        (std::vector<std::string>{placed(all, "menu.json: /device/parameters/0/value" + warning)}));
    const std::string cards = file_with("", GAIN, R"(, "cards": [])");
    EXPECT_EQ(load_menu_text("menu.json", cards, device).warnings,
              (std::vector<std::string>{placed(cards, "menu.json: /device/cards" + warning)}));
}

TEST(MenuOverADevice, AnyCardMayHaveAnyDocument) {
    Own_device device;
    const std::string text = file_with("", R"({"type": "enum", "name": "Input", "pid": 9001,
        "live": {"slot": 3, "web-type": "combobox"}})");
    EXPECT_TRUE(load_menu_text("menu.json", text, device).warnings.empty());
}

TEST(MenuOverADevice, TheApplicationBringsProductOptions) {
    Own_device device;
    const std::string text = file_with("", R"(
        {"type": "range", "name": "Gain", "parameter": "gain", "options": ["audio"]})");
    Loading loading;
    loading.product_options["audio"] = 1;
    const Loaded_menu with_audio = load_menu_text("menu.json", text, device, loading);
    EXPECT_GE(with_audio.menu->root().Get_child()->isVisible(true, &with_audio.menu->access()), 0);
    const Loaded_menu without = load_menu_text("menu.json", text, device);
    EXPECT_LT(without.menu->root().Get_child()->isVisible(true, &without.menu->access()), 0);
}

TEST(MenuOverADevice, ProblemsThatWereFoundBeforeAreAmongTheErrors) {
    Own_device device;
    Menu_document document("menu.json", file_with("", GAIN));
    document.root().report("the device is on fire");
    try {
        load_menu(document, device);
        FAIL();
    } catch (const Input_errors& errors) {
        EXPECT_EQ(errors.lines(),
                  (std::vector<std::string>{"menu.json:1:1: the device is on fire"}));
    }
}

}  // namespace
}  // namespace frontpanel
