// The base of every menu entry, and the submenu node.
//
// An entry has a name, the parameter it is bound to, its access right and visibility, its place in the
// static menu tree and in a second, dynamic tree, and a binding engine that drives it. Entries do not own
// their tree neighbours, their index or the shortcut table; they own a copy of their description and their
// binding. All operations run on the menu thread; only the static child list is guarded by a mutex.
#ifndef FRONTPANEL_DATA_ENTRY_H
#define FRONTPANEL_DATA_ENTRY_H

#include <pthread.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/export.h>

class Binding;
class Data_entry;
class EntryModelCache;

// How the product options classify an option name.
struct is_static_value_s {
    int32_t isStatic;   // 1 static option, 0 dynamic option, -1 not decided
    int32_t realValue;  // the value that the product options give the option
    int32_t
        dynamicValue;  // the number in place of the "n" of a dynamic option, else the real value
};
typedef is_static_value_s is_static_value_t;

// One row of the application's table of shortcut buttons.
struct ShortcutS {
    int32_t shortcut_button_num;
    Data_entry* entry;   // where the button jumps to; null when the button is not assigned
    bool dynamic_entry;  // the entry belongs to the dynamic tree
};

// The cached values of parameters by their key. The record is declared in binding.h.
typedef std::map<var_index_s, EntryModelCache, cmp_var_index_t> var_index_map_t;
// A compiled list of binding expressions, opaque to the library.
typedef std::vector<int> BindingListT;

