// The smallest concrete entry: a leaf whose type a test chooses, which records what is asked of it.
//
//     std::vector<std::string> log;
//     Leaf volume("Volume", &node, {Data_entry::RANGE_LEAF, &log});
//
// Only types whose class the library does not look into behave like the real class: a leaf of type
// LINK_ENTRY may stand among siblings, but is no link.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_LEAF_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_LEAF_H

#include <frontpanel_data/entry.h>

#include <string>
#include <vector>

#include "support/indexes.h"

namespace support {

struct Leaf_options {
    Data_entry::Entry_type type = Data_entry::RANGE_LEAF;
    std::vector<std::string>* log = nullptr;  // must outlive the leaf
    unsigned int pid = 120;
    int visible = Data_entry::VISIBLE_ALL;
    int shortcut = Data_entry::SHORTCUT_NONE;
    const Index_t* index = any_index();
};

class Leaf : public Data_entry {
public:
    explicit Leaf(const char* name, Data_entry* parent = nullptr, Leaf_options options = {})
        : Data_entry(name, "A leaf", options.pid, options.index, options.visible, options.shortcut,
                     nullptr, nullptr, parent, nullptr),
          m_type(options.type),
          m_log(options.log) {}

    // What `Refresh` returns, and whether it goes on to the base entry's refresh.
    int refresh_result = OK;
    bool refreshes_base = false;
    // Refreshes so far.
    int refresh_count = 0;

    Entry_type Get_entry_type() const override { return m_type; }
    RETURN_TYPE Get_return_type_int_or_string() const override {
        return const_cast<Leaf*>(this)->bindingReturnType();
    }
    int Get_value(void*, unsigned int) override { return OK; }
    int Inc_value(int, int) override { return OK; }

    // Logged as "Refresh NAME interface=1 eval=1".
    int Refresh(Data_interface* interface, bool eval_binding) override {
        ++refresh_count;
        note("Refresh", " interface=" + std::to_string(interface != nullptr) +
                            " eval=" + std::to_string(eval_binding));
        if (refreshes_base) {
            Data_entry::Refresh(interface, eval_binding);
        }
        return refresh_result;
    }

    // Logged as "isVisible NAME refresh=1 interface=1".
    int isVisible() override { return Data_entry::isVisible(); }
    int isVisible(bool if_control_refresh, Data_interface* interface) override {
        note("isVisible", " refresh=" + std::to_string(if_control_refresh) +
                              " interface=" + std::to_string(interface != nullptr));
        return Data_entry::isVisible(if_control_refresh, interface);
    }

private:
    void note(const char* operation, const std::string& rest) {
        if (m_log != nullptr) {
            m_log->push_back(std::string(operation) + " " + Get_name() + rest);
        }
    }

    Entry_type m_type;
    std::vector<std::string>* m_log;
};

}  // namespace support

#endif
