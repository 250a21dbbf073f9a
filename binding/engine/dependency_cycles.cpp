#include "engine/dependency_cycles.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <limits>
#include <string>
#include <unordered_map>

#include "engine/engine.h"
#include "engine/reading.h"
#include "rule_kinds.h"

namespace frontpanel::binding_engine {
namespace {

constexpr std::size_t NONE = static_cast<std::size_t>(-1);

// From a parameter that a rule reads to one that the rule writes or limits.
struct Edge {
    std::size_t to;
    bool is_write;
    const Engine* engine;
    int line;
};

struct Node {
    std::string name;  // as rules write it
    const Cached_parameter* parameter = nullptr;
    std::vector<Edge> edges;
    // Of the search for groups.
    std::size_t order = NONE;
    std::size_t lowest = NONE;
    bool is_open = false;
    std::size_t group = NONE;
};

class Graph {
public:
    explicit Graph(const Cascade& cascade) {
        for (const auto& [number, engine] : cascade.engines()) {
            for (const Bound_list& list : engine->lists()) {
                add_rules(*engine, list);
            }
        }
    }

    std::vector<Binding_cycle> cycles() {
        for (std::size_t node = 0; node < m_nodes.size(); ++node) {
            if (m_nodes[node].order == NONE) {
                find_groups(node);
            }
        }
        std::vector<Binding_cycle> cycles;
        for (const auto& [from, edge] : edges_to_report()) {
            cycles.push_back(cycle_through(from, *edge));
        }
        std::stable_partition(cycles.begin(), cycles.end(), [](const Binding_cycle& cycle) {
            return cycle.kind == Binding_cycle::Kind::WRITES;
        });
        return cycles;
    }

private:
    using Rule = binding_language::Rule;

    // A parameter that is only written drives nothing, and has no record.
    std::size_t node_of(const Cached_parameter* parameter, std::string_view name) {
        const auto [found, is_new] = m_numbers.try_emplace(parameter, m_nodes.size());
        if (is_new) {
            m_nodes.emplace_back();
            m_nodes.back().parameter = parameter;
        }
        Node& node = m_nodes[found->second];
        if (node.name.empty()) {
            node.name = name;
        }
        return found->second;
    }

    void add_rules(const Engine& engine, const Bound_list& list) {
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            const Rule rule = list.program.rule(number);
            switch (find_rule_kind(rule.kind)->effect) {
                case Rule_effect::WRITES:
                    add_edges(engine, list, rule, engine.find_written(list, rule), true);
                    break;
                case Rule_effect::LIMITS_ENTRY:
                    add_edges(engine, list, rule, engine.own(), false);
                    break;
                case Rule_effect::NONE:
                    break;
            }
        }
    }

    void add_edges(const Engine& engine, const Bound_list& list, const Rule& rule,
                   const Cached_parameter* driven, bool is_write) {
        if (driven == nullptr) {
            return;
        }
        m_reads.clear();
        m_from.clear();
        list.program.append_reads(rule, m_reads);
        for (const std::size_t read : m_reads) {
            m_from.push_back(node_of(list.parameters[read], list.program.parameter(read).name));
        }
        if (engine.own() != nullptr && list.program.reads_own_value(rule)) {
            m_from.push_back(node_of(engine.own(), {}));
        }
        const std::size_t to = node_of(
            driven, is_write ? list.program.parameter(rule.target()).name : std::string_view());
        for (const std::size_t from : m_from) {
            m_nodes[from].edges.push_back({to, is_write, &engine, rule.line});
        }
    }

    // Tarjan's strongly connected components, with a stack of its own: menus may be deep.
    void find_groups(std::size_t start) {
        struct Visit {
            std::size_t node;
            std::size_t next_edge;
        };
        std::vector<Visit> visits;
        const auto enter = [&](std::size_t node) {
            m_nodes[node].order = m_nodes[node].lowest = m_visited++;
            m_nodes[node].is_open = true;
            m_open.push_back(node);
            visits.push_back({node, 0});
        };
        enter(start);
        while (!visits.empty()) {
            Visit& visit = visits.back();
            Node& node = m_nodes[visit.node];
            if (visit.next_edge < node.edges.size()) {
                const std::size_t to = node.edges[visit.next_edge++].to;
                if (m_nodes[to].order == NONE) {
                    enter(to);
                } else if (m_nodes[to].is_open) {
                    node.lowest = std::min(node.lowest, m_nodes[to].order);
                }
                continue;
            }
            const std::size_t left = visit.node;
            visits.pop_back();
            if (!visits.empty()) {
                Node& before = m_nodes[visits.back().node];
                before.lowest = std::min(before.lowest, m_nodes[left].lowest);
            }
            if (m_nodes[left].lowest == m_nodes[left].order) {
                close_group(left);
            }
        }
    }

