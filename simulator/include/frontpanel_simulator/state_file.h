// The values of the simulated device, what is selected on its cards, and what the write rules of a menu have done, in a
// file, so that they survive a restart.
// docs/state-file.md describes it.
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

    // What the write rules that go by a name have written last. This is of the menu's rules; the file only keeps it.
    struct Rule_writes {
        std::string rules;  // 1 to 64 printable characters
        std::vector<Memory_device::Value> writes;
    };

    // Gives the device the values that the file keeps. What the device does not have is kept for the device that
    // has it; a value that a parameter cannot hold any more is dropped. A damaged file is put aside under another
    // name, and the start values stay. Returns the lines that report these. Input_error, and nothing happened, when
    // there is a file that cannot be read, since its values are not to be lost, or one that does not begin as a
    // file of values: it was named by mistake.
    std::vector<std::string> restore();

    // What `restore` found of rules.
    std::vector<Rule_writes> rule_writes() const;
    // From now on this is kept in place of what went by these names; other names keep what the file has. Whether
    // anything changed. On any thread.
    bool set_rule_writes(const std::vector<Rule_writes>& rules);

    // Writes the device's values, and what is kept for others. Input_error when that cannot be done; then the file
    // is as it was, also when the values need more bytes than `largest`. On any thread, one at a time.
    void save() const;
    // Input_error when `save` would have to fail.
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
    Content m_for_others;  // what this device does not have
    mutable std::mutex m_rules_mutex;
    std::map<std::string, std::vector<Memory_device::Value>> m_rules;
};

}  // namespace frontpanel

#endif