// Entries whose display needs more than a buffer hide the base's display and commit operations on purpose:
// a caller that holds the base gets the base's answer.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Data_entry {
public:
    enum Entry_type {
        INVALID_ENTRY_TYPE = -1,
        NODE = 0,
        RANGE_LEAF = 1,
        ENUM_LEAF = 2,
        STRING_LEAF = 3,
        IP_LEAF = 4,
        TIME_LEAF = 5,
        SLOT_ENUM = 6,
        LINK_ENTRY = 7,
        PANEL_HS = 8
    };
    enum Data_access { READ_ONLY = 0, READ_WRITE = 1, WRITE_ONLY = 2 };
    enum Return_code { OK = 0, ERROR = 1, INVALID = 2, OUT_OF_RANGE = 3 };

    static constexpr uint32_t PID_NONE = 0xFFFFFFFF;  // bound to no parameter
    static constexpr int32_t SHORTCUT_NONE = -1;
    static constexpr int32_t VISIBLE_NONE = -1;  // in the tree, never shown
    static constexpr int32_t VISIBLE_ALL = 1;

    // Stores the arguments; `name` up to its first ':' and at most 24 characters, `description` as a copy.
    // `index` must outlive the entry. With `visible` 0 or more, name, description and index must not be null
    // (asserted). With `visible` 1 or -1 and a parent the entry becomes the parent's last child; with any
    // other `visible` it only remembers its parent.
    Data_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
               int visible, int shortcut, Data_entry* next, Data_entry* previous,
               Data_entry* parent, Data_entry* child);
    // Frees the description and the binding. The entry must have been removed from the tree: neighbours and
    // children are left as they are.
    virtual ~Data_entry();
    Data_entry(const Data_entry&) = delete;
    Data_entry& operator=(const Data_entry&) = delete;

    // The order of the virtual operations below is a binary contract: never insert, remove or reorder.

    // One line that describes the entry; with bit 0x8 of `flags` only its name and a blank. The report of a
    // range entry consumes the binding's range suggestion.
    virtual std::string getProperties(int flags);

    // The static tree; null where there is none.
    virtual Data_entry* Get_next() const;
    virtual Data_entry* Get_previous() const;
    virtual Data_entry* Get_parent() const;
    virtual Data_entry* Get_child() const;
    // The dynamic tree; null where there is none.
    virtual Data_entry* Get_dynamic_parent();
    virtual Data_entry* Get_dynamic_child();
    virtual Data_entry* Get_dynamic_next();
    virtual Data_entry* Get_dynamic_previous();

    virtual Entry_type Get_entry_type() const = 0;
    virtual bool Is_node_entry() const;

    virtual Data_access Get_access_type() const;
    // The access right before a binding changed it.
    virtual Data_access Get_orig_access_type() const;
    virtual bool Get_flag_access_type_chg() const;
    // Once true, `Set_access_type` leaves the original access right alone.
    virtual void Set_flag_access_type_chg(bool changed);
    virtual void Set_access_type(Data_access access);
    virtual RETURN_TYPE Get_return_type_int_or_string() const = 0;

    // Store a link without touching the neighbour's; return the previous value.
    virtual Data_entry* Set_parent(Data_entry* parent);
    virtual Data_entry* Set_child(Data_entry* child);
    virtual Data_entry* Set_next(Data_entry* next);
    virtual Data_entry* Set_previous(Data_entry* previous);
    virtual void Set_dynamic_parent(Data_entry* parent);
    virtual void Set_dynamic_child(Data_entry* child);
    virtual void Set_dynamic_next(Data_entry* next);
    virtual void Set_dynamic_previous(Data_entry* previous);

    // Makes `child` the last child of this entry; a child that it is already moves to the end. Returns 0.
    // Requires: `child` is another entry (asserted) and in no other entry's child list. A child of another
    // parent is removed there first, or that parent's list ends at the child and loses those behind it; a
    // build without NDEBUG asserts, for which the parent that the child remembers must exist.
    //
    // A `Link_entry` as `child` joins the list, but answers for its neighbours by what its own setters stored,
    // or by the entry it houses: `Set_parent`, `Set_next` and `Set_previous` give it its place.
    virtual int Add_child(Data_entry& child);
    // Makes this entry the last child of `parent`, which must be another entry (asserted), with the
    // requirements of `Add_child`. Returns what the parent's `Add_child` returns. Of a link, the entry that it
    // houses is attached.
    virtual int Attach(Data_entry& parent);
    // Takes a child out of the child list. Its parent becomes null; its own sibling links stay, so that a
    // walk that has reached it can go on. 0, also when it is no child of this entry; -1 for null.
    virtual int Remove(Data_entry* child);

    virtual bool Is_active() const;
    virtual const char* Get_name() const;
    virtual int Get_shortcut() const;
    virtual int Get_hs_shortcut();
    virtual void Set_shortcut(int shortcut);
    virtual std::map<int, ShortcutS>* Get_shortcuts_map();
    virtual const char* Get_description() const;

    // The display text of an entry without a value, which is its name, cut to `length` - 1 characters. ERROR
    // and nothing written when `length` is below 2. `buffer` holds at least `length` + 1 bytes: a cut name
    // is terminated at position `length`, and position `length` - 1 keeps what it held.
    virtual int Get_display_string(char* buffer, unsigned int length);
    virtual const Index_t* Get_index() const;
    // A printable identity for diagnostics, valid as long as the entry.
    virtual const char* Get_id_string();
    virtual unsigned int Get_pid() const;
    // As given to the constructor; negative when hidden by `Set_invisible`.
    virtual int Get_visible() const;
    // The binding's last visibility suggestion: positive, or -1.
    virtual int Get_bind_vis();
    // Returns the previous number.
    virtual int Set_hs_shortcut(int shortcut);
    // Stores the application's shortcut table, which must outlive its use. Returns 0.
    virtual int setShortcuts(std::map<int, ShortcutS>* shortcuts);
    // The entry that a button jumps to; null for none.
    virtual Data_entry* getShortcut(int button);
    // The depth of the entry in the menu.
    virtual void setNodeLevel(unsigned int level);
    virtual unsigned int getNodeLevel();

    // The entry is visible only if one of these product options holds; an empty list always holds. Call it
    // after `setProductOptions`. Returns 0.
    virtual int setOrOptions(std::vector<std::string> options);
    // Replaces the product options: option name to value. Returns 0.
    virtual int setProductOptions(std::map<std::string, unsigned int> options);

    virtual int isVisible();  // isVisible(false, null)
    // Non-negative when the entry is to be shown, -1 when not. Without a refresh a non-negative answer is
    // taken from the cache; with one, the entry (for a node, its children) is refreshed first. A node whose
    // first child is hidden refreshes the following ones in either case, so `pDataAccessInf` should not be
    // null. Links among these count as visible without being asked. Only refreshing calls and hidden results
    // are remembered.
    virtual int isVisible(bool if_control_refresh, Data_interface* pDataAccessInf);

    // Copies the value to `buffer`; each leaf class documents its result.
    virtual int Get_value(void* buffer, unsigned int length) = 0;
    // Tries a value against the binding's warnings and shows them. 0, or 1 when there were any. Never stores
    // the value: leaves do. At most 4 bytes of an integer and `length` bytes of a text are read.
    virtual int Set_value(const void* buffer, unsigned int length);
    // The type under which bindings know the value: INTEGER for ranges and enumerations, else STRING.
    virtual RETURN_TYPE bindingReturnType();
    // Does nothing and returns OK: leaves write their value by an operation that takes the interface.
    virtual int Commit();
    // Applies the binding's access and write suggestions, after evaluating its expressions when
    // `eval_binding` is set. With a null interface the writes are dropped. Returns OK.
    virtual int Refresh(Data_interface* pDataAccessInf, bool eval_binding);
    // Steps the value by `value`, a text at `position` from its right end; each leaf class documents its result.
    virtual int Inc_value(int value, int position) = 0;
    // Prints the name and description of the entry and of all entries below it. An entry that a link leads back
    // to is printed again, but not what is below it.
    virtual void Print();
    // The following are for leaves; the base does nothing and returns 0 or null.
    virtual void Update_value(char** texts, int size);
    virtual int* Get_value_visible_mask() const;
    virtual int Get_min() const;
    virtual int Get_max() const;
    // The options given to `setOrOptions`.
    virtual std::vector<std::string> Get_options();
    // Classifies an option name by the product options. A name with the letter "n" is a pattern in which "n"
    // stands for a number. The second argument is not used.
    virtual is_static_value_s isOptionStatic(std::string option, bool n_intact);
    // For leaves; the base keeps no final value and returns 0.
    virtual int Get_final_value();
    virtual void Set_final_value(int value);
    // Set and clear the highest bit of the visibility. Clearing it shows an entry built as VISIBLE_NONE too.
    virtual void Set_invisible();
    virtual void Set_visible();

    // Gives the entry its binding engine, which it owns from then on. Null is accepted and reported. A
    // binding that it had before is the caller's again.
    virtual void Set_binding_object(Binding* binding_object);
    // Always refused with -1: lists are added to the binding before it is handed over.
    virtual int Add_binding_list(BindingListT list);
    // The parameters that the binding refers to; empty without a binding.
    virtual std::vector<var_index_s> Get_var_index_map_keys(int flags);
    // The binding's map of parameters, which stays the binding's; null without a binding.
    virtual var_index_map_t* Get_var_index_map();
    // While locked, the entry is passed over when the dependants of a commit are refreshed.
    virtual void SetBindRefreshIsLocked(bool locked);
    virtual bool GetBindRefreshIsLocked();
    // Have the binding print what it holds; 0 and nothing without a binding.
    virtual int Print_binding_errors();
    virtual void Print_suggestions();
    // What `isVisible` found and remembered; -1 while it is not known. After -1 is set as the visibility, the
    // next `isVisible` decides anew.
    virtual void Set_has_children(int has_children);
    virtual int Get_has_children() const;
    virtual void Set_entry_visible(int visible);
    virtual int Get_entry_visible() const;

    // Flag bits of `EntryTypeSpecificOperation`. Bits without a name here do nothing. The comment is what the
    // step does with `*flag_specific`; a step without one ignores it.
    enum Operation_flag {
        OPERATION_REFRESH = 0x1,
        OPERATION_PREPARE = 0x2,
        OPERATION_PARENT = 0x8,        // delivers the parent; of a mount link, leaves its menu
        OPERATION_PARENT_LINK = 0x10,  // delivers the parent; of a link, the one that was set
        OPERATION_CHILD = 0x20,        // delivers the first child; of a mount link, enters its menu
        OPERATION_CHILD_LINK = 0x40,   // delivers the first child; of a link, the one that was set
        OPERATION_PREVIOUS = 0x80,     // delivers the previous sibling
        OPERATION_NEXT = 0x100,        // delivers the next sibling
        OPERATION_SET_PARENT = 0x200,  // takes the new parent, or null
        OPERATION_SET_CHILD = 0x400,   // takes the new first child, or null
        OPERATION_EXIT_LEDS = 0x1000,
        OPERATION_ESCAPE = 0x2000,              // delivers the parent, or the entry itself to stay
        OPERATION_SET_ESCAPE_ENTRY = 0x8000,    // takes an entry, or null
        OPERATION_SET_SELECT_ENTRY = 0x10000,   // takes an entry, or null
        OPERATION_SET_SELECTED = 0x20000,       // takes the address of an int32_t
        OPERATION_SET_SELECTED_LINE = 0x40000,  // takes the address of an int32_t
        OPERATION_SET_USE_LINE_INFO = 0x80000,  // takes the address of a one-byte flag
        OPERATION_COARSER_STEP = 0x100000,
        OPERATION_FINER_STEP = 0x200000,
        OPERATION_DYNAMIC = 0x400000  // with PREVIOUS or NEXT: the dynamic sibling
    };

    // Performs, in the way that suits the entry's type, every step whose bit is set in `flags`: refresh;
    // deliver a neighbour; set parent or child; leave, step and open the editor. Steps run in a fixed order:
    // the refresh; parent, child, previous and next; setting parent and child; leaving the editor and its
    // entries; steps; line information before the selected option and its line; opening the editor. A step
    // that needs `flag_specific` or an editor that is not given, or is an editor for another type, is skipped.
    //
    // `specific_selection_obj` is null or points to a `Selection`. Returns the result of the refresh (0 when
    // none was asked); -1 for a null entry, and for a refresh without interface, after which no other step is
    // made.
    //
    // All steps share the one `*flag_specific`, which a `Data_entry*` or an address fills: `Operation_flag`
    // lists which. Therefore:
    // - Of several steps that deliver, the last one in the order above wins. On a link both forms run, and the
    //   form with _LINK wins.
    // - A step that takes an entry takes what a step before it delivered.
    // - Requires: the steps that take an address (0x20000, 0x40000, 0x80000) are not combined with a step that
    //   delivers or takes an entry: they would read the entry as a number. Two of them in one call read one
    //   address.
    //
    // A refresh of a link runs the whole operation, with all its steps and the same `*flag_specific`, on the
    // entry it houses and returns its result; the link's own steps follow, so that a neighbour delivered is
    // the link's, and setting parent or child sets both entries'. Without a housed entry the refresh is -1 and
    // the steps follow nevertheless. Editor steps reach the housed entry only in this way. A link has no
    // dynamic siblings.
    static int EntryTypeSpecificOperation(Data_entry* data_entry, Data_interface* m_pDataAccessInf,
                                          void* specific_selection_obj, bool eval_binding,
                                          int flags, void** flag_specific);

    // Walks the tree below an entry, parents before children. Bit 0x1 of `flags` hands the shortcut table
    // `optional_arg` to every entry; bit 0x2 clears the child link of every mount link; bits 0x4 and 0x8 print
    // a line for each, indented by as many tabs as the int that `optional_arg` points to, one more a level.
    //
    // Links are walked by their own place and set child, so no mounted menu is built or taken down. Where one
    // leads back to an entry that is being walked, or to an earlier sibling, the walk goes no further there.
    static void TraverseMenuTree(Data_entry* data_entry, int flags, void* optional_arg);

    // Whether an IPv4 address answers a ping within a second; blocks that long. Addresses that end in ".0"
    // name no host and are not probed. False as well when the probe cannot run. Forks: no other thread may
    // hold a lock that standard output or error needs.
    static bool isRemoteConnected(char* ip);