    void close_group(std::size_t first) {
        std::size_t node = NONE;
        do {
            node = m_open.back();
            m_open.pop_back();
            m_nodes[node].is_open = false;
            m_nodes[node].group = m_groups;
        } while (node != first);
        ++m_groups;
    }

    // For each group with a circle an edge of it, a write if there is one.
    std::vector<std::pair<std::size_t, const Edge*>> edges_to_report() const {
        std::vector<std::pair<std::size_t, const Edge*>> by_group(m_groups, {NONE, nullptr});
        for (std::size_t from = 0; from < m_nodes.size(); ++from) {
            for (const Edge& edge : m_nodes[from].edges) {
                auto& reported = by_group[m_nodes[from].group];
                const bool is_inner = m_nodes[edge.to].group == m_nodes[from].group;
                const bool is_better =
                    reported.second == nullptr || (edge.is_write && !reported.second->is_write);
                if (is_inner && is_better) {
                    reported = {from, &edge};
                }
            }
        }
        by_group.erase(std::remove_if(by_group.begin(), by_group.end(),
                                      [](const auto& each) { return each.second == nullptr; }),
                       by_group.end());
        return by_group;
    }

    // The edge, and the shortest way back within its group.
    Binding_cycle cycle_through(std::size_t from, const Edge& first) {
        std::unordered_map<std::size_t, std::pair<std::size_t, const Edge*>> came_by;
        std::deque<std::size_t> waiting = {first.to};
        while (came_by.count(from) == 0 && !waiting.empty() && first.to != from) {
            const std::size_t node = waiting.front();
            waiting.pop_front();
            for (const Edge& edge : m_nodes[node].edges) {
                if (m_nodes[edge.to].group == m_nodes[from].group && edge.to != first.to &&
                    came_by.try_emplace(edge.to, node, &edge).second) {
                    waiting.push_back(edge.to);
                }
            }
        }
        std::vector<const Edge*> way;
        for (std::size_t node = from; node != first.to; node = came_by.at(node).first) {
            way.push_back(came_by.at(node).second);
        }
        way.push_back(&first);
        std::reverse(way.begin(), way.end());
        return reported(from, way);
    }

    // From the parameter on whose entry comes first in the menu, as a reader would look for it.
    Binding_cycle reported(std::size_t from, std::vector<const Edge*> way) const {
        const auto last =
            std::min_element(way.begin(), way.end(), [&](const Edge* left, const Edge* right) {
                return place_in_menu(m_nodes[left->to]) < place_in_menu(m_nodes[right->to]);
            });
        if (place_in_menu(m_nodes[(*last)->to]) < place_in_menu(m_nodes[from])) {
            from = (*last)->to;
            std::rotate(way.begin(), last + 1, way.end());
        }
        Binding_cycle cycle{Binding_cycle::Kind::LIMITS, {name_of(m_nodes[from])}, {}};
        for (const Edge* const edge : way) {
            if (edge->is_write) {
                cycle.kind = Binding_cycle::Kind::WRITES;
            }
            cycle.path.push_back(name_of(m_nodes[edge->to]));
            cycle.steps.push_back({edge->engine->entry(), edge->line});
        }
        return cycle;
    }

    static uint64_t place_in_menu(const Node& node) {
        const auto& owners = node.parameter->owners;
        return owners.empty() ? std::numeric_limits<uint64_t>::max()
                              : owners.front()->cascade_state().number;
    }

    // The name on the display, which the author of a menu recognises.
    static std::string name_of(const Node& node) {
        for (const Engine* const owner : node.parameter->owners) {
            if (owner->entry() != nullptr) {
                return owner->entry()->Get_name();
            }
        }
        return bracketed(node.name);
    }

    std::vector<Node> m_nodes;
    std::unordered_map<const Cached_parameter*, std::size_t> m_numbers;
    std::vector<std::size_t> m_reads;  // of the rule at hand, by number and by node
    std::vector<std::size_t> m_from;
    std::size_t m_visited = 0;
    std::vector<std::size_t> m_open;
    std::size_t m_groups = 0;
};

}  // namespace

std::vector<Binding_cycle> find_cycles(const Cascade& cascade) {
    return Graph(cascade).cycles();
}

}  // namespace frontpanel::binding_engine
