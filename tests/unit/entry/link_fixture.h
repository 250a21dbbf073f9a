// What tests of links share: an entry that records what reaches it, nodes, and a link with its members open.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_ENTRY_LINK_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_ENTRY_LINK_FIXTURE_H

#include <frontpanel_data/binding.h>
#include <frontpanel_data/link_entry.h>

#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/indexes.h"

using Log = std::vector<std::string>;

// A leaf of a chosen type whose every operation that a link may forward goes to the log with its arguments
// and returns a value that nothing else returns.
class Housed : public Data_entry {
public:
    static constexpr int RESULT = 4711;

    explicit Housed(const char* name = "Gain", const Index_t* index = support::any_index(),
                    Data_entry* parent = nullptr, unsigned int pid = 120, int visible = VISIBLE_ALL)
        : Data_entry(name, "A housed entry", pid, index, visible, 7, nullptr, nullptr, parent,
                     nullptr) {}

    // Only what happens while it is set is recorded.
    Log* log = nullptr;
    Entry_type type = RANGE_LEAF;
    int visibility = VIS_TRUE;
    std::string display = "42 dB";
    std::vector<var_index_s> keys;
    // Looked at while the keys are collected.
    const Data_entry* watched = nullptr;
    Entry_type watched_type = INVALID_ENTRY_TYPE;

    Entry_type Get_entry_type() const override { return type; }
    RETURN_TYPE Get_return_type_int_or_string() const override {
        note("Get_return_type_int_or_string");
        return STRING;
    }
    Data_entry* Set_parent(Data_entry* parent) override {
        note("Set_parent");
        return Data_entry::Set_parent(parent);
    }
    Data_entry* Set_child(Data_entry* child) override {
        note("Set_child");
        return Data_entry::Set_child(child);
    }
    Data_entry* Set_next(Data_entry* next) override {
        note("Set_next");
        return Data_entry::Set_next(next);
    }
    Data_entry* Set_previous(Data_entry* previous) override {
        note("Set_previous");
        return Data_entry::Set_previous(previous);
    }
    int Add_child(Data_entry& child) override { return record("Add_child", &child); }
    int Attach(Data_entry& parent) override { return record("Attach", &parent); }
    int Remove(Data_entry* child) override { return record("Remove", child); }
    bool Is_node_entry() const override {
        note("Is_node_entry");
        return true;
    }
    Data_access Get_access_type() const override {
        note("Get_access_type");
        return WRITE_ONLY;
    }
    bool Is_active() const override {
        note("Is_active");
        return false;
    }
    int Get_shortcut() const override {
        note("Get_shortcut");
        return Data_entry::Get_shortcut();
    }
    void Set_shortcut(int shortcut) override { record("Set_shortcut", shortcut); }
    const char* Get_description() const override {
        note("Get_description");
        return Data_entry::Get_description();
    }
    int Get_display_string(char* buffer, unsigned int length) override {
        buffer[display.copy(buffer, length)] = '\0';
        return record("Get_display_string", length);
    }
    const Index_t* Get_index() const override {
        note("Get_index");
        return Data_entry::Get_index();
    }
    unsigned int Get_pid() const override {
        note("Get_pid");
        return Data_entry::Get_pid();
    }
    int Get_bind_vis() override { return record("Get_bind_vis"); }
    int setOrOptions(std::vector<std::string> options) override {
        return record("setOrOptions", options.size(), options.at(0));
    }
    int setProductOptions(std::map<std::string, unsigned int> options) override {
        return record("setProductOptions", options.size(), options.begin()->first);
    }
    int isVisible() override { return isVisible(false, nullptr); }
    int isVisible(bool if_control_refresh, Data_interface* interface) override {
        record("isVisible", if_control_refresh, interface);
        return visibility;
    }
    int Get_value(void* buffer, unsigned int length) override {
        return record("Get_value", buffer, length);
    }
    int Set_value(const void* buffer, unsigned int length) override {
        return record("Set_value", buffer, length);
    }
    RETURN_TYPE bindingReturnType() override {
        note("bindingReturnType");
        return STRING;
    }
    int Commit() override { return record("Commit"); }
    int Refresh(Data_interface* interface, bool eval_binding) override {
        return record("Refresh", interface, eval_binding);
    }
    int Inc_value(int value, int position) override { return record("Inc_value", value, position); }
    void Print() override { record("Print"); }
    void Update_value(char** texts, int size) override { record("Update_value", texts, size); }
    int* Get_value_visible_mask() const override {
        note("Get_value_visible_mask");
        static int mask = 0;
        return &mask;
    }
    int Get_min() const override {
        note("Get_min");
        return -5;
    }
    int Get_max() const override {
        note("Get_max");
        return 5;
    }
    std::vector<std::string> Get_options() override {
        note("Get_options");
        return {"gps"};
    }
    is_static_value_s isOptionStatic(std::string option, bool n_intact) override {
        record("isOptionStatic", option, n_intact);
        return {1, 2, 3};
    }
    int Get_final_value() override { return record("Get_final_value"); }
    void Set_final_value(int value) override { record("Set_final_value", value); }
    void Set_invisible() override {
        note("Set_invisible");
        Data_entry::Set_invisible();
    }
    void Set_visible() override {
        note("Set_visible");
        Data_entry::Set_visible();
    }
    void Set_binding_object(Binding* binding_object) override {
        record("Set_binding_object", binding_object);
    }
    int Add_binding_list(BindingListT list) override {
        return record("Add_binding_list", list.size(), list.at(0));
    }
    std::vector<var_index_s> Get_var_index_map_keys(int flags) override {
        record("Get_var_index_map_keys", flags);
        if (watched != nullptr) {
            watched_type = watched->Get_entry_type();
        }
        return keys;
    }
    var_index_map_t* Get_var_index_map() override {
        note("Get_var_index_map");
        return nullptr;
    }
    int Print_binding_errors() override { return record("Print_binding_errors"); }
    void Print_suggestions() override { note("Print_suggestions"); }

private:
    void note(const std::string& line) const {
        if (log != nullptr) {
            log->push_back(line);
        }
    }
    template <class... Arguments>
    int record(const char* operation, const Arguments&... arguments) const {
        std::ostringstream line;
        line << operation;
        ((line << ' ' << arguments), ...);
        note(line.str());
        return RESULT;
    }
};

class Menu : public Node_entry {
public:
    explicit Menu(const char* name, Data_entry* parent = nullptr)
        : Node_entry(name, "A menu", support::any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
};

class Open_link : public Link_entry {
public:
    using Link_entry::Link_entry;

    using Link_entry::child_link;
    using Link_entry::create_mount_menu;
    using Link_entry::destroy_mount_menu;
    using Link_entry::entry_type;
    using Link_entry::homescreen_keys;
    using Link_entry::link_visible;
    using Link_entry::m_index;
    using Link_entry::m_parent;
    using Link_entry::m_pid;
    using Link_entry::m_shortcut;
    using Link_entry::m_visible;
    using Link_entry::next_link;
    using Link_entry::parent_link;
    using Link_entry::previous_link;
    using Link_entry::toggle_expression;
    using Link_entry::valid_child_link;
    using Link_entry::valid_next_link;
    using Link_entry::valid_parent_link;
    using Link_entry::valid_previous_link;
    using Link_entry::vim;
};

#endif
