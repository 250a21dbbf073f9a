// The type dispatcher: one table lists the steps, the order in which they run, and the types that perform them.
// A new type adds its bit to rows, or adds rows of its own.
#include <cstdint>
#include <cstdio>
#include <iterator>

#include <frontpanel_data/entry.h>
#include <frontpanel_data/link_entry.h>
#include <frontpanel_data/selection.h>

#include "../diagnostics.h"

namespace {

using Entry = Data_entry;

// String entries of this parameter are warning texts, shown in the warning editor.
constexpr unsigned int WARNING_TEXT_PID = 65549;

constexpr unsigned int type_bit(Entry::Entry_type type) {
    return 1u << static_cast<unsigned int>(type);
}

constexpr unsigned int NODE = type_bit(Entry::NODE);
constexpr unsigned int RANGE = type_bit(Entry::RANGE_LEAF);
constexpr unsigned int ENUM = type_bit(Entry::ENUM_LEAF) | type_bit(Entry::SLOT_ENUM);
constexpr unsigned int STRING_TEXT = type_bit(Entry::STRING_LEAF);
constexpr unsigned int IP = type_bit(Entry::IP_LEAF);
constexpr unsigned int TIME = type_bit(Entry::TIME_LEAF);
constexpr unsigned int LINK = type_bit(Entry::LINK_ENTRY);
constexpr unsigned int LEAVES = RANGE | ENUM | STRING_TEXT | IP | TIME;
constexpr unsigned int ALL_BUT_LINKS = NODE | LEAVES;
constexpr unsigned int ALL = ALL_BUT_LINKS | LINK;
constexpr unsigned int WITH_DYNAMIC_SIBLINGS = ALL_BUT_LINKS & ~TIME;

struct Call {
    Entry* entry;
    Data_interface* iface;
    Selection* selection;
    bool eval_binding;
    int flags;
    void** link;  // `flag_specific`
    int result;
};

// A step returns false to end the operation.
using Action = bool (*)(Call&);

struct Step {
    int bits;            // asked for by any of these
    unsigned int types;  // performed by these
    Action perform;
};

bool refresh(Call& call) {
    if (call.entry->Get_entry_type() == Entry::IP_LEAF) {
        LEAF_LINE(GENERAL, FILE_FIRST, "EntryTypeSpecificOperation", "Not in Refresh yet [%s]\n",
                  call.entry->Get_name());
    }
    LEAF_LINE(REFRESH, FILE_FIRST, "EntryTypeSpecificOperation", "Refresh [%s]\n",
              call.entry->Get_name());
    if (call.iface == nullptr) {
        call.result = -1;
        return false;
    }
    call.result = call.entry->Refresh(call.iface, call.eval_binding);
    return true;
}

// Null for an entry of another class that gives itself out as a link: it is treated by its base alone.
Link_entry* link_of(Entry& entry) {
    return dynamic_cast<Link_entry*>(&entry);
}

// The link's own steps follow, so that a neighbour that is delivered is the link's.
bool operate_on_housed(Call& call) {
    Link_entry* const link = link_of(*call.entry);
    if (link == nullptr) {
        return refresh(call);
    }
    call.result =
        Entry::EntryTypeSpecificOperation(link->Get_housed_entry(), call.iface, call.selection,
                                          call.eval_binding, call.flags, call.link);
    if (call.iface == nullptr) {
        call.result = -1;  // also when it houses an entry whose type performs nothing
        return false;
    }
    return true;
}

template <Entry* (Entry::*neighbour)() const>
bool deliver(Call& call) {
    if (call.link != nullptr) {
        *call.link = (call.entry->*neighbour)();
    }
    return true;
}

template <Entry* (Entry::*neighbour)() const, Entry* (Entry::*dynamic_neighbour)()>
bool deliver_sibling(Call& call) {
    if (call.link != nullptr) {
        const bool dynamic = (call.flags & Entry::OPERATION_DYNAMIC) != 0;
        *call.link = dynamic ? (call.entry->*dynamic_neighbour)() : (call.entry->*neighbour)();
    }
    return true;
}

template <Entry* (Link_entry::*own)(), Entry* (Entry::*otherwise)() const>
bool deliver_own(Call& call) {
    if (call.link != nullptr) {
        Link_entry* const link = link_of(*call.entry);
        *call.link = link != nullptr ? (link->*own)() : (call.entry->*otherwise)();
    }
    return true;
}

template <Entry* (Entry::*set_link)(Entry*)>
bool relink(Call& call) {
    if (call.link != nullptr) {
        (call.entry->*set_link)(static_cast<Entry*>(*call.link));
    }
    return true;
}

template <class... Editors>
bool is_any_of(const Selection* editor) {
    return (... || (dynamic_cast<const Editors*>(editor) != nullptr));
}

// Whether an editor was handed in that is made for the entry's type. A text's is the warning editor as well,
// since warning texts are texts.
bool has_editor(const Call& call) {
    switch (call.entry->Get_entry_type()) {
        case Entry::RANGE_LEAF:
            return is_any_of<NumericRangeSelection>(call.selection);
        case Entry::ENUM_LEAF:
        case Entry::SLOT_ENUM:
            return is_any_of<EnumSelection>(call.selection);
        case Entry::STRING_LEAF:
            return is_any_of<StringSelection, WarnSelection>(call.selection);
        case Entry::IP_LEAF:
            return is_any_of<IPv4Selection>(call.selection);
        case Entry::TIME_LEAF:
            return is_any_of<TimeSelection>(call.selection);
        default:
            return false;
    }
}

bool escape(Call& call) {
    if (call.link != nullptr && has_editor(call)) {
        *call.link = call.selection->Escape() ? call.entry->Get_parent() : call.entry;
    }
    return true;
}

template <void (Selection::*pass)(Entry*)>
bool pass_entry(Call& call) {
    if (call.link != nullptr && has_editor(call)) {
        (call.selection->*pass)(static_cast<Entry*>(*call.link));
    }
    return true;
}

// An editor made for another type than the entry's is no editor for it.
template <class Editor, class Member, class... Arguments>
bool tell(Call& call, Member member, Arguments... arguments) {
    if (Editor* const editor = dynamic_cast<Editor*>(call.selection)) {
        (editor->*member)(arguments...);
    }
    return true;
}

template <class Editor>
bool prepare(Call& call) {
    return tell<Editor>(call, &Editor::Prepare, call.entry);
}

bool prepare_text(Call& call) {
    return call.entry->Get_pid() == WARNING_TEXT_PID ? prepare<WarnSelection>(call)
                                                     : prepare<StringSelection>(call);
}

bool exit_leds(Call& call) {
    if (has_editor(call)) {
        call.selection->ExitLEDs();
    }
    return true;
}

template <void (NumericRangeSelection::*operation)()>
bool tell_number_editor(Call& call) {
    return tell<NumericRangeSelection>(call, operation);
}

template <class Value, void (EnumSelection::*operation)(Value)>
bool pass_value(Call& call) {
    if (call.link == nullptr || *call.link == nullptr) {
        return true;
    }
    return tell<EnumSelection>(call, operation, *static_cast<const Value*>(*call.link));
}

bool pass_line_info(Call& call) {
    if (call.link == nullptr || *call.link == nullptr) {
        return true;
    }
    const unsigned char flag = *static_cast<const unsigned char*>(*call.link);
    return tell<EnumSelection>(call, &EnumSelection::Set_use_line_info, flag != 0);
}

// Rows run from top to bottom, whatever the value of their bits. The editor opens last, so that one call can
// refresh an entry, prepare its editor and open it.
constexpr Step STEPS[] = {
    {Entry::OPERATION_REFRESH, ALL_BUT_LINKS, refresh},
    {Entry::OPERATION_REFRESH, LINK, operate_on_housed},
    {Entry::OPERATION_PARENT | Entry::OPERATION_PARENT_LINK, ALL_BUT_LINKS,
     deliver<&Entry::Get_parent>},
    // For links the plain and the link form differ: the plain one leaves and enters mounted menus.
    {Entry::OPERATION_PARENT, LINK, deliver_own<&Link_entry::Get_parent, &Entry::Get_parent>},
    {Entry::OPERATION_PARENT_LINK, LINK,
     deliver_own<&Link_entry::Get_parent_link, &Entry::Get_parent>},
    {Entry::OPERATION_CHILD | Entry::OPERATION_CHILD_LINK, ALL_BUT_LINKS,
     deliver<&Entry::Get_child>},
    {Entry::OPERATION_CHILD, LINK, deliver_own<&Link_entry::Get_child, &Entry::Get_child>},
    {Entry::OPERATION_CHILD_LINK, LINK,
     deliver_own<&Link_entry::Get_child_link, &Entry::Get_child>},
    {Entry::OPERATION_PREVIOUS, WITH_DYNAMIC_SIBLINGS,
     deliver_sibling<&Entry::Get_previous, &Entry::Get_dynamic_previous>},
    {Entry::OPERATION_PREVIOUS, TIME, deliver<&Entry::Get_previous>},
    {Entry::OPERATION_PREVIOUS, LINK, deliver_own<&Link_entry::Get_previous, &Entry::Get_previous>},
    {Entry::OPERATION_NEXT, WITH_DYNAMIC_SIBLINGS,
     deliver_sibling<&Entry::Get_next, &Entry::Get_dynamic_next>},
    {Entry::OPERATION_NEXT, TIME, deliver<&Entry::Get_next>},
    {Entry::OPERATION_NEXT, LINK, deliver_own<&Link_entry::Get_next, &Entry::Get_next>},
    {Entry::OPERATION_SET_PARENT, ALL, relink<&Entry::Set_parent>},
    {Entry::OPERATION_SET_CHILD, ALL, relink<&Entry::Set_child>},
    {Entry::OPERATION_EXIT_LEDS, RANGE | STRING_TEXT | IP, exit_leds},
    {Entry::OPERATION_ESCAPE, LEAVES, escape},
    {Entry::OPERATION_SET_ESCAPE_ENTRY, LEAVES, pass_entry<&Selection::Set_escape_entry>},
    {Entry::OPERATION_SET_SELECT_ENTRY, LEAVES, pass_entry<&Selection::Set_select_entry>},
    {Entry::OPERATION_COARSER_STEP, RANGE,
     tell_number_editor<&NumericRangeSelection::Coarser_step>},
    {Entry::OPERATION_FINER_STEP, RANGE, tell_number_editor<&NumericRangeSelection::Finer_step>},
    {Entry::OPERATION_SET_USE_LINE_INFO, ENUM, pass_line_info},
    {Entry::OPERATION_SET_SELECTED, ENUM, pass_value<int32_t, &EnumSelection::Set_selected>},
    {Entry::OPERATION_SET_SELECTED_LINE, ENUM,
     pass_value<int32_t, &EnumSelection::Set_selected_line>},
    {Entry::OPERATION_PREPARE, RANGE, prepare<NumericRangeSelection>},
    {Entry::OPERATION_PREPARE, ENUM, prepare<EnumSelection>},
    {Entry::OPERATION_PREPARE, STRING_TEXT, prepare_text},
    {Entry::OPERATION_PREPARE, IP, prepare<IPv4Selection>},
    {Entry::OPERATION_PREPARE, TIME, prepare<TimeSelection>},
};

// For a single bit of `flags` the row of each type is found at once. Several bits are rare, and their rows run in the
// order of the table.
constexpr std::size_t BITS = 23;
constexpr std::size_t TYPES = 8;
constexpr uint8_t NO_ROW = 0xFF;
static_assert(std::size(STEPS) < NO_ROW, "a row has a number");

struct Rows {
    uint8_t of[BITS][TYPES];
    bool is_unique;  // no type has two rows for one bit
};

constexpr Rows rows_by_bit() {
    Rows rows = {};
    rows.is_unique = true;
    for (std::size_t bit = 0; bit < BITS; ++bit) {
        for (std::size_t type = 0; type < TYPES; ++type) {
            rows.of[bit][type] = NO_ROW;
            for (std::size_t row = 0; row < std::size(STEPS); ++row) {
                if ((STEPS[row].bits & (1 << bit)) != 0 && (STEPS[row].types & (1u << type)) != 0) {
                    rows.is_unique = rows.is_unique && rows.of[bit][type] == NO_ROW;
                    rows.of[bit][type] = static_cast<uint8_t>(row);
                }
            }
        }
    }
    return rows;
}

constexpr Rows ROWS = rows_by_bit();
static_assert(ROWS.is_unique, "a single bit has one step");
static_assert(Entry::OPERATION_DYNAMIC == 1 << (BITS - 1), "the highest bit");

bool is_single_bit(int flags) {
    return flags > 0 && (flags & (flags - 1)) == 0;
}

void perform_one(Call& call, Entry::Entry_type type) {
    const auto bit = static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned int>(call.flags)));
    const uint8_t row = bit < BITS ? ROWS.of[bit][type] : NO_ROW;
    if (row != NO_ROW) {
        STEPS[row].perform(call);
    }
}

