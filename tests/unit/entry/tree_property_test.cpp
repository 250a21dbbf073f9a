// Random menus under random edits, compared after every step with a plain model of the tree.
//
// Entries are edited as an application edits them: what is deleted has left the tree before, and no list of
// siblings is closed to a circle.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/link_entry.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "unit/entry/tree_model.h"

namespace {

using support::index_of;

constexpr int ROOT = 0;
constexpr unsigned int FIRST_PID = 1000;
constexpr char BRIDGE_NAME[] = "Bridge Entry";

// Entries that are not deleted yet, links apart.
int counted_entries = 0;

class Counted {
public:
    Counted() { ++counted_entries; }
    ~Counted() { --counted_entries; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

class Counted_node : public Node_entry {
public:
    using Node_entry::Node_entry;

private:
    Counted m_counted;
};

class Counted_leaf : public support::Leaf {
public:
    using Leaf::Leaf;

private:
    Counted m_counted;
};

const Index_t* index_with(int levels) {
    static const Index_t EMPTY = index_of({});
    static const Index_t FULL = index_of({3});
    return levels > 0 ? &FULL : &EMPTY;
}

// Entries that were built as invisible, so far in the process: the library counts them.
int invisible_entries = 0;

class Random_edits {
public:
    explicit Random_edits(unsigned int seed) : m_random(seed) {}
    ~Random_edits() { delete_all(); }
    Random_edits(const Random_edits&) = delete;
    Random_edits& operator=(const Random_edits&) = delete;

    // Empty, or what differs and what was done before.
    std::string play(int steps) {
        support::Stream_scope out(stdout);
        const support::Debug_scope silent(0);
        build_start();
        for (m_step = 0; m_step < steps && m_difference.empty(); ++m_step) {
            edit();
            compare();
            m_ends.push_back({m_model.output.size(), m_done.size()});
        }
        if (m_difference.empty()) {
            compare_output(support::mask_line_numbers(out.text()));
        }
        return m_difference;
    }

    // How often each kind of edit was done, by the first word of its description.
    void count_edits(std::map<std::string, int>& counts) const {
        for (const std::string& edit : m_done) {
            ++counts[edit.substr(0, edit.find(' '))];
        }
    }

private:
    // --- chance

    int below(int count) { return static_cast<int>(m_random() % static_cast<unsigned int>(count)); }
    bool one_in(int count) { return below(count) == 0; }

    template <class Condition>
    int any(Condition condition) {
        std::vector<int> found;
        for (int entry = 0; entry < m_model.size(); ++entry) {
            if (m_model.at(entry).alive && condition(entry)) {
                found.push_back(entry);
            }
        }
        return found.empty() ? NONE : found[static_cast<std::size_t>(below(int(found.size())))];
    }
    int any_entry() {
        return any([](int) { return true; });
    }
    int any_link() {
        return any([this](int entry) { return m_model.at(entry).is_link(); });
    }
    int any_entry_or_none() { return one_in(6) ? NONE : any_entry(); }

    Data_entry* real(int entry) const {
        return entry == NONE ? nullptr : m_real[static_cast<std::size_t>(entry)];
    }
    Link_entry* real_link(int entry) const { return static_cast<Link_entry*>(real(entry)); }

    // --- one edit on both sides

    // Tries an edit on a copy of the model. False, and nothing changed, when the tree would become one that no
    // application may build, or one too large to compare.
    template <class On_model>
    bool edited(const std::string& what, On_model on_model) {
        Model trial = m_model;
        if (!on_model(trial) || trial.has_endless_siblings()) {
            return false;
        }
        const auto ignore = [](int, int) {};
        if (!trial.walk(ROOT, ignore) || !trial.walk(m_probe, ignore)) {
            return false;
        }
        m_model = std::move(trial);
        m_done.push_back(what);
        return true;
    }

    std::string named(int entry) const {
        return entry == NONE ? "none" : std::to_string(entry) + "/" + m_model.at(entry).name;
    }

    void build_start() {
        m_probe = ROOT;
        Entry_model root;
        root.name = "Root";
        m_model.add(root);
        m_real.push_back(
            new Counted_node("Root", "", index_with(0), nullptr, 1, -1, nullptr, nullptr, nullptr));
        for (int i = 0; i < 6; ++i) {
            build_plain(i % 2 == 0 ? Kind::NODE : Kind::LEAF, ROOT, 1);
        }
    }

    void edit() {
        m_probe =
            any([this](int entry) { return m_model.at(entry).menu.empty() && !is_mounted(entry); });
        using Edit = void (Random_edits::*)();
        static constexpr Edit EDITS[] = {
            &Random_edits::edit_build,      &Random_edits::edit_build,
            &Random_edits::edit_link,       &Random_edits::edit_link,
            &Random_edits::edit_bridge,     &Random_edits::edit_add_child,
            &Random_edits::edit_add_child,  &Random_edits::edit_attach,
            &Random_edits::edit_attach,     &Random_edits::edit_remove,
            &Random_edits::edit_remove,     &Random_edits::edit_neighbour,
            &Random_edits::edit_neighbour,  &Random_edits::edit_neighbour,
            &Random_edits::edit_dynamic,    &Random_edits::edit_dynamic,
            &Random_edits::edit_delete,     &Random_edits::edit_delete,
            &Random_edits::edit_visible,    &Random_edits::edit_visible,
            &Random_edits::edit_options,    &Random_edits::edit_shortcut,
            &Random_edits::edit_link_role,  &Random_edits::edit_link_role,
            &Random_edits::edit_homescreen, &Random_edits::edit_mount,
            &Random_edits::edit_enter,      &Random_edits::edit_enter,
            &Random_edits::edit_leave,      &Random_edits::ask_visible,
            &Random_edits::ask_visible,     &Random_edits::ask_visible,
            &Random_edits::ask_dispatcher,  &Random_edits::ask_dispatcher,
            &Random_edits::edit_traversal,
        };
        (this->*EDITS[below(int(std::size(EDITS)))])();
    }

    int alive_entries() const {
        return static_cast<int>(
            std::count_if(m_model.entries.begin(), m_model.entries.end(),
                          [](const Entry_model& entry) { return entry.alive; }));
    }
    bool is_full() const { return alive_entries() >= 22; }

    bool is_mounted(int entry) const {
        for (const Entry_model& link : m_model.entries) {
            if (link.alive && std::count(link.menu.begin(), link.menu.end(), entry) != 0) {
                return true;
            }
        }
        return false;
    }
    bool is_housed(int entry) const {
        for (const Entry_model& link : m_model.entries) {
            if (link.alive && link.housed == entry) {
                return true;
            }
        }
        return false;
    }

    // --- building

    static Entry_model plain(Kind kind, const std::string& name, int visible, int levels) {
        Entry_model entry;
        entry.kind = kind;
        entry.name = name;
        entry.visible = visible;
        entry.levels = levels;
        return entry;
    }

    // What the constructor of a plain entry does with its parent.
    static void take_place(Model& model, int entry, int parent) {
        model.at(entry).base[PARENT] = parent;
        if (parent != NONE && model.at(entry).visible != 0) {
            model.add_child(parent, entry);
        }
    }

    void build_plain(Kind kind, int parent, int visible) {
        static constexpr Data_entry::Entry_type TYPES[] = {
            Data_entry::RANGE_LEAF, Data_entry::STRING_LEAF, Data_entry::TIME_LEAF};
        const int number = m_model.size();
        Entry_model entry = plain(kind, (kind == Kind::NODE ? "N" : "L") + std::to_string(number),
                                  visible, below(2));
        if (kind == Kind::LEAF) {
            entry.type = TYPES[below(3)];
            entry.pid = FIRST_PID + static_cast<unsigned int>(number);
        }
        const bool is_told = parent != NONE && visible == -1;
        const bool done =
            edited("build " + entry.name + " below " + named(parent), [&](Model& model) {
                if (parent != NONE && model.addressed(parent) == NONE) {
                    return false;
                }
                take_place(model, model.add(entry), parent);
                if (is_told) {
                    model.output += "Invisible entry <" + entry.name +
                                    "> added to tree, but will not appear. total so far[" +
                                    std::to_string(invisible_entries) + "]\n";
                }
                return true;
            });
        if (done) {
            invisible_entries += is_told ? 1 : 0;
            m_real.push_back(new_plain(entry, real(parent)));
        }
    }

    static Data_entry* new_plain(const Entry_model& entry, Data_entry* parent) {
        const char* const name = entry.name.c_str();
        if (entry.kind == Kind::NODE) {
            return new Counted_node(name, "", index_with(entry.levels), parent, entry.visible, -1,
                                    nullptr, nullptr, nullptr);
        }
        support::Leaf_options options;
        options.type = entry.type;
        options.pid = entry.pid;
        options.visible = entry.visible;
        options.index = index_with(entry.levels);
        return new Counted_leaf(name, parent, options);
    }

    void edit_build() {
        if (is_full()) {
            return;
        }
        const int visible = one_in(8) ? 0 : one_in(8) ? -1 : 1;
        build_plain(one_in(2) ? Kind::NODE : Kind::LEAF, any_entry_or_none(), visible);
    }

    static Entry_model link_to(const Model& model, int housed) {
        Entry_model link;
        link.kind = Kind::LINK;
        link.type = Data_entry::LINK_ENTRY;
        link.housed = housed;
        if (housed == NONE) {
            link.name = "none";
            link.pid = 0;
            link.levels = NONE;
            link.visible = -1;
            return link;
        }
        const Entry_model& entry = model.at(housed);
        link.name = entry.name;
        if (entry.levels > 0 && entry.base[PARENT] != NONE && entry.name != BRIDGE_NAME) {
            link.name = model.at(entry.base[PARENT]).name + "." + entry.name;
        }
        link.pid = entry.pid;
        link.levels = entry.levels;
        link.visible = entry.visible;
        link.shortcut = entry.shortcut;
        link.base = entry.base;
        link.link_visible = entry.visible != 0;
        return link;
    }

    void edit_link() {
        const int housed = one_in(12) ? NONE : any([this](int entry) {
            const Entry_model& model = m_model.at(entry);
            const bool fits =
                model.name.size() < 10 &&
                (model.base[PARENT] == NONE || m_model.at(model.base[PARENT]).name.size() < 10);
            return model.name != BRIDGE_NAME && model.levels != NONE && fits && !is_mounted(entry);
        });
        if (!is_full() && edited("link to " + named(housed), [&](Model& model) {
                model.add(link_to(model, housed));
                return true;
            })) {
            m_real.push_back(new Link_entry(real(housed)));
        }
    }

    // The bridge owns what it houses, the index included.
    void edit_bridge() {
        if (is_full()) {
            return;
        }
        const int housed = m_model.size();
        Entry_model entry = plain(Kind::LEAF, BRIDGE_NAME, 1, 1);
        entry.type = Data_entry::STRING_LEAF;
        entry.pid = FIRST_PID + static_cast<unsigned int>(housed);
        if (edited("bridge", [&](Model& model) {
                model.add(entry);
                model.add(link_to(model, housed));
                return true;
            })) {
            support::Leaf_options options;
            options.type = entry.type;
            options.pid = entry.pid;
            options.index = new Index_t(index_of({3}));
            m_real.push_back(new Counted_leaf(BRIDGE_NAME, nullptr, options));
            m_real.push_back(new Link_entry(m_real.back()));
        }
    }

    // --- the tree

    void edit_add_child() {
        const int parent = any_entry();
        const int child = any_entry();
        if (edited("add " + named(child) + " to " + named(parent),
                   [&](Model& model) { return model.add_child(parent, child); })) {
            expect_number("result of Add_child", parent, real(parent)->Add_child(*real(child)), 0);
        }
    }

    void edit_attach() {
        const int child = any_entry();
        const int parent = any_entry();
        const int attached = m_model.addressed(child);
        if (attached != NONE &&
            edited("attach " + named(child) + " to " + named(parent),
                   [&](Model& model) { return model.add_child(parent, attached); })) {
            expect_number("result of Attach", child, real(child)->Attach(*real(parent)), 0);
        }
    }

    void edit_remove() {
        const int child = any_entry();
        int parent = one_in(4) ? any_entry() : m_model.at(child).base[PARENT];
        if (parent == NONE || m_model.addressed(parent) == NONE) {
            return;
        }
        remove(parent, child);
    }

    void remove(int parent, int child) {
        const int held_by = m_model.addressed(parent);
        if (edited("remove " + named(child) + " from " + named(parent), [&](Model& model) {
                if (!model.remove(parent, child)) {
                    model.output += not_found(held_by, child);
                }
                return true;
            })) {
            expect_number("result of Remove", parent, real(parent)->Remove(real(child)), 0);
        }
    }

    std::string not_found(int parent, int child) const {
        char text[256];
        std::snprintf(text, sizeof text,
                      "Could not find child named [%s][%p] from parent [%s][%p]\n",
                      m_model.at(child).name.c_str(), static_cast<void*>(real(child)),
                      m_model.at(parent).name.c_str(), static_cast<void*>(real(parent)));
        return text;
    }

    static Data_entry* set_real(Data_entry* entry, Direction direction, Data_entry* neighbour) {
        switch (direction) {
            case NEXT:
                return entry->Set_next(neighbour);
            case PREVIOUS:
                return entry->Set_previous(neighbour);
            case PARENT:
                return entry->Set_parent(neighbour);
            default:
                return entry->Set_child(neighbour);
        }
    }

    static Data_entry* set_real_base(Data_entry* entry, Direction direction,
                                     Data_entry* neighbour) {
        switch (direction) {
            case NEXT:
                return entry->Data_entry::Set_next(neighbour);
            case PREVIOUS:
                return entry->Data_entry::Set_previous(neighbour);
            case PARENT:
                return entry->Data_entry::Set_parent(neighbour);
            default:
                return entry->Data_entry::Set_child(neighbour);
        }
    }

    static int set(Model& model, int entry, Direction direction, int neighbour) {
        Entry_model& changed = model.at(entry);
        if (changed.is_link()) {
            changed.valid[direction] = true;
            return std::exchange(changed.own[direction], neighbour);
        }
        return std::exchange(changed.base[direction], neighbour);
    }

    void edit_neighbour() {
        const int entry = one_in(2) ? any_entry() : any_link();
        const int neighbour = any_entry_or_none();
        const auto direction = static_cast<Direction>(below(4));
        const bool by_dispatcher = direction >= PARENT && one_in(2);
        int before = NONE;
        if (entry == NONE || entry == neighbour ||
            !edited("set neighbour " + std::to_string(direction) + " of " + named(entry) + " to " +
                        named(neighbour),
                    [&](Model& model) {
                        before = set(model, entry, direction, neighbour);
                        return true;
                    })) {
            return;
        }
        if (by_dispatcher) {
            void* passed = real(neighbour);
            const int flag = direction == PARENT ? Data_entry::OPERATION_SET_PARENT
                                                 : Data_entry::OPERATION_SET_CHILD;
            Data_entry::EntryTypeSpecificOperation(real(entry), nullptr, nullptr, false, flag,
                                                   &passed);
        } else {
            expect_entry("result of Set", entry, set_real(real(entry), direction, real(neighbour)),
                         before);
        }
    }

    static void set_real_dynamic(Data_entry* entry, Direction direction, Data_entry* neighbour) {
        switch (direction) {
            case NEXT:
                return entry->Set_dynamic_next(neighbour);
            case PREVIOUS:
                return entry->Set_dynamic_previous(neighbour);
            case PARENT:
                return entry->Set_dynamic_parent(neighbour);
            default:
                return entry->Set_dynamic_child(neighbour);
        }
    }

    void edit_dynamic() {
        const int entry = any_entry();
        const int neighbour = any_entry_or_none();
        const auto direction = static_cast<Direction>(below(4));
        if (edited("set dynamic neighbour of " + named(entry), [&](Model& model) {
                model.at(entry).dynamic[direction] = neighbour;
                return true;
            })) {
            set_real_dynamic(real(entry), direction, real(neighbour));
        }
    }

    // --- deleting

    // Takes an entry out of everything that points to it, on both sides, as its owner does before deleting it.
    void forget(int entry) {
        if (const int parent = m_model.at(entry).base[PARENT];
            parent != NONE && !m_model.at(parent).is_link() && m_model.holds(parent, entry)) {
            m_model.remove(parent, entry);
            real(parent)->Remove(real(entry));
        }
        for (int other = 0; other < m_model.size(); ++other) {
            if (m_model.at(other).alive) {
                forget_in(other, entry);
            }
        }
    }

    void forget_in(int other, int entry) {
        Entry_model& model = m_model.at(other);
        for (const Direction direction : {NEXT, PREVIOUS, PARENT, CHILD}) {
            if (model.base[direction] == entry) {
                model.base[direction] = NONE;
                set_real_base(real(other), direction, nullptr);
            }
            if (model.is_link() && model.own[direction] == entry) {
                set(m_model, other, direction, NONE);
                set_real(real(other), direction, nullptr);
            }
            if (model.dynamic[direction] == entry) {
                model.dynamic[direction] = NONE;
                set_real_dynamic(real(other), direction, nullptr);
            }
        }
        for (int bit = 0; bit < 3; ++bit) {
            if (model.is_link() && model.escape[static_cast<std::size_t>(bit)] == entry) {
                model.escape[static_cast<std::size_t>(bit)] = NONE;
                real_link(other)->Set_escape_node(1 << bit, nullptr);
            }
        }
    }

    void edit_delete() {
        const int entry = any([this](int candidate) {
            return candidate != ROOT && candidate != m_probe && !is_housed(candidate) &&
                   !is_mounted(candidate) && m_model.at(candidate).menu.empty();
        });
        if (entry == NONE) {
            return;
        }
        m_done.push_back("delete " + named(entry));
        const bool owns = m_model.at(entry).is_link() && m_model.at(entry).name == BRIDGE_NAME;
        std::vector<int> doomed = {entry};
        if (owns) {
            doomed.push_back(m_model.at(entry).housed);
        }
        if (std::count(doomed.begin(), doomed.end(), m_probe) != 0) {
            m_probe = ROOT;
        }
        for (const int gone : doomed) {
            forget(gone);
        }
        delete real(entry);
        bury(doomed);
    }

    void bury(const std::vector<int>& entries) {
        for (const int entry : entries) {
            m_model.at(entry).alive = false;
            m_model.at(entry).housed = NONE;
            m_real[static_cast<std::size_t>(entry)] = nullptr;
        }
    }

    void delete_all() {
        for (int entry = 0; entry < m_model.size(); ++entry) {
            Entry_model& model = m_model.at(entry);
            if (model.alive && model.is_link()) {
                const bool owns = model.name == BRIDGE_NAME;
                const int housed = model.housed;
                delete real(entry);
                bury(owns ? std::vector<int>{entry, housed} : std::vector<int>{entry});
            }
        }
        for (Data_entry* const entry : m_real) {
            delete entry;
        }
        m_real.clear();
    }

    // --- flags and roles

    void edit_visible() {
        const int entry = any_entry();
        const int target = m_model.addressed(entry);
        const int kind = below(3);
        if (target == NONE || !edited("hide or show " + named(entry), [&](Model& model) {
                int& visible = model.at(target).visible;
                if (kind == 0) {
                    model.at(entry).entry_visible = -1;
                } else if (kind == 1) {
                    visible = static_cast<int>(static_cast<unsigned int>(visible) | 0x80000000U);
                } else {
                    visible = static_cast<int>(static_cast<unsigned int>(visible) & 0x7FFFFFFFU);
                }
                return true;
            })) {
            return;
        }
        if (kind == 0) {
            real(entry)->Set_entry_visible(-1);
        } else if (kind == 1) {
            real(entry)->Set_invisible();
        } else {
            real(entry)->Set_visible();
        }
    }

    void edit_options() {
        const int entry = any_entry();
        const int target = m_model.addressed(entry);
        const bool holds = one_in(2);
        const bool is_none = one_in(4);
        if (target != NONE && edited("options of " + named(entry), [&](Model& model) {
                model.at(target).option_visible = holds || is_none ? 1 : -1;
                return true;
            })) {
            real(entry)->setProductOptions({{"gps", holds ? 1U : 0U}});
            real(entry)->setOrOptions(is_none ? std::vector<std::string>()
                                              : std::vector<std::string>{"gps"});
        }
    }

    void edit_shortcut() {
        const int entry = any_entry();
        const int shortcut = below(100);
        if (m_model.addressed(entry) != NONE &&
            edited("shortcut of " + named(entry), [&](Model& model) {
                // Every link on the way keeps the number as well.
                for (int at = entry; at != NONE; at = model.at(at).housed) {
                    model.at(at).shortcut = shortcut;
                }
                return true;
            })) {
            real(entry)->Set_shortcut(shortcut);
        }
    }

    void edit_link_role() {
        const int link = any_link();
        if (link == NONE) {
            return;
        }
        const int value = below(8);
        const int destination = any_entry_or_none();
        m_done.push_back("role of " + named(link));
        Entry_model& model = m_model.at(link);
        switch (below(4)) {
            case 0: {
                const int before = model.behaviour;
                model.behaviour = value == 1 || value == 2 ? value : before;
                expect_number("result of setBehaviour", link, real_link(link)->setBehaviour(value),
                              before);
                break;
            }
            case 1:
                for (int bit = 0; bit < 3; ++bit) {
                    if ((value & (1 << bit)) != 0) {
                        model.escape[static_cast<std::size_t>(bit)] = destination;
                    }
                }
                real_link(link)->Set_escape_node(value, real(destination));
                break;
            case 2:
                expect_number("result of Set_visible", link,
                              real_link(link)->Set_visible(value % 2 != 0),
                              std::exchange(model.link_visible, value % 2 != 0));
                break;
            default:
                model.is_bridge = true;
                real_link(link)->setAsBridgeLink();
        }
    }

    void edit_homescreen() {
        const int link = any([this](int entry) { return m_model.at(entry).housed != NONE; });
        if (link == NONE) {
            return;
        }
        m_done.push_back("homescreen entry " + named(link));
        const bool on = one_in(2);
        m_model.at(link).toggle = on ? Toggle::ON : Toggle::OFF;
        static int token = 0;  // only tested for being there
        real_link(link)->setAsHomescreenEntry(on ? "" : "error", &m_values,
                                              reinterpret_cast<FPData*>(&token));
    }

    // --- mounted menus

    void edit_mount() {
        const int link = any([this](int entry) {
            return m_model.at(entry).housed != NONE && m_model.at(entry).menu.empty();
        });
        if (link == NONE) {
            return;
        }
        m_done.push_back("mount link " + named(link));
        m_model.at(link).is_mount = true;
        m_model.at(link).builds = !one_in(4);
        real_link(link)->setAsMountLink([this, link](MenuControl*) { return build_menu(link); },
                                        [this, link](MenuControl*) { return take_down(link); });
    }

    Data_entry* build_menu(int link) {
        const std::vector<int>& menu = m_model.at(link).menu;
        for (const int entry : menu) {
            m_real.push_back(
                new_plain(m_model.at(entry), entry == menu.front() ? nullptr : real(menu.front())));
        }
        return menu.empty() ? nullptr : real(menu[1]);
    }

    Data_entry* take_down(int link) {
        for (const int entry : m_model.at(link).menu) {
            delete real(entry);
        }
        ++m_model.at(link).taken_down;
        return nullptr;
    }

    static void plan_menu(Model& model, int link, int leaves) {
        const int menu = model.add(plain(Kind::NODE, "M" + std::to_string(model.size()), 1, 0));
        model.at(link).menu = {menu};
        for (int i = 0; i < leaves; ++i) {
            Entry_model leaf = plain(Kind::LEAF, "P" + std::to_string(model.size()), 1, 0);
            leaf.type = Data_entry::STRING_LEAF;
            const int added = model.add(leaf);
            take_place(model, added, menu);
            model.at(link).menu.push_back(added);
        }
    }

    Data_entry* ask_link(int link, int flag) {
        void* found = nullptr;
        Data_entry::EntryTypeSpecificOperation(real(link), nullptr, nullptr, false, flag, &found);
        return static_cast<Data_entry*>(found);
    }

    void edit_enter() {
        const int link = any([this](int entry) {
            return m_model.at(entry).is_mount && m_model.at(entry).menu.empty();
        });
        if (link == NONE || is_full()) {
            return;
        }
        m_done.push_back("enter " + named(link));
        if (m_model.at(link).builds) {
            plan_menu(m_model, link, 1 + below(3));
            expect_entry("entering", link, ask_link(link, Data_entry::OPERATION_CHILD),
                         m_model.at(link).menu[1]);
        } else {
            m_model.output +=
                "[Get_child][link_navigation.cpp][#] Dynamic menu creation failed (Child entry is "
                "null). Reverting to parent link.\n";
            expect_entry("entering", link, ask_link(link, Data_entry::OPERATION_CHILD),
                         m_model.at(link).own[PARENT]);
        }
    }

    void edit_leave() {
        const int link = any([this](int entry) {
            return m_model.at(entry).is_mount && (!m_model.at(entry).menu.empty() || one_in(4));
        });
        if (link == NONE) {
            return;
        }
        m_done.push_back("leave " + named(link));
        for (const int entry : m_model.at(link).menu) {
            forget(entry);
        }
        const int taken_down = m_model.at(link).taken_down;
        m_model.at(link).valid[PARENT] = false;
        expect_entry("leaving", link, ask_link(link, Data_entry::OPERATION_PARENT),
                     m_model.at(link).own[PARENT]);
        expect_number("menus taken down", link, m_model.at(link).taken_down, taken_down + 1);
        bury(m_model.at(link).menu);
        m_model.at(link).menu.clear();
    }

    // --- questions that change what is remembered

    void ask_visible() {
        const int entry = any_entry();
        const bool refresh = one_in(2);
        int visible = 0;
        if (edited(std::string("ask whether visible") + (refresh ? " anew " : " ") + named(entry),
                   [&](Model& model) {
                       model.begin_questions();
                       visible = model.is_visible(entry, refresh);
                       return !model.is_asked_too_much();
                   })) {
            expect_number("visibility", entry, real(entry)->isVisible(refresh, &m_device), visible);
        }
    }

    // Several steps of one call: the last in the dispatcher's order delivers.
    void ask_dispatcher() {
        static constexpr int STEPS[] = {Data_entry::OPERATION_PARENT_LINK,
                                        Data_entry::OPERATION_CHILD_LINK,
                                        Data_entry::OPERATION_PREVIOUS, Data_entry::OPERATION_NEXT};
        const int entry = any_entry();
        const int housed = m_model.addressed(entry);
        const int dynamic = one_in(2) ? Data_entry::OPERATION_DYNAMIC : 0;
        int flags = Data_entry::OPERATION_REFRESH | dynamic;
        int last = 0;
        for (const int step : STEPS) {
            if (one_in(2)) {
                flags |= step;
                last = step;
            }
        }
        m_done.push_back("dispatch " + std::to_string(flags) + " on " + named(entry));
        if (housed != NONE && m_model.at(housed).kind == Kind::LEAF) {
            ++m_model.at(housed).refreshes;
        }
        void* found = real(ROOT);
        const int result = Data_entry::EntryTypeSpecificOperation(real(entry), &m_device, nullptr,
                                                                  true, flags, &found);
        expect_number("result of the dispatcher", entry, result, housed == NONE ? -1 : 0);
        expect_entry("delivery of the dispatcher", entry, static_cast<Data_entry*>(found),
                     last == 0 ? ROOT : m_model.delivered(entry, last | dynamic));
    }

    void edit_traversal() {
        const bool forgets = one_in(2);
        if (edited(forgets ? "forget mounted menus" : "hand out shortcuts", [&](Model& model) {
                return model.walk(ROOT, [&](int entry, int) {
                    if (!forgets) {
                        model.at(entry).has_table = true;
                    } else if (model.at(entry).is_mount) {
                        set(model, entry, CHILD, NONE);
                    }
                });
            })) {
            Data_entry::TraverseMenuTree(real(ROOT), forgets ? 0x2 : 0x1, &m_table);
        }
    }

    // --- comparing

    void differ(const std::string& what) {
        if (!m_difference.empty()) {
            return;
        }
        m_difference = what + "\nafter step " + std::to_string(m_step) + " of:\n";
        const std::size_t shown = std::min<std::size_t>(m_done.size(), 25);
        for (std::size_t i = m_done.size() - shown; i < m_done.size(); ++i) {
            m_difference += "  " + m_done[i] + "\n";
        }
    }

    void expect_number(const char* what, int entry, int actual, int expected) {
        if (actual != expected) {
            differ(std::string(what) + " of " + named(entry) + " is " + std::to_string(actual) +
                   ", expected " + std::to_string(expected));
        }
    }

    void expect_entry(const char* what, int entry, const Data_entry* actual, int expected) {
        if (actual == real(expected)) {
            return;
        }
        const auto found = std::find(m_real.begin(), m_real.end(), actual);
        differ(std::string(what) + " of " + named(entry) + " is " +
               (found == m_real.end() ? "none of the tree"
                                      : named(static_cast<int>(found - m_real.begin()))) +
               ", expected " + named(expected));
    }

    void compare() {
        int counted = 0;
        for (int entry = 0; entry < m_model.size(); ++entry) {
            if (!m_model.at(entry).alive) {
                continue;
            }
            compare_base(entry);
            compare_dynamic(entry);
            compare_deliveries(entry);
            if (m_model.at(entry).is_link()) {
                compare_link(entry);
            } else {
                ++counted;
            }
        }
        expect_number("entries alive instead", ROOT, counted_entries, counted);
        dump(ROOT);
        dump(m_probe);
    }

    void compare_base(int entry) {
        const Entry_model& model = m_model.at(entry);
        const Data_entry& asked = *real(entry);
        expect_entry("base next", entry, asked.Get_next(), model.base[NEXT]);
        expect_entry("base previous", entry, asked.Get_previous(), model.base[PREVIOUS]);
        expect_entry("base parent", entry, asked.Get_parent(), model.base[PARENT]);
        expect_entry("base child", entry, asked.Get_child(), model.base[CHILD]);
        expect_number("base visibility", entry, asked.Get_visible(), model.visible);
        expect_number("remembered visibility", entry, asked.Get_entry_visible(),
                      model.entry_visible);
        expect_number("remembered children", entry, asked.Get_has_children(), model.has_children);
        expect_number("shortcut table", entry,
                      static_cast<int>(real(entry)->Get_shortcuts_map() == &m_table),
                      model.has_table);
        if (asked.Get_name() != model.name) {
            differ("name of " + named(entry) + " is " + asked.Get_name());
        }
        if (model.kind == Kind::LEAF) {
            expect_number("refreshes", entry, static_cast<const Counted_leaf&>(asked).refresh_count,
                          model.refreshes);
        }
    }

    void compare_dynamic(int entry) {
        const Entry_model& model = m_model.at(entry);
        expect_entry("dynamic next", entry, real(entry)->Get_dynamic_next(), model.dynamic[NEXT]);
        expect_entry("dynamic previous", entry, real(entry)->Get_dynamic_previous(),
                     model.dynamic[PREVIOUS]);
        expect_entry("dynamic parent", entry, real(entry)->Get_dynamic_parent(),
                     model.dynamic[PARENT]);
        expect_entry("dynamic child", entry, real(entry)->Get_dynamic_child(),
                     model.dynamic[CHILD]);
    }

    void compare_deliveries(int entry) {
        static constexpr int PLAIN_PARENT_AND_CHILD =
            Data_entry::OPERATION_PARENT | Data_entry::OPERATION_CHILD;
        for (const int flag :
             {int(Data_entry::OPERATION_PARENT), int(Data_entry::OPERATION_PARENT_LINK),
              int(Data_entry::OPERATION_CHILD), int(Data_entry::OPERATION_CHILD_LINK),
              int(Data_entry::OPERATION_PREVIOUS), int(Data_entry::OPERATION_NEXT),
              Data_entry::OPERATION_PREVIOUS | Data_entry::OPERATION_DYNAMIC,
              Data_entry::OPERATION_NEXT | Data_entry::OPERATION_DYNAMIC}) {
            if (m_model.at(entry).is_mount && (flag & PLAIN_PARENT_AND_CHILD) != 0) {
                continue;
            }
            expect_entry(("delivery " + std::to_string(flag)).c_str(), entry, ask_link(entry, flag),
                         m_model.delivered(entry, flag));
        }
    }

    void compare_link(int entry) {
        const Entry_model& model = m_model.at(entry);
        Link_entry& link = *real_link(entry);
        expect_entry("housed entry", entry, link.Get_housed_entry(), model.housed);
        expect_entry("next", entry, link.Get_next(), m_model.own_or_housed(entry, NEXT));
        expect_entry("previous", entry, link.Get_previous(),
                     m_model.own_or_housed(entry, PREVIOUS));
        expect_entry("parent link", entry, link.Get_parent_link(), model.own[PARENT]);
        expect_entry("child link", entry, link.Get_child_link(), model.own[CHILD]);
        if (!model.is_mount) {
            expect_entry("parent", entry, link.Get_parent(), m_model.own_or_housed(entry, PARENT));
            expect_entry("child", entry, link.Get_child(), m_model.own_or_housed(entry, CHILD));
        }
        expect_entry("redraw destination", entry, link.Get_escape_node(1), model.escape[0]);
        expect_entry("select destination", entry, link.Get_escape_node(2), model.escape[1]);
        expect_entry("escape destination", entry, link.Get_escape_node(4), model.escape[2]);
        expect_entry("other destination", entry, link.Get_escape_node(3), entry);
        expect_number("behaviour", entry, link.getBehaviour(), model.behaviour);
        expect_number("bridge", entry, link.isBridgeLink(), model.is_bridge);
        expect_number("mount link", entry, link.isMountLink(), model.is_mount);
        expect_number("homescreen entry", entry, link.isHomescreenEntry(),
                      model.toggle != Toggle::ABSENT);
        expect_number("valid parent", entry, link.isValidParentLink(), model.valid[PARENT]);
    }

    // The library's walk goes to the output, which is compared when the run is over.
    void dump(int entry) {
        std::string lines;
        const bool fits = m_model.walk(entry, [this, &lines](int visited, int depth) {
            lines +=
                std::string(static_cast<std::size_t>(depth), '\t') + m_model.report(visited) + "\n";
        });
        if (!fits) {
            return;  // what was deleted may have left a tree behind that is too large
        }
        m_model.output += lines;
        int depth = 0;
        Data_entry::TraverseMenuTree(real(entry), 0x4, &depth);
    }

    // Forgets what was done after the two began to differ.
    void go_back_to(const std::string& expected, const std::string& printed) {
        const auto differing =
            std::mismatch(expected.begin(), expected.end(), printed.begin(), printed.end()).first;
        const auto offset = static_cast<std::size_t>(differing - expected.begin());
        m_step = 0;
        while (m_step + 1 < static_cast<int>(m_ends.size()) &&
               m_ends[static_cast<std::size_t>(m_step)].output <= offset) {
            ++m_step;
        }
        m_done.resize(m_ends[static_cast<std::size_t>(m_step)].done);
    }

    void compare_output(const std::string& printed) {
        if (printed == m_model.output) {
            return;
        }
        go_back_to(m_model.output, printed);
        const auto [actual, expected] = std::mismatch(printed.begin(), printed.end(),
                                                      m_model.output.begin(), m_model.output.end());
        const auto line_at = [](const std::string& text, std::size_t at) {
            const std::size_t begin = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
            return text.substr(begin, text.find('\n', at) - begin);
        };
        differ(
            "printed: " + line_at(printed, static_cast<std::size_t>(actual - printed.begin())) +
            "\nexpected: " +
            line_at(m_model.output, static_cast<std::size_t>(expected - m_model.output.begin())));
    }

    std::mt19937 m_random;
    Model m_model;
    std::vector<Data_entry*> m_real;  // by the numbers of the model; null when deleted
    support::Fake_device m_device;    // no entry of these reads it
    std::map<int, ShortcutS> m_table;
    var_index_map_t m_values;
    int m_probe = ROOT;  // the walk below it is compared too
    int m_step = 0;
    std::vector<std::string> m_done;
    struct End {
        std::size_t output;
        std::size_t done;
    };
    std::vector<End> m_ends;  // of each step: what was printed and done by then
    std::string m_difference;
};

TEST(TreeProperty, EveryEditLeavesTheTreeAsTheModelHasIt) {
    std::map<std::string, int> counts;
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        {
            Random_edits edits(seed);
            const std::string difference = edits.play(150);
            ASSERT_TRUE(difference.empty()) << "seed " << seed << ": " << difference;
            edits.count_edits(counts);
        }
        ASSERT_EQ(counted_entries, 0) << "seed " << seed;
    }
    for (const char* const edit :
         {"build",  "link",  "bridge",  "add",      "attach", "remove",     "set",
          "delete", "hide",  "options", "shortcut", "role",   "homescreen", "mount",
          "enter",  "leave", "ask",     "dispatch", "forget", "hand"}) {
        EXPECT_GE(counts[edit], 50) << edit;
    }
}

}  // namespace
