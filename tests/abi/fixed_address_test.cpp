// A program that is linked to a fixed address, as many devices' are: it holds copies of the library's variables and
// reaches inherited operations by addresses of its own.
#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/small_stack.h"

namespace {

// Inherits the table's operations.
class Menu : public Node_entry {
public:
    explicit Menu(Data_entry* parent)
        : Node_entry("Menu", "A menu", support::any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
    int getMenuNumber() const { return m_number; }

private:
    int m_number = 1;
};

class Fixed_address : public testing::Test {
protected:
    Fixed_address() {
        for (int level = 0; level < support::DEEP; ++level) {
            m_menus.push_back(
                std::make_unique<Menu>(m_menus.empty() ? nullptr : m_menus.back().get()));
        }
    }
    Menu& top() { return *m_menus.front(); }

private:
    std::vector<std::unique_ptr<Menu>> m_menus;
};

TEST_F(Fixed_address, SharesTheVariablesThatApplicationsSet) {
    static std::vector<uint32_t> told;
    debug_listener = [](uint32_t mask) { told.push_back(mask); };
    const std::string out =
        support::capture(DIAGNOSTIC_SHORTCUT, [&] { top().getShortcut(3); }).out;
    debug_listener = nullptr;
    EXPECT_NE(out.find("shortcuts_map is NULL"), std::string::npos);
    EXPECT_EQ(told, (std::vector<uint32_t>{DIAGNOSTIC_SHORTCUT, 0}));
    setup_link = &top();
    EXPECT_EQ(top().isVisible(), 1);
    setup_link = nullptr;
}

TEST_F(Fixed_address, AsksADeepMenuOfDerivedClassesWithoutStackForItsLevels) {
    support::run_on_small_stack([&] { EXPECT_EQ(top().isVisible(), -1) << "no leaf is below it"; });
}

TEST_F(Fixed_address, PrintsADeepMenuOfDerivedClassesWithoutStackForItsLevels) {
    support::run_on_small_stack([&] {
        const std::string out = support::capture(0, [&] { top().Print(); }).out;
        EXPECT_GT(out.size(), std::size_t{support::DEEP});
    });
}

}  // namespace
