// The order of data members. Classes of an application that derive from these reach the members by their
// offsets, so a row of a table here is never moved or removed.
#include <frontpanel_data/binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/front_panel_messages.h>
#include <frontpanel_data/timer.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Row {
    const char* name;
    std::ptrdiff_t offset;
};
using Rows = std::vector<Row>;

template <class Member, class Class>
std::ptrdiff_t offset_of(Member Class::*member) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof member == sizeof offset, "unknown form of a pointer to a data member");
    std::memcpy(&offset, &member, sizeof offset);
    return offset;
}

void expect_ascending(const Rows& rows, std::size_t first) {
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows[0].offset, static_cast<std::ptrdiff_t>(first)) << rows[0].name;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        EXPECT_GT(rows[i].offset, rows[i - 1].offset) << rows[i].name;
    }
}

#define MEMBER(Class, member)              \
    Row {                                  \
#member, offset_of(&Class::member) \
    }

// Behind the pointer to the table of virtual operations.
constexpr std::size_t AFTER_TABLE = sizeof(void*);

TEST(MemberOrder, Records) {
    expect_ascending({MEMBER(Index_t, m_index_num), MEMBER(Index_t, m_index)}, 0);
    expect_ascending({MEMBER(return_s, rt), MEMBER(return_s, i), MEMBER(return_s, s)}, 0);
    expect_ascending(
        {MEMBER(var_index_s, rt), MEMBER(var_index_s, var), MEMBER(var_index_s, index)}, 0);
    expect_ascending({MEMBER(GetSetS, varid), MEMBER(GetSetS, varidx), MEMBER(GetSetS, rt),
                      MEMBER(GetSetS, buffer), MEMBER(GetSetS, length)},
                     0);
    expect_ascending({MEMBER(PROD_LIST_S, prod_id), MEMBER(PROD_LIST_S, prod_feature_support),
                      MEMBER(PROD_LIST_S, prod_family), MEMBER(PROD_LIST_S, prod_string)},
                     0);
    expect_ascending({MEMBER(is_static_value_s, isStatic), MEMBER(is_static_value_s, realValue),
                      MEMBER(is_static_value_s, dynamicValue)},
                     0);
    expect_ascending({MEMBER(ShortcutS, shortcut_button_num), MEMBER(ShortcutS, entry),
                      MEMBER(ShortcutS, dynamic_entry)},
                     0);
    expect_ascending(
        {MEMBER(range_s, min_inclusive), MEMBER(range_s, max_exclusive), MEMBER(range_s, options)},
        0);
}

TEST(MemberOrder, DataInterface) {
    expect_ascending({MEMBER(Data_interface, go_home), MEMBER(Data_interface, lock_and_dim),
                      MEMBER(Data_interface, time_for_timeout)},
                     AFTER_TABLE);
}

TEST(MemberOrder, EntryModelCache) {
    expect_ascending(
        {MEMBER(EntryModelCache, binding_dependant_entries), MEMBER(EntryModelCache, entry_type),
         MEMBER(EntryModelCache, model_type), MEMBER(EntryModelCache, monitored_entry),
         MEMBER(EntryModelCache, value_string), MEMBER(EntryModelCache, value_int)},
        0);
}

TEST(MemberOrder, Message) {
    expect_ascending({MEMBER(FrontPanel::Message, type), MEMBER(FrontPanel::Message, length),
                      MEMBER(FrontPanel::Message, payload)},
                     AFTER_TABLE);
    EXPECT_EQ(sizeof(FrontPanel::PayloadMessage), sizeof(FrontPanel::Message));
}

class Timer_probe : public LinuxTimer {
public:
    using Probe = Timer_probe;
    static Rows rows() { return {MEMBER(Probe, expiry_time)}; }
    static_assert(sizeof(expiry_time) == 8, "milliseconds in 64 bits");
};

TEST(MemberOrder, Timer) {
    expect_ascending(Timer_probe::rows(), 8);
    EXPECT_EQ(sizeof(Timer), AFTER_TABLE);
}

