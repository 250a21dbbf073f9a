// The slot of every virtual operation. An application that was built earlier calls by these numbers, so a
// row of a table here is never moved or removed, and new rows go to the end of a class that nothing derives
// from.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/front_panel_messages.h>
#include <frontpanel_data/pdt_data_access.h>
#include <frontpanel_data/selection.h>
#include <frontpanel_data/timer.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// The destructor stands first in every class and takes two slots.
constexpr std::size_t FIRST_SLOT = 2;
constexpr std::size_t NOT_VIRTUAL = static_cast<std::size_t>(-1);

// The slot of a virtual operation by the pointer to member of the Itanium C++ ABI: one more than the
// distance in bytes from the start of the table; on ARM the distance itself, beside a marker bit.
template <class Operation>
std::size_t slot_of(Operation operation) {
    std::uintptr_t words[2] = {};
    static_assert(sizeof operation == sizeof words, "unknown form of a pointer to member");
    std::memcpy(words, &operation, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
    return (words[1] & 1) != 0 ? words[0] / sizeof(void*) : NOT_VIRTUAL;
#else
    return (words[0] & 1) != 0 ? (words[0] - 1) / sizeof(void*) : NOT_VIRTUAL;
#endif
}

struct Row {
    const char* name;
    std::size_t slot;
};

void expect_consecutive(const std::vector<Row>& rows, std::size_t first) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].slot, first + i) << rows[i].name;
    }
}

// Chooses one of several operations of a name.
template <class Signature>
struct Chosen;
template <class Result, class... Arguments>
struct Chosen<Result(Arguments...)> {
    template <class Class>
    static auto plain(Result (Class::*operation)(Arguments...)) {
        return operation;
    }
};

