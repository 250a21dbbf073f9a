#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <string>

#include "support/fake_binding.h"
#include "support/indexes.h"

namespace {

class Node : public Node_entry {
public:
    Node()
        : Node_entry("Network", "Network settings", support::any_index(), nullptr, VISIBLE_ALL, 4,
                     nullptr, nullptr, nullptr) {}
};

TEST(NodeEntry, IsANodeWithoutAParameter) {
    Node node;
    EXPECT_EQ(node.Get_entry_type(), Data_entry::NODE);
    EXPECT_TRUE(node.Is_node_entry());
    EXPECT_EQ(node.Get_return_type_int_or_string(), INVALID_TYPE);
    EXPECT_EQ(node.bindingReturnType(), STRING);
    EXPECT_EQ(node.Get_pid(), Data_entry::PID_NONE);
    EXPECT_EQ(node.Get_shortcut(), 4);
}

TEST(NodeEntry, TakesItsParentInFourthPlace) {
    Node parent;
    Node next;
    Node previous;
    Node child;
    Node_entry node("Sub", "A submenu", support::any_index(), &parent, 0, 5, &next, &previous,
                    &child);
    EXPECT_EQ(node.Get_parent(), &parent);
    EXPECT_EQ(node.Get_next(), &next);
    EXPECT_EQ(node.Get_previous(), &previous);
    EXPECT_EQ(node.Get_child(), &child);
    EXPECT_EQ(node.Get_visible(), 0);
    EXPECT_EQ(node.Get_shortcut(), 5);
}

TEST(NodeEntry, RefusesValueOperations) {
    Node node;
    char buffer[4] = {'e', 'e', 'e', 'e'};
    EXPECT_EQ(node.Get_value(buffer, sizeof buffer), Data_entry::INVALID);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "eeee");
    EXPECT_EQ(node.Inc_value(1, 0), Data_entry::INVALID);
    EXPECT_EQ(node.Get_value(nullptr, 0), Data_entry::INVALID);
    EXPECT_EQ(node.Set_value(nullptr, 0), Data_entry::INVALID);
}

TEST(NodeEntry, RefusesAValueWithoutAskingTheBinding) {
    std::vector<std::string> log;
    Node node;
    auto* binding = new support::Fake_binding(&log);
    binding->suggest_warnings({"Careful"});
    node.Set_binding_object(binding);
    log.clear();
    const int32_t value = 5;
    EXPECT_EQ(node.Set_value(&value, sizeof value), Data_entry::INVALID);
    EXPECT_TRUE(log.empty());
}

TEST(NodeEntry, ShowsItsName) {
    Node node;
    char buffer[8] = {'e', 'e', 'e', 'e', 'e', 'e', 'e', 'e'};
    EXPECT_EQ(node.Get_display_string(buffer, 4), Data_entry::OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("Nete\0eee", 8));
    EXPECT_EQ(node.Get_display_string(buffer, 1), Data_entry::ERROR);
}

TEST(NodeEntry, ReportsTheBaseLine) {
    Node node;
    EXPECT_EQ(node.getProperties(0),
              "Network varid[-1.3.0@s] num_index_levels=[1] type[0] vis[1] shortcut[4] ");
    EXPECT_EQ(node.getProperties(8), "Network ");
}

}  // namespace
