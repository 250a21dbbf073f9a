// Everything that depends on the kind of an entry, in one table: menu files, lists, editing and reports use its rows
// instead of the entry's type. CONTRIBUTING.md has the steps to add a kind.
#ifndef FRONTPANEL_MENU_ENTRY_KIND_H
#define FRONTPANEL_MENU_ENTRY_KIND_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/value_editor.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace frontpanel {

class Json_value;
struct Load_context;
struct Spot;

struct Entry_kind {
    enum Trait : unsigned int {
        NONE = 0,
        HAS_OWN_MEMBERS = 0x1,  // its items have only `members`, and those that every item has
        IS_BRIDGED = 0x2,       // a bridge may own its items
        HAS_VALUE = 0x4,        // which can be shown and written: rules may warn of it, or lock it
        IS_NUMBER = 0x8,        // between limits, which rules may narrow
        HAS_KEYS = 0x10,        // of options, which rules may leave out
        IS_FETCHED = 0x20,      // its options come from a card, not its value from the device
        HAS_LINES = 0x40,       // each of its options has a line of its own
        IS_TYPED = 0x80,        // the erase key removes a character of its value
        IS_PROBED = 0x100       // its value is an address that can be asked for an answer
    };

    // "type" of an item in a menu file; null for a kind that follows from the item's members.
    const char* name;
    // The library's type of its entries, and a test for those entries; null: all that no row above has.
    Data_entry::Entry_type type;
    bool (*is_one)(const Data_entry& entry);
    unsigned int traits;

    // The members of its items, beside those that every item has; see file/item_members.h.
    std::vector<const char*> members;
    // The members of "editor" of its items; none when its value is not edited.
    std::vector<const char*> editor_members;
    // Builds an item at its place in the menu. Placed_error, or Told_already, when that is not possible.
    void (*build)(Load_context& context, const Json_value& item, const Spot& spot);

    // The value as `shown_value` returns it.
    std::optional<std::string> (*display)(Data_entry& entry);
    // Writes the value as `commit` does.
    int (*commit)(Data_entry& entry, Data_interface& device);
    // A new editor of its values, which is also a `Selection`; null for a kind without editor.
    std::unique_ptr<Value_editor> (*make_editor)();

    bool has(Trait trait) const { return (traits & trait) != 0; }
};

// In the order in which a menu file's messages list them.
const std::vector<Entry_kind>& entry_kinds();
// The row of an entry; of a link, that of links: see `housed`. An entry of a type that menu files do not have is one
// without value.
const Entry_kind& kind_of(const Data_entry& entry);

}  // namespace frontpanel

#endif