#define SLOT(Class, operation) (Row{#operation, slot_of(&Class::operation)})
#define SLOT_OF(Class, operation, ...) \
    (Row{#operation, slot_of(Chosen<__VA_ARGS__>::plain<Class>(&Class::operation))})

constexpr std::size_t ENTRY_SLOTS = 79;
constexpr std::size_t AFTER_ENTRY = FIRST_SLOT + ENTRY_SLOTS;
constexpr std::size_t AFTER_MODEL = FIRST_SLOT + 7;

TEST(SlotOrder, DataInterface) {
    expect_consecutive(
        {
            SLOT(Data_interface, Init),
            SLOT(Data_interface, Get),
            SLOT(Data_interface, Set),
            SLOT(Data_interface, Get_prod_list),
            SLOT(Data_interface, Set_product_id),
            SLOT(Data_interface, Get_prod_alias_name),
        },
        FIRST_SLOT);
}

TEST(SlotOrder, PdtDataAccess) {
    expect_consecutive(
        {
            SLOT(Pdt_data_access, Is_current_selection_local),
            SLOT(Pdt_data_access, Is_use_selection_local),
            SLOT(Pdt_data_access, setCurrentRouterSocket),
        },
        FIRST_SLOT + 6);
}

TEST(SlotOrder, DataModel) {
    expect_consecutive(
        {
            SLOT(Data_model, Get),
            SLOT(Data_model, Set),
            SLOT(Data_model, Is_active),
            SLOT(Data_model, Inc_value),
            SLOT(Data_model, Commit),
            SLOT(Data_model, Refresh),
            SLOT(Data_model, Init),
        },
        FIRST_SLOT);
}

TEST(SlotOrder, IntegerModel) {
    EXPECT_EQ(slot_of(&Integer_model::Get), slot_of(&Data_model::Get));
    EXPECT_EQ(slot_of(&Integer_model::Set), slot_of(&Data_model::Set));
    EXPECT_EQ(slot_of(&Integer_model::Is_active), slot_of(&Data_model::Is_active));
    EXPECT_EQ(slot_of(&Integer_model::Inc_value), slot_of(&Data_model::Inc_value));
    expect_consecutive({SLOT(Integer_model, Commit), SLOT(Integer_model, Refresh)}, AFTER_MODEL);
}

TEST(SlotOrder, StringModel) {
    EXPECT_EQ(SLOT_OF(String_model, Get, int(void*, unsigned int)).slot, slot_of(&Data_model::Get));
    EXPECT_EQ(slot_of(&String_model::Set), slot_of(&Data_model::Set));
    EXPECT_EQ(slot_of(&String_model::Is_active), slot_of(&Data_model::Is_active));
    EXPECT_EQ(slot_of(&String_model::Inc_value), slot_of(&Data_model::Inc_value));
    expect_consecutive(
        {
            SLOT_OF(String_model, Get, int(void*, unsigned int, unsigned int)),
            SLOT(String_model, Commit),
            SLOT(String_model, Refresh),
        },
        AFTER_MODEL);
}

TEST(SlotOrder, DataEntry) {
    const std::vector<Row> rows = {
        SLOT(Data_entry, getProperties),
        SLOT(Data_entry, Get_next),
        SLOT(Data_entry, Get_previous),
        SLOT(Data_entry, Get_parent),
        SLOT(Data_entry, Get_child),
        SLOT(Data_entry, Get_dynamic_parent),
        SLOT(Data_entry, Get_dynamic_child),
        SLOT(Data_entry, Get_dynamic_next),
        SLOT(Data_entry, Get_dynamic_previous),
        SLOT(Data_entry, Get_entry_type),
        SLOT(Data_entry, Is_node_entry),
        SLOT(Data_entry, Get_access_type),
        SLOT(Data_entry, Get_orig_access_type),
        SLOT(Data_entry, Get_flag_access_type_chg),
        SLOT(Data_entry, Set_flag_access_type_chg),
        SLOT(Data_entry, Set_access_type),
        SLOT(Data_entry, Get_return_type_int_or_string),
        SLOT(Data_entry, Set_parent),
        SLOT(Data_entry, Set_child),
        SLOT(Data_entry, Set_next),
        SLOT(Data_entry, Set_previous),
        SLOT(Data_entry, Set_dynamic_parent),
        SLOT(Data_entry, Set_dynamic_child),
        SLOT(Data_entry, Set_dynamic_next),
        SLOT(Data_entry, Set_dynamic_previous),
        SLOT(Data_entry, Add_child),
        SLOT(Data_entry, Attach),
        SLOT(Data_entry, Remove),
        SLOT(Data_entry, Is_active),
        SLOT(Data_entry, Get_name),
        SLOT(Data_entry, Get_shortcut),
        SLOT(Data_entry, Get_hs_shortcut),
        SLOT(Data_entry, Set_shortcut),
        SLOT(Data_entry, Get_shortcuts_map),
        SLOT(Data_entry, Get_description),
        SLOT(Data_entry, Get_display_string),
        SLOT(Data_entry, Get_index),
        SLOT(Data_entry, Get_id_string),
        SLOT(Data_entry, Get_pid),
        SLOT(Data_entry, Get_visible),
        SLOT(Data_entry, Get_bind_vis),
        SLOT(Data_entry, Set_hs_shortcut),
        SLOT(Data_entry, setShortcuts),
        SLOT(Data_entry, getShortcut),
        SLOT(Data_entry, setNodeLevel),
        SLOT(Data_entry, getNodeLevel),
        SLOT(Data_entry, setOrOptions),
        SLOT(Data_entry, setProductOptions),
        SLOT_OF(Data_entry, isVisible, int()),
        SLOT_OF(Data_entry, isVisible, int(bool, Data_interface*)),
        SLOT(Data_entry, Get_value),
        SLOT(Data_entry, Set_value),
        SLOT(Data_entry, bindingReturnType),
        SLOT(Data_entry, Commit),
        SLOT(Data_entry, Refresh),
        SLOT(Data_entry, Inc_value),
        SLOT(Data_entry, Print),
        SLOT(Data_entry, Update_value),
        SLOT(Data_entry, Get_value_visible_mask),
        SLOT(Data_entry, Get_min),
        SLOT(Data_entry, Get_max),
        SLOT(Data_entry, Get_options),
        SLOT(Data_entry, isOptionStatic),
        SLOT(Data_entry, Get_final_value),
        SLOT(Data_entry, Set_final_value),
        SLOT(Data_entry, Set_invisible),
        SLOT(Data_entry, Set_visible),
        SLOT(Data_entry, Set_binding_object),
        SLOT(Data_entry, Add_binding_list),
        SLOT(Data_entry, Get_var_index_map_keys),
        SLOT(Data_entry, Get_var_index_map),
        SLOT(Data_entry, SetBindRefreshIsLocked),
        SLOT(Data_entry, GetBindRefreshIsLocked),
        SLOT(Data_entry, Print_binding_errors),
        SLOT(Data_entry, Print_suggestions),
        SLOT(Data_entry, Set_has_children),
        SLOT(Data_entry, Get_has_children),
        SLOT(Data_entry, Set_entry_visible),
        SLOT(Data_entry, Get_entry_visible),
    };
    EXPECT_EQ(rows.size(), ENTRY_SLOTS);
    expect_consecutive(rows, FIRST_SLOT);
}

TEST(SlotOrder, NodeEntryReplacesOperationsOfTheBase) {
    EXPECT_EQ(slot_of(&Node_entry::getProperties), slot_of(&Data_entry::getProperties));
    EXPECT_EQ(slot_of(&Node_entry::Get_entry_type), slot_of(&Data_entry::Get_entry_type));
    EXPECT_EQ(slot_of(&Node_entry::Get_return_type_int_or_string),
              slot_of(&Data_entry::Get_return_type_int_or_string));
    EXPECT_EQ(slot_of(&Node_entry::Get_display_string), slot_of(&Data_entry::Get_display_string));
    EXPECT_EQ(slot_of(&Node_entry::Get_value), slot_of(&Data_entry::Get_value));
    EXPECT_EQ(slot_of(&Node_entry::Set_value), slot_of(&Data_entry::Set_value));
    EXPECT_EQ(slot_of(&Node_entry::Inc_value), slot_of(&Data_entry::Inc_value));
}

TEST(SlotOrder, RangeEntry) {
    EXPECT_EQ(slot_of(&Range_entry::getProperties), slot_of(&Data_entry::getProperties));
    EXPECT_EQ(slot_of(&Range_entry::Is_active), slot_of(&Data_entry::Is_active));
    EXPECT_EQ(slot_of(&Range_entry::Get_value), slot_of(&Data_entry::Get_value));
    EXPECT_EQ(slot_of(&Range_entry::Set_value), slot_of(&Data_entry::Set_value));
    EXPECT_EQ(slot_of(&Range_entry::Refresh), slot_of(&Data_entry::Refresh));
    EXPECT_EQ(slot_of(&Range_entry::Inc_value), slot_of(&Data_entry::Inc_value));
    EXPECT_EQ(slot_of(&Range_entry::Get_final_value), slot_of(&Data_entry::Get_final_value));
    EXPECT_EQ(slot_of(&Range_entry::Set_final_value), slot_of(&Data_entry::Set_final_value));
    expect_consecutive(
        {
            SLOT_OF(Range_entry, Get_display_string, int(char*, unsigned int, bool, int)),
            SLOT_OF(Range_entry, Get_display_string, int(char*, unsigned int, int)),
            SLOT(Range_entry, Commit),
            SLOT(Range_entry, Get_min),
            SLOT(Range_entry, Get_max),
            SLOT(Range_entry, setValidRangeAndValues),
            SLOT(Range_entry, evaluateOptions),
            SLOT(Range_entry, updateRange),
            SLOT(Range_entry, increment),
        },
        AFTER_ENTRY);
}

TEST(SlotOrder, EnumEntry) {
    EXPECT_EQ(SLOT_OF(Enum_entry, Get_display_string, int(char*, unsigned int)).slot,
              slot_of(&Data_entry::Get_display_string));
    EXPECT_EQ(SLOT_OF(Enum_entry, Get_value, int(void*, unsigned int)).slot,
              slot_of(&Data_entry::Get_value));
    EXPECT_EQ(slot_of(&Enum_entry::Get_min), slot_of(&Data_entry::Get_min));
    EXPECT_EQ(slot_of(&Enum_entry::Get_max), slot_of(&Data_entry::Get_max));
    EXPECT_EQ(slot_of(&Enum_entry::Update_value), slot_of(&Data_entry::Update_value));
    EXPECT_EQ(slot_of(&Enum_entry::Refresh), slot_of(&Data_entry::Refresh));
    EXPECT_EQ(slot_of(&Enum_entry::getProperties), slot_of(&Data_entry::getProperties));
    EXPECT_EQ(slot_of(&Enum_entry::Is_active), slot_of(&Data_entry::Is_active));
    EXPECT_EQ(slot_of(&Enum_entry::Set_value), slot_of(&Data_entry::Set_value));
    EXPECT_EQ(slot_of(&Enum_entry::Inc_value), slot_of(&Data_entry::Inc_value));
    expect_consecutive(
        {
            SLOT_OF(Enum_entry, Get_display_string, int(char*, unsigned int, int)),
            SLOT(Enum_entry, updateControlOptionMap),
            SLOT(Enum_entry, optionControls),
            SLOT(Enum_entry, bindingControls),
            SLOT(Enum_entry, commonControls),
            SLOT(Enum_entry, Commit),
            SLOT(Enum_entry, GetLiveDataProcessor),
            SLOT(Enum_entry, Get_integer),
            SLOT_OF(Enum_entry, Get_value, int(void*, unsigned int, int)),
        },
        AFTER_ENTRY);
}

TEST(SlotOrder, SlotEnumEntry) {
    EXPECT_EQ(slot_of(&Slot_enum_entry::Commit), slot_of(&Enum_entry::Commit));
    EXPECT_EQ(slot_of(&Slot_enum_entry::Get_display_string),
              slot_of(&Data_entry::Get_display_string));
    EXPECT_EQ(SLOT_OF(Slot_enum_entry, Refresh, int(Data_interface*, bool)).slot,
              slot_of(&Data_entry::Refresh));
    expect_consecutive(
        {
            SLOT_OF(Slot_enum_entry, Refresh, int(Data_interface*, bool, int, int, bool)),
            SLOT(Slot_enum_entry, Get_ip_entry),
            SLOT(Slot_enum_entry, ClearMenu),
        },
        AFTER_ENTRY + 9);
}

TEST(SlotOrder, StringEntry) {
    EXPECT_EQ(SLOT_OF(String_entry, Get_value, int(void*, unsigned int)).slot,
              slot_of(&Data_entry::Get_value));
    EXPECT_EQ(slot_of(&String_entry::Refresh), slot_of(&Data_entry::Refresh));
    expect_consecutive(
        {
            SLOT_OF(String_entry, Get_value, int(void*, unsigned int, unsigned int)),
            SLOT(String_entry, Commit),
        },
        AFTER_ENTRY);
}

TEST(SlotOrder, IpEntryHasANameOfItsOwn) {
    expect_consecutive({SLOT_OF(Ip_entry, Get_name, char*())}, AFTER_ENTRY + 2);
    EXPECT_EQ(slot_of(&Ip_entry::Get_display_string), slot_of(&Data_entry::Get_display_string));
}

TEST(SlotOrder, TimeEntryReplacesOperationsOfTheBase) {
    EXPECT_EQ(slot_of(&Time_entry::Get_entry_type), slot_of(&Data_entry::Get_entry_type));
    EXPECT_EQ(slot_of(&Time_entry::Get_display_string), slot_of(&Data_entry::Get_display_string));
}

TEST(SlotOrder, LinkEntry) {
    const std::vector<Row> rows = {
        SLOT(Link_entry, Get_escape_node),
        SLOT(Link_entry, Set_escape_node),
        SLOT(Link_entry, Get_housed_entry),
        SLOT_OF(Link_entry, Set_visible, bool(bool)),
        SLOT(Link_entry, Get_next),
        SLOT(Link_entry, Get_previous),
        SLOT(Link_entry, Get_parent_link),
        SLOT(Link_entry, Get_child_link),
        SLOT(Link_entry, Get_parent),
        SLOT(Link_entry, Get_child),
        SLOT(Link_entry, Get_access_type),
        SLOT(Link_entry, Is_node_entry),
        SLOT(Link_entry, Is_active),
        SLOT(Link_entry, Get_shortcut),
        SLOT(Link_entry, Get_description),
        SLOT(Link_entry, Get_index),
        SLOT(Link_entry, Get_pid),
        SLOT(Link_entry, Get_visible),
        SLOT(Link_entry, CheckToggleState),
        SLOT(Link_entry, GetGetRequest),
        SLOT(Link_entry, Get_value_visible_mask),
        SLOT(Link_entry, Get_min),
        SLOT(Link_entry, Get_max),
        SLOT(Link_entry, GetToggleExpression),
        SLOT(Link_entry, isMountLink),
        SLOT(Link_entry, setAsMountLink),
        SLOT(Link_entry, setAsHomescreenEntry),
        SLOT(Link_entry, isHomescreenEntry),
        SLOT(Link_entry, createGetRequests),
        SLOT(Link_entry, setAsBridgeLink),
        SLOT(Link_entry, isBridgeLink),
        SLOT(Link_entry, getBehaviour),
        SLOT(Link_entry, setBehaviour),
        SLOT(Link_entry, isValidParentLink),
    };
    EXPECT_EQ(rows.size(), 34u);
    expect_consecutive(rows, AFTER_ENTRY);
}

TEST(SlotOrder, LinkEntryReplacesOperationsOfTheBase) {
    EXPECT_EQ(slot_of(&Link_entry::Get_entry_type), slot_of(&Data_entry::Get_entry_type));
    EXPECT_EQ(slot_of(&Link_entry::Get_return_type_int_or_string),
              slot_of(&Data_entry::Get_return_type_int_or_string));
    EXPECT_EQ(slot_of(&Link_entry::Set_parent), slot_of(&Data_entry::Set_parent));
    EXPECT_EQ(slot_of(&Link_entry::Set_child), slot_of(&Data_entry::Set_child));
    EXPECT_EQ(slot_of(&Link_entry::Set_next), slot_of(&Data_entry::Set_next));
    EXPECT_EQ(slot_of(&Link_entry::Set_previous), slot_of(&Data_entry::Set_previous));
    EXPECT_EQ(slot_of(&Link_entry::Add_child), slot_of(&Data_entry::Add_child));
    EXPECT_EQ(slot_of(&Link_entry::Attach), slot_of(&Data_entry::Attach));
    EXPECT_EQ(slot_of(&Link_entry::Remove), slot_of(&Data_entry::Remove));
    EXPECT_EQ(slot_of(&Link_entry::Get_name), slot_of(&Data_entry::Get_name));
    EXPECT_EQ(slot_of(&Link_entry::Set_shortcut), slot_of(&Data_entry::Set_shortcut));
    EXPECT_EQ(slot_of(&Link_entry::Get_display_string), slot_of(&Data_entry::Get_display_string));
    EXPECT_EQ(slot_of(&Link_entry::Get_bind_vis), slot_of(&Data_entry::Get_bind_vis));
    EXPECT_EQ(slot_of(&Link_entry::setOrOptions), slot_of(&Data_entry::setOrOptions));
    EXPECT_EQ(slot_of(&Link_entry::setProductOptions), slot_of(&Data_entry::setProductOptions));
    EXPECT_EQ(slot_of(&Link_entry::Get_value), slot_of(&Data_entry::Get_value));
    EXPECT_EQ(slot_of(&Link_entry::Set_value), slot_of(&Data_entry::Set_value));
    EXPECT_EQ(slot_of(&Link_entry::bindingReturnType), slot_of(&Data_entry::bindingReturnType));
    EXPECT_EQ(slot_of(&Link_entry::Commit), slot_of(&Data_entry::Commit));
    EXPECT_EQ(slot_of(&Link_entry::Refresh), slot_of(&Data_entry::Refresh));
    EXPECT_EQ(slot_of(&Link_entry::Inc_value), slot_of(&Data_entry::Inc_value));
    EXPECT_EQ(slot_of(&Link_entry::Print), slot_of(&Data_entry::Print));
    EXPECT_EQ(slot_of(&Link_entry::Update_value), slot_of(&Data_entry::Update_value));
    EXPECT_EQ(slot_of(&Link_entry::Get_options), slot_of(&Data_entry::Get_options));
    EXPECT_EQ(slot_of(&Link_entry::isOptionStatic), slot_of(&Data_entry::isOptionStatic));
    EXPECT_EQ(slot_of(&Link_entry::Get_final_value), slot_of(&Data_entry::Get_final_value));
    EXPECT_EQ(slot_of(&Link_entry::Set_final_value), slot_of(&Data_entry::Set_final_value));
    EXPECT_EQ(slot_of(&Link_entry::Set_invisible), slot_of(&Data_entry::Set_invisible));
    EXPECT_EQ(slot_of(&Link_entry::Set_binding_object), slot_of(&Data_entry::Set_binding_object));
    EXPECT_EQ(slot_of(&Link_entry::Add_binding_list), slot_of(&Data_entry::Add_binding_list));
    EXPECT_EQ(slot_of(&Link_entry::Get_var_index_map_keys),
              slot_of(&Data_entry::Get_var_index_map_keys));
    EXPECT_EQ(slot_of(&Link_entry::Get_var_index_map), slot_of(&Data_entry::Get_var_index_map));
    EXPECT_EQ(slot_of(&Link_entry::Print_binding_errors),
              slot_of(&Data_entry::Print_binding_errors));
    EXPECT_EQ(slot_of(&Link_entry::Print_suggestions), slot_of(&Data_entry::Print_suggestions));
    EXPECT_EQ(SLOT_OF(Link_entry, Set_visible, void()).slot, slot_of(&Data_entry::Set_visible));
    EXPECT_EQ(SLOT_OF(Link_entry, isVisible, int()).slot,
              SLOT_OF(Data_entry, isVisible, int()).slot);
    EXPECT_EQ(SLOT_OF(Link_entry, isVisible, int(bool, Data_interface*)).slot,
              SLOT_OF(Data_entry, isVisible, int(bool, Data_interface*)).slot);
}

TEST(SlotOrder, Binding) {
    expect_consecutive(
        {
            SLOT(Binding, setControlInfo),
            SLOT(Binding, setDataEntry),
            SLOT(Binding, addBindingList),
            SLOT(Binding, numBindingLists),
            SLOT(Binding, evaluateAllBindingExpressions),
            SLOT(Binding, printBindErrors),
            SLOT(Binding, clearBindErrors),
            SLOT(Binding, printSuggestions),
            SLOT(Binding, offersSuggestion),
            SLOT(Binding, suggestionUpdated),
            SLOT(Binding, getSuggestion),
            SLOT(Binding, clearSuggestion),
            SLOT(Binding, setOverrideVarid),
            SLOT(Binding, clearOverrideVarid),
            SLOT(Binding, displayWarning),
            SLOT(Binding, getVarIndexMap),
            SLOT(Binding, getVarIndexMapKeys),
        },
        FIRST_SLOT);
}

TEST(SlotOrder, Editors) {
    expect_consecutive(
        {
            SLOT(Selection, Prepare),
            SLOT(Selection, ExitLEDs),
            SLOT(Selection, Escape),
            SLOT(Selection, Set_escape_entry),
            SLOT(Selection, Set_select_entry),
        },
        FIRST_SLOT);
    expect_consecutive(
        {
            SLOT(NumericRangeSelection, Coarser_step),
            SLOT(NumericRangeSelection, Finer_step),
        },
        FIRST_SLOT + 5);
    expect_consecutive(
        {
            SLOT(EnumSelection, Set_use_line_info),
            SLOT(EnumSelection, Set_selected),
            SLOT(EnumSelection, Set_selected_line),
        },
        FIRST_SLOT + 5);
}

TEST(SlotOrder, Timer) {
    expect_consecutive({SLOT(Timer, set), SLOT(Timer, expired), SLOT(Timer, remaining)},
                       FIRST_SLOT);
    EXPECT_EQ(slot_of(&LinuxTimer::set), slot_of(&Timer::set));
    EXPECT_EQ(slot_of(&LinuxTimer::expired), slot_of(&Timer::expired));
    EXPECT_EQ(slot_of(&LinuxTimer::remaining), slot_of(&Timer::remaining));
}

// Behind the destructor comes what a class of the application adds.
class Message_probe : public FrontPanel::PayloadMessage {
public:
    using PayloadMessage::PayloadMessage;
    virtual void added() {}
};

TEST(SlotOrder, MessagesHaveNothingBesideTheDestructor) {
    EXPECT_EQ(slot_of(&Message_probe::added), FIRST_SLOT);
}

TEST(SlotOrder, WhatIsNotVirtualHasNoSlot) {
    EXPECT_EQ(slot_of(&Data_model::Get_varidx), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Integer_model::Set_min), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&String_model::Get_max_length), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Range_entry::getBindingRange), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Set_control_options), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::getWebTypeAsInt), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::getPanelTypeAsInt), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_size), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Set_min), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Set_max), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Set_size), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_min_enum), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_max_enum), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_size_enum), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_integer_enum), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::valueToKey), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::minMaxSize), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_menu_level), NOT_VIRTUAL);
    EXPECT_EQ(slot_of(&Enum_entry::Get_key_enum), NOT_VIRTUAL);
}

}  // namespace