protected:
    const Index_t* m_index;  // not owned
    std::map<std::string, unsigned int> real_option_map;
    std::vector<std::string> orOptions;
    Data_access m_access;
    Data_access m_access_orig;
    bool flag_access_changed;
    char m_name[25];
    FRONTPANEL_DATA_IN_GAP(uint32_t m_list = 0)
    const char* m_description;  // owned, allocated with new[]
    uint32_t m_pid;
    int32_t m_shortcut;
    int32_t m_hs_shortcut;
    int32_t m_visible;  // bit 31: hidden by `Set_invisible`
    int32_t m_has_children;
    int32_t m_entry_visible;
    int32_t cached_bind_vis;
    int32_t cached_option_vis;
    uint32_t m_NodeLevel;
    bool suggestion_updated;
    Data_entry* m_next;
    Data_entry* m_previous;
    Data_entry* m_parent;
    Data_entry* m_child;
    Data_entry* m_dynamic_child;
    Data_entry* m_dynamic_parent;
    Data_entry* m_dynamic_next;
    Data_entry* m_dynamic_previous;
    pthread_mutex_t m_data_mutex;  // reserved for the entry's data, never locked by the library
    pthread_mutex_t
        m_entry_mutex;  // guards the static child list; a child's is locked before its parent's
    Binding* binding;   // owned
    bool bindRefreshIsLocked;

