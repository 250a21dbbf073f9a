// A device in memory as a menu file describes it: the start values of its parameters, the products in its slots with
// their aliases, and the documents of its cards. docs/menu-file.md describes the file.
#ifndef FRONTPANEL_SIMULATOR_SIMULATED_DEVICE_H
#define FRONTPANEL_SIMULATOR_SIMULATED_DEVICE_H

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_simulator/card_service.h>
#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_simulator/movement.h>

namespace frontpanel {

// Whether the web service of the cards runs.
enum class Cards { OFF, ON };

// The treatment of parameters with a "source", which is their place in a real device.
enum class Sources {
    SIMULATED,  // they are parameters like any other; without "value" they start at 0, or the limit nearest to it
    LEFT_OUT  // they live elsewhere
};

class Simulated_device {
public:
    // Reads the member "device" of `file`. Errors are added to `problems`, and reading goes on; do not use a device
    // with errors. With `Cards::ON` and a file with cards, starts their service on a free port of loopback. If that
    // fails, there are no cards, and `cards_failure` returns the reason.
    Simulated_device(const Json_value& file, Problems& problems, Cards cards = Cards::OFF,
                     Sources sources = Sources::SIMULATED);
    Simulated_device(const Simulated_device&) = delete;
    Simulated_device& operator=(const Simulated_device&) = delete;

    Memory_device& memory() { return m_memory; }
    // The parameters that move by themselves; they do not move until it is advanced.
    Movement& movement() { return m_movement; }
    // Null when no service runs. Lives as long as the device.
    Card_service* cards() { return m_cards.get(); }
    // Why the service could not be started; empty when there was no failure.
    const std::string& cards_failure() const { return m_cards_failure; }

    // Facts for a menu over the device. The product options that the products in the slots add, one object for each
    // product that has some; valid as long as the file's document.
    const std::vector<Json_value>& product_options() const { return m_product_options; }
    // Whether the card in a slot has a tree, or a combo box, of that parameter id.
    bool has_document(int slot, uint32_t pid, bool is_tree) const;
    // Pid and variable index of the parameters whose start value is wrong; each has been reported.
    const std::set<std::pair<uint32_t, uint32_t>>& wrong_parameters() const {
        return m_wrong_parameters;
    }

private:
    class Reader;
    void start_cards();

    Sources m_sources;
    Memory_device m_memory;
    Movement m_movement{m_memory};
    std::unique_ptr<Card_service> m_cards;
    std::string m_cards_failure;
    std::vector<Json_value> m_product_options;
    std::map<std::pair<int, uint32_t>, bool> m_documents;  // by slot and pid: whether it is a tree
    std::set<std::pair<uint32_t, uint32_t>> m_wrong_parameters;
};

}  // namespace frontpanel

#endif