void perform_all(Call& call, Entry::Entry_type type) {
    for (const Step& step : STEPS) {
        if ((call.flags & step.bits) == 0 || (type_bit(type) & step.types) == 0) {
            continue;
        }
        if (!step.perform(call)) {
            return;
        }
    }
}

bool is_handled(int type) {
    return type >= Entry::NODE && type <= Entry::LINK_ENTRY;
}

}  // namespace

int Data_entry::EntryTypeSpecificOperation(Data_entry* data_entry, Data_interface* m_pDataAccessInf,
                                           void* specific_selection_obj, bool eval_binding,
                                           int flags, void** flag_specific) {
    if (data_entry == nullptr) {
        return -1;
    }
    const Entry_type type = data_entry->Get_entry_type();
    LEAF_LINE(DISPATCH, FILE_FIRST, "EntryTypeSpecificOperation",
              "Entry[%s] type[%d] m_pDataAccessInf[%p] specific_selection_obj[%p] flags[%d]\n",
              data_entry->Get_name(), static_cast<int>(type), static_cast<void*>(m_pDataAccessInf),
              specific_selection_obj, flags);
    if (!is_handled(type)) {
        std::fprintf(stderr, "Refresher::Refresh, unhandled type %i\n", static_cast<int>(type));
        return 0;
    }
    Call call = {data_entry,
                 m_pDataAccessInf,
                 static_cast<Selection*>(specific_selection_obj),
                 eval_binding,
                 flags,
                 flag_specific,
                 0};
    is_single_bit(flags) ? perform_one(call, type) : perform_all(call, type);
    return call.result;
}