private:
    bool m_visibility_asked = false;  // `isVisible` is being asked: ends circles through links
protected:
    FRONTPANEL_DATA_IN_GAP(uint32_t m_listed_in = 0)
    std::map<int, ShortcutS>* shortcuts_map;  // not owned
    char identification_string[128];

private:
    friend class Visibility_question;  // asks the entries below without recursion
    friend class Printing;             // prints the entries below without recursion

    FRONTPANEL_DATA_LOCAL void attach_at_construction(const char* name, int visible,
                                                      Data_entry* parent);
    FRONTPANEL_DATA_LOCAL void unlink(Data_entry& child);
    FRONTPANEL_DATA_LOCAL bool holds(const Data_entry& child) const;
    FRONTPANEL_DATA_LOCAL Data_entry* last_child() const;
    FRONTPANEL_DATA_LOCAL Data_entry* end_of_circle(Data_entry* inside) const;
    FRONTPANEL_DATA_LOCAL void join_neighbours_of(const Data_entry& child);
    FRONTPANEL_DATA_LOCAL void append(Data_entry& child);
    FRONTPANEL_DATA_LOCAL bool neighbours_agree(const Data_entry& child) const;
    FRONTPANEL_DATA_LOCAL bool is_list_remembered() const;
    FRONTPANEL_DATA_LOCAL bool is_in_remembered_list() const;
    FRONTPANEL_DATA_LOCAL bool is_as_remembered() const;
    FRONTPANEL_DATA_LOCAL bool is_reached(const Data_entry& child) const;
    FRONTPANEL_DATA_LOCAL void remember_list();
    FRONTPANEL_DATA_LOCAL void apply_access_suggestion();
    FRONTPANEL_DATA_LOCAL void apply_set_suggestion(Data_interface* iface);
    FRONTPANEL_DATA_LOCAL void refresh_for_visibility(Data_interface* iface);
    FRONTPANEL_DATA_LOCAL bool asks_its_children(bool if_control_refresh) const;
    FRONTPANEL_DATA_LOCAL int visibility_alone(bool if_control_refresh,
                                               Data_interface* pDataAccessInf);
    FRONTPANEL_DATA_LOCAL int conclude_visibility(bool if_control_refresh,
                                                  Data_interface* pDataAccessInf,
                                                  bool shows_something, bool asked_again);
    FRONTPANEL_DATA_LOCAL bool option_holds(const std::string& option);
    FRONTPANEL_DATA_LOCAL bool instance_within(int limit) const;

    // The child list as it was walked last (child_list.cpp): `m_listed_in` is the number of the list that this entry is a
    // child of and `m_list` that of its own list, 0 for none, and this is the last child of its own list.
    Data_entry* m_last_child = nullptr;
    FRONTPANEL_DATA_WITHOUT_GAP(uint32_t m_listed_in = 0)
    FRONTPANEL_DATA_WITHOUT_GAP(uint32_t m_list = 0)
};

// A submenu. It has no value: the value operations return INVALID and do nothing.
class FRONTPANEL_DATA_EXPORT Node_entry : public Data_entry {
public:
    // As `Data_entry`, with the parent in fourth place and no parameter.
    Node_entry(const char* name, const char* description, const Index_t* index, Data_entry* parent,
               int visible, int shortcut, Data_entry* next, Data_entry* previous,
               Data_entry* child);
    ~Node_entry() override;

    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    int Get_display_string(char* buffer, unsigned int length) override;
    int Get_value(void* buffer, unsigned int length) override;
    int Set_value(const void* buffer, unsigned int length) override;
    int Inc_value(int value, int position) override;
};

#pragma GCC diagnostic pop

// Entries of the application that the library treats apart; both null until the application sets them.
extern FRONTPANEL_DATA_EXPORT Data_entry* setup_link;  // always visible
extern FRONTPANEL_DATA_EXPORT Data_entry* link_dummy;  // a node that counts as having children

#endif
