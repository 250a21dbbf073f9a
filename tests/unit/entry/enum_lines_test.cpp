// Under which values of `debug` the lines of enumerated entries show: all of them in the general category and
// quiet as those of every leaf.
#include "enum_fixture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::Fake_binding;
using support::Fake_device;
using Lines = std::vector<std::string>;

constexpr unsigned int PID = 120;
constexpr unsigned int VARIDX = 3;

template <class Action>
void expect_general_leaf_lines(const Lines& lines, Action&& action) {
    support::expect_line_gates(lines, 0x1, support::Gate::LEAF, action);
}

TEST(EnumLines, OfReadingAreGeneralLeafLines) {
    Open_enum entry(Enum_arguments().max(2));
    int value = 0;
    expect_general_leaf_lines({"[Get_integer_enum][", "key=[0] value=[0]\n"},
                              [&] { entry.Get_value(&value, 4); });
    expect_general_leaf_lines({"[Get_integer]["}, [&] { entry.Get_integer(); });
    expect_general_leaf_lines({"it->second=[0] value=[0]", "Returning it->second=[0]"},
                              [&] { entry.Get_value(&value, 4, 0); });
    expect_general_leaf_lines({"index[9] is not in range [0,2]"},
                              [&] { entry.Get_value(&value, 4, 9); });
    entry.map_enum_to_options.erase(2);
    expect_general_leaf_lines({"Error. No match for value [2] in map"},
                              [&] { entry.Get_value(&value, 4, 2); });
    expect_general_leaf_lines({"enum too small or large. min[0] get_returned[9] max[2]"}, [&] {
        entry.put(9);
        entry.Get_integer();
    });
    entry.put(1);
    entry.map_enum_to_options[1] = -1;
    expect_general_leaf_lines({"did not pass check, returning min=[0]"},
                              [&] { entry.Get_value(&value, 4); });
    entry.map_enum_to_options.clear();
    expect_general_leaf_lines({"Size of option map is 0. "}, [&] {
        int min = 0, max = 0, size = 0;
        entry.minMaxSize(&min, &max, &size);
    });
}

TEST(EnumLines, OfSelectingAreGeneralLeafLines) {
    Open_enum entry(Enum_arguments().max(1));
    expect_general_leaf_lines({"enum set Set_value [3] current_selection=[0]",
                               "enum too small or large. min[0] set[3] max[1]"},
                              [&] { entry.set(3); });
    expect_general_leaf_lines({"Current enum position + supplied value[-1] results in overrun"},
                              [&] { entry.Inc_value(-1, 0); });
    expect_general_leaf_lines({"new enum value [2] for [Mode] is not in enum control range [0,1]"},
                              [&] { entry.Inc_value(2, 0); });
    expect_general_leaf_lines({"Incremented enum one visible unit."},
                              [&] { entry.Inc_value(0, 0); });
    expect_general_leaf_lines({"enum set rval 0\n"}, [&] {
        entry.map_enum_to_options.clear();
        entry.set(1);
    });
}

TEST(EnumLines, OfTheDisplayAreGeneralLeafLines) {
    Open_enum entry;
    char line[21] = {};
    expect_general_leaf_lines({"Warning. Length is <=1"},
                              [&] { entry.Get_display_string(line, 1); });
    entry.map_enum_to_options = {{0, 0}};
    expect_general_leaf_lines({"Enum_entry::Get_display_string, Get_value error"},
                              [&] { entry.Get_display_string(line, 20, 2); });
    entry.m_size = 0;
    expect_general_leaf_lines({"Enum_entry::Get_display_string, error"},
                              [&] { entry.Get_display_string(line, 20); });
}

TEST(EnumLines, OfARefreshAreGeneralLeafLines) {
    Fake_device device;
    device.answer_get_integer(PID, VARIDX, 1);
    Open_enum entry;
    entry.show_only({2, 3});
    expect_general_leaf_lines({"Enum Entry Refresh name=[Mode]", "Value of the key =[1]",
                               "Will commit a new and safe value for enum. new enum key[2]",
                               "[Commit][enum_entry.cpp][#] Calling m_model commit..."},
                              [&] {
                                  device.expect_set_integer(PID, VARIDX, 2);
                                  entry.Refresh(&device, false);
                              });
    device.answer_get_integer(PID, VARIDX, 1, -1);
    expect_general_leaf_lines({"Error with enum[Mode] refreshing."},
                              [&] { entry.Refresh(&device, false); });
}

TEST(EnumLines, OfACommitAreGeneralLeafLines) {
    Fake_device device;
    Open_enum entry;
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    support::Leaf dependant("Follower");
    binding->own_map[binding->self_control_info].binding_dependant_entries = {&dependant};
    const auto commit = [&] {
        device.expect_set_integer(PID, VARIDX, 0);
        entry.Commit(&device);
    };
    expect_general_leaf_lines(
        {"Calling m_model commit", "Bind expression of entry [Follower] depends on [Mode]"},
        commit);
    support::expect_line_gate("here 14\n", 0, support::Gate::ALWAYS, commit);
    binding->map = nullptr;
    expect_general_leaf_lines({"Var index map is null"}, commit);
}

// Judges each option by its name.
class Judging_enum : public Open_enum {
public:
    is_static_value_s isOptionStatic(std::string option, bool) override {
        if (option == "undecided") return {-1, 3, 3};
        if (option == "instance") return {0, 3, 3};
        if (option == "beyond") return {0, 3, 4};
        return {1, 3, 3};
    }
};

TEST(EnumLines, OfControlOptionsAreGeneralLeafLines) {
    Judging_enum entry;
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    entry.Set_control_options({{0, {"undecided", "fixed"}}, {1, {"beyond", "instance"}}});
    expect_general_leaf_lines(
        {"Enum Control Option: [1] max_map_size=", "Option: [beyond]",
         "Control number [0], [undecided], MAY not appear", "option [fixed] is static",
         "option [instance] is dynamicand will be visible.",
         "option [beyond] is dynamic, but  will not be visible.", "Size of option controls [2]",
         "suggestionUpdated\n", "Size of binding controls [1]", "op.size()[2] bind.size()[1]",
         "Size of common controls  [1]", "m_min[0] m_max[0] m_size[1]",
         "map_enum_to_options [1]=[-1]"},
        [&] {
            binding->suggest_keys({{0}});
            binding->offer(SUGGESTION_RANGE);
            binding->update_without_offer(SUGGESTION_RANGE);
            entry.updateControlOptionMap();
        });
}

}  // namespace
