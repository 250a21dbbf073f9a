// A menu leaf for a parameter that takes one of a list of named options.
//
// The device stores an option's key, its index in the list of option texts. The user sees only the options
// that product options and the entry's binding allow, numbered from 0 in key order: their visible positions.
// The texts may come from a slot card at run time ("live data"). Driven by the menu thread.
#ifndef FRONTPANEL_DATA_ENUM_ENTRY_H
#define FRONTPANEL_DATA_ENUM_ENTRY_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <frontpanel_data/data_model.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/export.h>

class Live_Data_Processor;

// A list of option keys.
typedef std::vector<int> ControlsT;

// `Commit` and the display and value operations with a position do not override the base's of the same names,
// on purpose: a caller that holds the base gets the base's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Enum_entry : public Data_entry {
public:
    // `enum_array` holds `enum_size` texts; neither it nor its first text may be null. It is not copied, is
    // never freed and must outlive its use. `min` and `max` are the smallest and the largest allowed key,
    // with 0 <= min <= default_value <= enum_size and max <= enum_size. All of this is asserted.
    //
    // Live data needs a pid of 9000 to 9100, a web type ("json-dynamic-combobox" or "jsontree"), a panel
    // type ("list") and a processor. The types and the processor may be null, are not owned and must outlive
    // the entry.
    Enum_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
               int min, int max, int default_value, char** enum_array, unsigned int enum_size,
               Data_entry* parent, Data_access access, int visible, bool active, int shortcut,
               Data_entry* next, Data_entry* previous, Data_entry* child, char* wType, char* pType,
               Live_Data_Processor* liveDataProcessor);
    // Frees no text and not the list, whichever way they came.
    ~Enum_entry() override;

    // The base's line followed by every key with its text and its control options. Keys without control
    // options get an empty list of them, which does not change what is visible.
    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    bool Is_active() const override;
    // The text of the current option, as the operation with a position shows it.
    int Get_display_string(char* buffer, unsigned int length) override;
    // Delivers the visible position of the current option, or `Get_min()` when it is hidden or the position
    // is outside `Get_min()` to `Get_max()`, which are keys. At most 4 bytes are written; neither argument may
    // be null or 0 (asserted). Returns 0.
    int Get_value(void* value, unsigned int length) override;
    // Selects the option at a visible position, an int of which at most 4 bytes are read. Nothing is sent to
    // the device. 1, and the selection is as before, when there is no such position, the binding warns of
    // it, or the parameter is live data that was read-only at construction.
    int Set_value(const void* value, unsigned int length) override;
    // Reads the key from the device, or every eleventh time the options of live data from the card, then
    // applies the binding; `eval_binding` has it evaluate its expressions first. A hidden current option is
    // replaced by the one at position `Get_min()`, which is committed, if there is one and its key is allowed.
    // A key that the map of positions lacks is added to it with position 0, allowed or not, unless it is
    // negative. 0, or the error of the read. A failed fetch is no error and leaves the options as they are.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // Moves the selection by `value` visible positions; `position` is not used. Returns 0. -1, and the
    // selection is as before, when no option is visible there: stepping does not wrap.
    int Inc_value(int value, int position) override;
    // Installs another list of `size` texts, which stays the caller's, and makes `size` - 1 the largest
    // position and key of the model. The number of keys stays: a key beyond the list shows as "-". Texts
    // that came from a card are freed.
    void Update_value(char** enum_array, int size) override;
    // The smallest and the largest allowed key. `Get_value`, the display with a position and `Refresh` compare
    // visible positions with these keys, on purpose: with a smallest key above 0, a lower position counts as
    // `Get_min()`.
    int Get_min() const override;
    int Get_max() const override;

    // The order of the virtual operations below is a binary contract: never insert, remove or reorder.

    // Writes the text of the option at a visible position, or of the current option with `index` -1, to
    // `buffer`, which holds `length` + 1 bytes and must not be null (asserted). Returns 0. 1, and "-" as
    // text, when there is no such option, its key is `Get_size()` or more, or it has no text; 1, and nothing
    // written, for a `length` below 2.
    //
    // A text of fewer than `length` characters is copied. A longer one is cut to `length` and scrolls: every
    // call shows the next position, at first without a pause. For two calls after every full turn only its
    // first `length` - 1 characters are written, position `length` - 1 keeps what it held, and the
    // terminator stands at `length`. All texts of the entry share one scroll state.
    virtual int Get_display_string(char* buffer, unsigned int length, int index);
    // Works out anew which options are visible. The application calls it after `Set_control_options` and
    // after a refresh whose binding updated the allowed keys. Returns 0.
    virtual int updateControlOptionMap();
    // The keys that have a control option which holds, in ascending order.
    virtual ControlsT optionControls();
    // The keys that the binding last allowed; a new suggestion is consumed. The binding is asked for them
    // under SUGGESTION_RANGE, see `Suggestion_kind`. `use_binding` receives whether it can suggest keys at all.
    virtual ControlsT bindingControls(bool& use_binding);
    // The keys in all of the lists that are used, in ascending order; none when neither is used.
    virtual ControlsT commonControls(std::vector<int> op, bool use_op, std::vector<int> bind,
                                     bool use_bind);
    // Writes the selected key to the device, or posts it to the card for live data, then refreshes every
    // entry whose binding depends on it. Returns the result of the write: 0, ERROR, or for live data the
    // status of writing the document to post (the post itself is not reported). Live data that was read-only
    // at construction is not written. Before and after each dependant a line that ends in "here 14" goes to
    // standard output, whatever `debug` holds. A parameter that the binding's map lacks is added to it with an
    // empty record.
    virtual int Commit(Data_interface* pDataAccessInf);
    // Null when the entry has no live data.
    virtual Live_Data_Processor* GetLiveDataProcessor();
    // The current key.
    virtual int Get_integer();
    // Delivers the key of a visible position; one outside `Get_min()` to `Get_max()`, which are keys, counts as
    // `Get_min()`. Returns 0. 1, and nothing is delivered, when no allowed key has that position; the option at
    // position `Get_min()` is then selected, if there is one and its key is allowed.
    virtual int Get_value(void* value, unsigned int length, int index);

    // Installs the control options: for a key, product options one of which must hold. A key without options
    // is hidden as long as another key is shown or the binding offers keys.
    void Set_control_options(std::map<int, std::vector<std::string>> options);
    // 0 for "json-dynamic-combobox", 1 for "jsontree", -1 for anything else.
    int getWebTypeAsInt() const;
    // 0 for "list", -1 for anything else.
    int getPanelTypeAsInt() const;
    // The number of visible options.
    int Get_size() const { return m_size; }
    // Store the smallest and the largest visible position and the number of visible options, until the
    // visible options are next worked out.
    void Set_min(int min) { m_min = min; }
    void Set_max(int max) { m_max = max; }
    void Set_size(int size) { m_size = size; }
    // The smallest and the largest allowed key, and the number of all keys.
    int Get_min_enum() const { return m_min_enum; }
    int Get_max_enum() const { return m_max_enum; }
    int Get_size_enum() const { return m_size_enum; }
    // The current key.
    int Get_integer_enum();
    // The first key whose position in `map` is `value`, -1 (hidden) included; -1 when there is none.
    int valueToKey(const std::map<int, int>& map, int value);
    // The smallest and the largest visible position and the number of visible options. When all options are
    // hidden, the largest `int`, 0 and 0. Returns 0.
    int minMaxSize(int* min, int* max, int* size);
    // The depth of the entry in the menu.
    unsigned int Get_menu_level();
    // Delivers the current key, or the smallest allowed one when the stored key is not allowed. At most 4
    // bytes are written; neither argument may be null or 0 (asserted). A key that the map of positions lacks
    // is added to it with position 0. Returns 0.
    int Get_key_enum(void* value, unsigned int length);

