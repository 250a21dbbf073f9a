// A menu leaf whose options are the slots of the card frame: option i, counted from 1, is the line of slot i,
// with its number, the product that is fitted there and, near the panel's current line, the product's alias.
// With an address entry it shows and commits that entry's address instead. Driven by the menu thread.
#ifndef FRONTPANEL_DATA_SLOT_ENUM_ENTRY_H
#define FRONTPANEL_DATA_SLOT_ENUM_ENTRY_H

#include <string>

#include <frontpanel_data/data_model.h>
#include <frontpanel_data/enum_entry.h>
#include <frontpanel_data/export.h>

class Ip_entry;
struct valdef_value_t;  // the application's

// `Refresh` with line information and the display without a position are operations beside the inherited ones
// of the same names, on purpose: a caller that holds the base gets the base's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Slot_enum_entry : public Enum_entry {
public:
    // As `Enum_entry`, without live data. `enum_array` holds `enum_size` writable texts of at least 31 bytes
    // each, which refreshes rewrite in place. Slots beyond 15 keep their texts. `pIpEntry` may be null, is
    // not owned and must outlive the entry. `val_array` and `value_mask` are not used.
    Slot_enum_entry(const char* name, const char* description, unsigned int pid,
                    const Index_t* index, int min, int max, int default_value,
                    valdef_value_t* val_array, char** enum_array, unsigned int enum_size,
                    Ip_entry* pIpEntry, Data_entry* parent, Data_access access, int* value_mask,
                    int visible, bool active, int shortcut, Data_entry* next, Data_entry* previous,
                    Data_entry* child);
    ~Slot_enum_entry() override;

    // The base's line only.
    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    // Without an address entry, as `Enum_entry`. With one, its address as `Ip_entry::Get_display_string`
    // shows it. What `Commit` writes is remembered here: the address from its start, cut to `length`
    // characters, so a line that is too short for it commits a cut address. `buffer` holds `length` + 1 bytes,
    // and neither argument may be null or 0 (asserted).
    int Get_display_string(char* buffer, unsigned int length) override;
    // As below, with the panel at the top of the list.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // With an address entry and any pid but 65544, writes the address that was last shown, as far as it was
    // shown, to this entry's parameter; before the first display, an empty text. That refreshes no dependants.
    // Otherwise commits the selected slot as `Enum_entry` does. Returns the result of the write.
    int Commit(Data_interface* pDataAccessInf) override;

    // The order of the virtual operations below is a binary contract: never insert, remove or reorder.

    // Reads the selected slot and the list of products, and rewrites the line of every slot: "3:NAME", or "5"
    // for an empty slot, with blanks up to 29 characters. The slots from `selected` - `selected_line` + 1 to
    // `selected` + `selected_line` + 4 also show their product's alias, ending at the 29th character; one
    // that is too long for its place is cut. `use_line_info` is not used. The address entry is refreshed
    // once, and again after an address has been committed.
    //
    // The parameter's variable index is the socket (card) that is read. If the interface is a
    // `Pdt_data_access`, that socket is selected meanwhile; on the local socket (0), while a local selection
    // is in force, it stays selected, and 0 is returned without reading the list. Otherwise returns the
    // result of reading the list; when that is not 0 the lines are as before.
    virtual int Refresh(Data_interface* pDataAccessInf, bool eval_binding, int selected,
                        int selected_line, bool use_line_info);
    virtual Ip_entry* Get_ip_entry();
    // Resets the line of every slot to its bare number. Returns 0.
    virtual int ClearMenu();

protected:
    Ip_entry* m_IpEntry;        // not owned
    String_model string_model;  // the address to commit
    bool string_entry_refresh;  // the address entry has been refreshed

private:
    FRONTPANEL_DATA_LOCAL void refresh_address(Data_interface* pDataAccessInf, bool eval_binding);
    FRONTPANEL_DATA_LOCAL int refresh_lines(Data_interface& iface, bool remote, int selected,
                                            int selected_line);
    FRONTPANEL_DATA_LOCAL int slot_count() const;
};

#pragma GCC diagnostic pop

#endif
