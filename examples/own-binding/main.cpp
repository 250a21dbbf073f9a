// An engine of the application's own behind `Binding`: two rules in C++ in place of a rule language.
//
// At night the level goes up to 4 only, and while the device is muted it is hidden.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/data_entry.h>

#include <cstdio>
#include <cstring>
#include <map>

enum Parameter : unsigned int { LEVEL = 120, NIGHT = 121, MUTED = 122 };

// The device: three numbers. A real application asks its hardware here.
class Device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        const int value = values[pid];
        std::memcpy(buffer, &value, length < sizeof value ? length : sizeof value);
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int length) override {
        std::memcpy(&values[pid], buffer, length < sizeof(int) ? length : sizeof(int));
        std::printf("device: parameter %u is now %d\n", pid, values[pid]);
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

    std::map<unsigned int, int> values = {{LEVEL, 9}, {NIGHT, 0}, {MUTED, 0}};
};

class Level_rules : public Binding {
public:
    explicit Level_rules(Data_interface& device) : m_device(device) {}

    int evaluateAllBindingExpressions(int* flags) override {
        if ((*flags & EXECUTE_FLAG) != 0) {
            suggest(SUGGESTION_VISIBILITY, m_visible, value_of(MUTED) != 0 ? VIS_FALSE : VIS_TRUE);
            suggest(SUGGESTION_RANGE, m_max, value_of(NIGHT) != 0 ? 4 : 10);
        }
        return 0;
    }
    bool offersSuggestion(int mask) override {
        return (mask & (SUGGESTION_VISIBILITY | SUGGESTION_RANGE)) != 0;
    }
    bool suggestionUpdated(int mask) override { return (m_updated & mask) != 0; }
    void clearSuggestion(int mask) override { m_updated &= ~mask; }
    void getSuggestion(int mask, void* out) override {
        if (mask == SUGGESTION_VISIBILITY) {
            *static_cast<int*>(out) = m_visible;
        } else if (mask == SUGGESTION_RANGE) {
            *static_cast<std::vector<std::vector<int>>*>(out) = {{0, m_max}};
        }
    }

    // The entry needs none of these: there is no warning, no list of rules, and no dependant of the level.
    void setControlInfo(unsigned int, const Index_t*, Data_entry::Entry_type) override {}
    void setDataEntry(Data_entry*) override {}
    void addBindingList(BindingListT) override {}
    int numBindingLists() override { return 0; }
    int printBindErrors() override { return 0; }
    void clearBindErrors() override {}
    void printSuggestions() override {}
    void setOverrideVarid(var_index_s, return_s) override {}
    void clearOverrideVarid() override {}
    void displayWarning(std::string) override {}
    var_index_map_t* getVarIndexMap() override { return nullptr; }
    std::vector<var_index_s> getVarIndexMapKeys(int) override { return {}; }

private:
    int value_of(unsigned int pid) {
        int value = 0;
        m_device.Get(pid, 0, &value, sizeof value);
        return value;
    }
    void suggest(int kind, int& known, int value) {
        m_updated |= known != value ? kind : 0;
        known = value;
    }

    Data_interface& m_device;
    int m_updated = 0;
    int m_visible = VIS_TRUE;
    int m_max = 10;
};

int main() {
    Device device;
    const Index_t index = {1, {0}};
    char format[] = "%d dB", conversion[] = "v";
    Node_entry menu("Audio", "The menu", &index, nullptr, Data_entry::VISIBLE_ALL, -1, nullptr,
                    nullptr, nullptr);
    Range_entry level("Level", "Loudness", LEVEL, &index, 0, 10, 5, format, conversion, &menu,
                      Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true, -1, nullptr, nullptr,
                      nullptr);
    level.setValidRangeAndValues({{0, 11, {}}});
    level.Set_binding_object(new Level_rules(device));  // the entry owns it

    const auto show = [&](const char* when) {
        char line[17] = {};
        Data_entry::EntryTypeSpecificOperation(&level, &device, nullptr, true,
                                               Data_entry::OPERATION_REFRESH, nullptr);
        level.Get_display_string(line, 16, false, 0);
        std::printf("%s: %s %s\n", when, level.Get_name(),
                    level.isVisible() >= 0 ? line : "is hidden");
    };
    const auto turn = [&](int steps) {
        int value = 0;
        level.Get_value(&value, sizeof value);
        value = level.increment(value, value + steps);  // within what the rules allow
        level.Set_value(&value, sizeof value);
        level.Commit(&device);
    };
    show("by day");
    device.values[NIGHT] = 1;
    show("at night");
    turn(3);
    show("turned up");
    device.values[MUTED] = 1;
    show("muted");
    device.values = {{LEVEL, 2}, {NIGHT, 0}, {MUTED, 0}};
    show("by day");
    turn(30);
    show("turned up");
}