protected:
    // The text of a key; null when there is none.
    char* option_text(int key) const;

    char** m_value;   // the texts by key
    int m_size;       // visible options
    int m_size_enum;  // all keys
    int m_size_visible;
    FRONTPANEL_DATA_IN_GAP(int m_text_count = 0)  // texts in `m_value`
    Integer_model m_model;                        // the stored key
    std::map<int, int> map_enum_to_options;       // key to visible position, -1 when hidden
    std::map<int, std::vector<std::string>> control_options;
    ControlsT cached_binding_controls;  // the keys that the binding last allowed
    bool m_active;

private:
    bool m_owns_texts = false;           // `m_value` came from a card
    bool m_reported_lists_only = false;  // `control_options` was empty until a report filled it
protected:
    int m_min;  // smallest and largest visible position
    int m_max;
    int m_min_enum;  // smallest and largest allowed key
    int m_max_enum;
    int max_map_size;  // visible options counted while the map is built
    unsigned int m_scroll_offset;
    unsigned int m_scroll_delay;
    char* m_webType;
    char* m_panelType;
    Live_Data_Processor* m_LiveDataProcessor;  // not owned
    // Refreshes of live data since the last fetch, one count for all entries of the process.
    static uint32_t dynamic_counter;

private:
    FRONTPANEL_DATA_LOCAL bool is_option(int key) const;
    FRONTPANEL_DATA_LOCAL int current_selection();
    FRONTPANEL_DATA_LOCAL int position_of_stored(int key);
    FRONTPANEL_DATA_LOCAL int refresh_entry(Data_interface* pDataAccessInf, bool eval_binding);
    FRONTPANEL_DATA_LOCAL void leave_hidden_option(Data_interface* pDataAccessInf);
    FRONTPANEL_DATA_LOCAL bool is_live_data() const;
    FRONTPANEL_DATA_LOCAL bool is_locked_live_data() const;
    FRONTPANEL_DATA_LOCAL void refresh_live_data();
    FRONTPANEL_DATA_LOCAL void fetch_live_data(int web_type, int panel_type);
    FRONTPANEL_DATA_LOCAL void adopt_live_data(char** texts, int size, int selection);
    FRONTPANEL_DATA_LOCAL int commit_live_data();
    FRONTPANEL_DATA_LOCAL void free_owned_texts();
    FRONTPANEL_DATA_LOCAL bool has_control_options() const;
    FRONTPANEL_DATA_LOCAL bool is_key_shown(int key, const std::vector<std::string>& options);
    FRONTPANEL_DATA_LOCAL void show_all_options();
    FRONTPANEL_DATA_LOCAL void number_options(const ControlsT& common, bool all_visible);
    FRONTPANEL_DATA_LOCAL void index_positions();
    FRONTPANEL_DATA_LOCAL int first_key_at(int position);

    struct Keys_by_position;

    FRONTPANEL_DATA_WITHOUT_GAP(int m_text_count = 0)
    // Of `map_enum_to_options` while it is large.
    std::unique_ptr<Keys_by_position> m_keys_by_position;
};

#pragma GCC diagnostic pop

#endif