class Integer_model_probe : public Integer_model {
public:
    using Probe = Integer_model_probe;
    static Rows base_rows() {
        return {MEMBER(Probe, m_pid), MEMBER(Probe, m_index), MEMBER(Probe, m_varidx),
                MEMBER(Probe, m_init)};
    }
    static Rows rows() {
        return {MEMBER(Probe, m_value), MEMBER(Probe, m_min), MEMBER(Probe, m_max),
                MEMBER(Probe, m_default)};
    }
};

class String_model_probe : public String_model {
public:
    using Probe = String_model_probe;
    static Rows rows() { return {MEMBER(Probe, m_value), MEMBER(Probe, m_max_length)}; }
    static_assert(sizeof(m_value) == 257, "256 characters and the terminator");
};

TEST(MemberOrder, Models) {
    expect_ascending(Integer_model_probe::base_rows(), AFTER_TABLE);
    const Rows integer = Integer_model_probe::rows();
    expect_ascending(integer, static_cast<std::size_t>(integer[0].offset));
    EXPECT_GT(integer[0].offset, Integer_model_probe::base_rows().back().offset);
    const Rows text = String_model_probe::rows();
    expect_ascending(text, static_cast<std::size_t>(text[0].offset));
    EXPECT_GT(text[0].offset, Integer_model_probe::base_rows().back().offset);
}

class Entry_probe : public Data_entry {
public:
    using Probe = Entry_probe;
    static Rows rows() {
        return {
            MEMBER(Probe, m_index),         MEMBER(Probe, real_option_map),
            MEMBER(Probe, orOptions),       MEMBER(Probe, m_access),
            MEMBER(Probe, m_access_orig),   MEMBER(Probe, flag_access_changed),
            MEMBER(Probe, m_name),          MEMBER(Probe, m_description),
            MEMBER(Probe, m_pid),           MEMBER(Probe, m_shortcut),
            MEMBER(Probe, m_hs_shortcut),   MEMBER(Probe, m_visible),
            MEMBER(Probe, m_has_children),  MEMBER(Probe, m_entry_visible),
            MEMBER(Probe, cached_bind_vis), MEMBER(Probe, cached_option_vis),
            MEMBER(Probe, m_NodeLevel),     MEMBER(Probe, suggestion_updated),
            MEMBER(Probe, m_next),          MEMBER(Probe, m_previous),
            MEMBER(Probe, m_parent),        MEMBER(Probe, m_child),
            MEMBER(Probe, m_dynamic_child), MEMBER(Probe, m_dynamic_parent),
            MEMBER(Probe, m_dynamic_next),  MEMBER(Probe, m_dynamic_previous),
            MEMBER(Probe, m_data_mutex),    MEMBER(Probe, m_entry_mutex),
            MEMBER(Probe, binding),         MEMBER(Probe, bindRefreshIsLocked),
            MEMBER(Probe, shortcuts_map),   MEMBER(Probe, identification_string),
        };
    }
    static_assert(sizeof(m_name) == 25, "24 characters and the terminator");
    static_assert(sizeof(identification_string) == 128, "read by diagnostics of applications");
};

TEST(MemberOrder, DataEntry) {
    expect_ascending(Entry_probe::rows(), AFTER_TABLE);
}

TEST(MemberOrder, NodeEntryAddsNothing) {
    EXPECT_EQ(sizeof(Node_entry), sizeof(Data_entry));
}

// The first member of a derived class stands behind all of the base's.
void expect_derived(const Rows& rows, const Rows& base_rows) {
    expect_ascending(rows, static_cast<std::size_t>(rows[0].offset));
    EXPECT_GT(rows[0].offset, base_rows.back().offset);
}

class Range_probe : public Range_entry {
public:
    using Probe = Range_probe;
    static Rows rows() {
        return {
            MEMBER(Probe, m_model),
            MEMBER(Probe, min_max_mutex),
            MEMBER(Probe, m_active),
            MEMBER(Probe, m_min),
            MEMBER(Probe, m_max),
            MEMBER(Probe, m_min_from_constructor),
            MEMBER(Probe, m_max_from_constructor),
            MEMBER(Probe, m_final_value),
            MEMBER(Probe, display_format),
            MEMBER(Probe, display_value_format),
            MEMBER(Probe, m_scroll_offset),
            MEMBER(Probe, m_scroll_delay),
            MEMBER(Probe, valid_ranges_and_values),
            MEMBER(Probe, valid_ranges_and_values_ANDED),
            MEMBER(Probe, optionMinAndMaxProcessed),
            MEMBER(Probe, bindRange),
            MEMBER(Probe, optionRangeOutcome),
        };
    }
};

