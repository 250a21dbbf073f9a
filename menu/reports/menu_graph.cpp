#include <frontpanel_menu/menu_graph.h>

#include <map>
#include <set>

#include <frontpanel_menu/entry_access.h>
#include "menu_tree.h"

namespace frontpanel {
namespace {

using Address = std::pair<uint32_t, uint32_t>;  // parameter and variable index

// In quotes a backslash begins an escape, and an ampersand a character's name.
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
            result += character;
        } else if (character == '&') {
            result += "&amp;";
        } else {
            result += character;
        }
    }
    return result + "\"";
}

std::string text_of(uint32_t pid, const Index_t& index) {
    std::string text = std::to_string(pid);
    for (unsigned int level = 0; level < index.m_index_num; ++level) {
        text += "." + std::to_string(index.m_index[level]);
    }
    return text;
}

bool has_parameter(const Data_entry& entry) {
    return entry.Get_index() != nullptr && entry.Get_pid() != Data_entry::PID_NONE;
}

class Graph {
public:
    explicit Graph(Menu& menu) : m_menu(menu), m_entries(entries_of(menu)) {
        for (const Placed_entry& placed : m_entries) {
            add_entry(*placed.entry);
        }
        for (const Placed_entry& placed : m_entries) {
            if (placed.menu != nullptr) {
                add_edge(id_of(*placed.menu), id_of(*placed.entry), "");
            }
            add_link(*placed.entry);
        }
        for (const auto& [key, record] : *menu.bindings()->var_index_map()) {
            for (Data_entry* const dependant : record.binding_dependant_entries) {
                add_dependant(key, *dependant);
            }
        }
    }

    std::string text() const {
        return "digraph " + quoted(m_entries.front().path) +
               " {\n    rankdir=LR;\n    node [shape=box];\n" + m_nodes + m_edges + "}\n";
    }

private:
    void add_entry(Data_entry& entry) {
        if (!m_ids.insert({&entry, "n" + std::to_string(m_ids.size())}).second) {
            return;
        }
        const bool shows_parameter =
            !is_menu(entry) && link_of(entry) == nullptr && has_parameter(entry);
        std::string label = quoted(entry.Get_name());
        if (shows_parameter) {
            label.insert(label.size() - 1, "\\n" + text_of(entry.Get_pid(), *entry.Get_index()));
            m_shown.insert({{entry.Get_pid(), varidx_of(*entry.Get_index())}, &entry});
        }
        const bool is_hidden = entry.isVisible(true, &m_menu.access()) < 0;
        add_node(id_of(entry), "label=" + label + (is_menu(entry) ? "" : ", style=rounded") +
                                   (is_hidden ? ", color=gray, fontcolor=gray" : ""));
    }
    // What a bridge or a mount link houses stands in no menu.
    void add_link(Data_entry& entry) {
        if (Link_entry* const link = link_of(entry)) {
            add_entry(housed(entry));
            add_edge(id_of(entry), id_of(housed(entry)),
                     link->isMountLink() ? "style=dotted" : "style=dashed");
        }
    }
    void add_dependant(const var_index_s& key, Data_entry& dependant) {
        add_entry(dependant);
        const auto shown = m_shown.find({key.var, varidx_of(key.index)});
        const std::string from = shown != m_shown.end() ? id_of(*shown->second) : parameter(key);
        if (from != id_of(dependant) && m_dependants.insert({from, &dependant}).second) {
            colour(dependant);
            add_edge(from, id_of(dependant), "color=blue, constraint=false");
        }
    }
    void colour(const Data_entry& dependant) {
        if (m_coloured.insert(&dependant).second) {
            add_node(id_of(dependant), "color=blue, fontcolor=blue");
        }
    }
    std::string parameter(const var_index_s& key) {
        const Address address{key.var, varidx_of(key.index)};
        const auto [found, is_new] =
            m_parameters.insert({address, "p" + std::to_string(m_parameters.size())});
        if (is_new) {
            add_node(found->second,
                     "shape=plaintext, label=" + quoted("[" + text_of(key.var, key.index) + "]"));
        }
        return found->second;
    }
    const std::string& id_of(const Data_entry& entry) const { return m_ids.at(&entry); }
    void add_node(const std::string& id, const std::string& attributes) {
        m_nodes += "    " + id + " [" + attributes + "];\n";
    }
    void add_edge(const std::string& from, const std::string& to, const std::string& attributes) {
        m_edges += "    " + from + " -> " + to +
                   (attributes.empty() ? "" : " [" + attributes + "]") + ";\n";
    }

    Menu& m_menu;
    std::vector<Placed_entry> m_entries;
    std::map<const Data_entry*, std::string> m_ids;
    std::map<Address, Data_entry*> m_shown;  // the first entry of each parameter
    std::map<Address, std::string> m_parameters;
    std::set<std::pair<std::string, const Data_entry*>> m_dependants;
    std::set<const Data_entry*> m_coloured;
    std::string m_nodes;
    std::string m_edges;
};

}  // namespace

std::string graph_of(Menu& menu) {
    return Graph(menu).text();
}

}  // namespace frontpanel
