// The values of the simulated device, the selections of its cards, and the last writes of a menu's write rules, in a
// file, so that they survive a restart. docs/state-file.md describes it.
#ifndef FRONTPANEL_SIMULATOR_STATE_FILE_H
#define FRONTPANEL_SIMULATOR_STATE_FILE_H

#include <frontpanel_simulator/card_service.h>
#include <frontpanel_simulator/memory_device.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace frontpanel {

class Json_value;

class State_file {
public:
    // Bytes of a file: room for about 110,000 of the longest texts.
    static constexpr std::size_t LARGEST = std::size_t{64} * 1024 * 1024;

    // Device and cards outlive the object; `cards` is null where none run. `largest` is the most bytes of the file,
    // written or read, a whole number of KiB.
    State_file(std::string file, Memory_device& device, Card_service* cards = nullptr,
               std::size_t largest = LARGEST);

    const std::string& name() const { return m_file; }

    // The last writes of the write rules with a name. They belong to the menu's rules; the file only keeps them.
    struct Rule_writes {
        std::string rules;  // 1 to 64 printable characters
        std::vector<Memory_device::Value> writes;
    };

    // Gives the device the values in the file. Values that the device does not have stay in the file for a device that
    // has them; a value that a parameter can no longer hold is dropped. A damaged file is renamed, and the start values
    // stay. Returns lines that report these. Throws Input_error, and changes nothing, when the file cannot be read, so
    // that its values are not lost, or does not begin as a state file: it was named by mistake.
    std::vector<std::string> restore();

    // The writes of rules that `restore` found.
    std::vector<Rule_writes> rule_writes() const;
    // Replaces the writes of the rules with these names; others stay as the file has them. Returns whether anything
    // changed. Any thread may call it.
    bool set_rule_writes(const std::vector<Rule_writes>& rules);

    // Writes the device's values, and those kept for other devices. Throws Input_error, with the file unchanged, when
    // that fails, or when the values need more bytes than `largest`. Any thread may call it, one at a time.
    void save() const;
    // Throws Input_error when `save` would fail.
    void check_savable() const;

private:
    using Key = std::tuple<uint32_t, uint32_t, RETURN_TYPE>;
    using Slot_and_pid = std::pair<int, int>;
    struct Content {
        std::map<Key, Memory_device::Value> values;
        std::map<Slot_and_pid, int> selections;
        std::map<std::string, std::vector<Memory_device::Value>> rules;
    };

    Content read(const std::string& text) const;
    static void read_rules(const Json_value& rules, Content& content);
    static void read_selections(const Json_value& selections, Content& content);
    std::string put_aside() const;
    void apply(const Content& content, std::vector<std::string>& lines);
    void apply(const Memory_device::Value& value, std::vector<std::string>& lines);
    void apply(const Slot_and_pid& document, int option, std::vector<std::string>& lines);
    Content content() const;
    std::string text() const;

    std::string m_file;
    Memory_device& m_device;
    Card_service* m_cards;
    std::size_t m_largest;
    Content m_for_others;  // values that this device does not have
    mutable std::mutex m_rules_mutex;
    std::map<std::string, std::vector<Memory_device::Value>> m_rules;
};

}  // namespace frontpanel

#endif