TEST(MemberOrder, RangeEntry) {
    expect_derived(Range_probe::rows(), Entry_probe::rows());
}

class Enum_probe : public Enum_entry {
public:
    using Probe = Enum_probe;
    static Rows rows() {
        return {
            MEMBER(Probe, m_value),
            MEMBER(Probe, m_size),
            MEMBER(Probe, m_size_enum),
            MEMBER(Probe, m_size_visible),
            MEMBER(Probe, m_model),
            MEMBER(Probe, map_enum_to_options),
            MEMBER(Probe, control_options),
            MEMBER(Probe, cached_binding_controls),
            MEMBER(Probe, m_active),
            MEMBER(Probe, m_min),
            MEMBER(Probe, m_max),
            MEMBER(Probe, m_min_enum),
            MEMBER(Probe, m_max_enum),
            MEMBER(Probe, max_map_size),
            MEMBER(Probe, m_scroll_offset),
            MEMBER(Probe, m_scroll_delay),
            MEMBER(Probe, m_webType),
            MEMBER(Probe, m_panelType),
            MEMBER(Probe, m_LiveDataProcessor),
        };
    }
};

class Slot_enum_probe : public Slot_enum_entry {
public:
    using Probe = Slot_enum_probe;
    static Rows rows() {
        return {MEMBER(Probe, m_IpEntry), MEMBER(Probe, string_model),
                MEMBER(Probe, string_entry_refresh)};
    }
};

TEST(MemberOrder, EnumEntries) {
    expect_derived(Enum_probe::rows(), Entry_probe::rows());
    expect_derived(Slot_enum_probe::rows(), Enum_probe::rows());
}

class String_probe : public String_entry {
public:
    using Probe = String_probe;
    static Rows rows() {
        return {MEMBER(Probe, m_model), MEMBER(Probe, m_active), MEMBER(Probe, m_scroll_offset),
                MEMBER(Probe, m_scroll_delay)};
    }
};

class Ip_probe : public Ip_entry {
public:
    using Probe = Ip_probe;
    static Rows rows() { return {MEMBER(Probe, connect_status_name)}; }
    static_assert(sizeof(connect_status_name) == 32, "handed out by Get_name");
};

TEST(MemberOrder, TextEntries) {
    expect_derived(String_probe::rows(), Entry_probe::rows());
    expect_derived(Ip_probe::rows(), String_probe::rows());
    EXPECT_EQ(sizeof(Time_entry), sizeof(String_entry));
}

class Link_probe : public Link_entry {
public:
    using Probe = Link_probe;
    static Rows rows() {
        return {
            MEMBER(Probe, link_name),
            MEMBER(Probe, link_entry),
            MEMBER(Probe, entry_type),
            MEMBER(Probe, redraw_teleport_destination),
            MEMBER(Probe, escape_teleport_destination),
            MEMBER(Probe, select_teleport_destination),
            MEMBER(Probe, link_behaviour),
            MEMBER(Probe, is_bridge_link),
            MEMBER(Probe, link_visible),
            MEMBER(Probe, is_mounting_link),
            MEMBER(Probe, create_mount_menu),
            MEMBER(Probe, destroy_mount_menu),
            MEMBER(Probe, is_homescreen_entry),
            MEMBER(Probe, vim),
            MEMBER(Probe, toggle_expression),
            MEMBER(Probe, homescreen_keys),
            MEMBER(Probe, next_link),
            MEMBER(Probe, previous_link),
            MEMBER(Probe, parent_link),
            MEMBER(Probe, child_link),
            MEMBER(Probe, valid_next_link),
            MEMBER(Probe, valid_previous_link),
            MEMBER(Probe, valid_parent_link),
            MEMBER(Probe, valid_child_link),
        };
    }
    static_assert(sizeof(link_name) == 25, "24 characters and the terminator");
};

TEST(MemberOrder, LinkEntry) {
    expect_derived(Link_probe::rows(), Entry_probe::rows());
}

}  // namespace
