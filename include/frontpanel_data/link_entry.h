// A menu entry that takes the place of another in the tree, so that one entry can appear in several menus.
//
// A link has a place, a display name and escape destinations of its own; all that concerns the value it
// forwards to the entry it houses. Three roles come on top: a mount link opens a menu that is built when it
// is entered, a homescreen entry shows only while its toggle expression is true, and a link named "Bridge
// Entry" owns what it houses. Driven by the menu thread; toggles use the one evaluator of the process.
#ifndef FRONTPANEL_DATA_LINK_ENTRY_H
#define FRONTPANEL_DATA_LINK_ENTRY_H

#include <map>
#include <string>
#include <vector>

#include <boost/function.hpp>

#include <frontpanel_data/entry.h>
#include <frontpanel_data/export.h>

class FPData;
class MenuControl;

// Builds a menu and delivers its first entry, or takes one down (the result is not used). The argument is
// always null. What a callback throws passes through the operation that called it.
typedef boost::function<Data_entry*(MenuControl*)> FunctionT1;

// The link's queries do not override the base's const ones of the same names, on purpose: a caller that holds
// the link as a `Data_entry` gets the base's answer from the link's base fields, and only one that holds it as
// a `Link_entry` gets the link's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Link_entry : public Data_entry {
public:
    // For the application: what the panel does after an action on the link. The library never reads it.
    enum Link_behaviour { LINK_STAY = 1, LINK_SKIP = 2 };

    // Where a caller of `Get_escape_node` comes from; bits for `Set_escape_node`.
    enum Escape_code { ESCAPE_REDRAW = 1, ESCAPE_SELECT = 2, ESCAPE_LEAVE = 4 };

    // Takes name, description, parameter, visibility, shortcut and neighbours of the housed entry as they are
    // now. The housed entry must outlive the link, and must have an index unless it is named "Bridge Entry"
    // (asserted). It may be null: such a link is named "none", leads nowhere, shows nothing, and takes no
    // operation that is forwarded (asserted).
    //
    // The display name of an indexed entry is prefixed with the name of its parent, for two index levels with
    // those of its parent and grandparent ("Ch 3.Card 2.Gain"). The prefix is cut to 19 characters, the whole
    // to 24. When both together exceed 25 characters the name is lost: "(null)" follows the prefix.
    //
    // An entry named "Bridge Entry" is owned by the link, together with its index, both allocated with new:
    // no second link may house it.
    explicit Link_entry(Data_entry* housed_entry);
    ~Link_entry() override;

    // Forwarded to the housed entry, unless stated otherwise. `Add_child`, `Attach` and `Remove` are
    // forwarded too: children attached to a link become children of the housed entry, and attaching a link
    // attaches the housed entry. A link takes its place by `Set_parent`, `Set_next`, `Set_previous` and
    // `Set_child`. The menu's `Add_child(link)` only puts it on the menu's list and is no substitute for them.

    Entry_type Get_entry_type() const override;  // LINK_ENTRY
    // INVALID_TYPE without a housed entry.
    RETURN_TYPE Get_return_type_int_or_string() const override;
    // Store a neighbour of the link's own, null for none; from then on it is the answer in that direction.
    // They return the link's previous one. The base fields stay as they are.
    Data_entry* Set_parent(Data_entry* new_link_parent) override;
    Data_entry* Set_child(Data_entry* new_link_child) override;
    Data_entry* Set_next(Data_entry* new_link_next) override;
    Data_entry* Set_previous(Data_entry* new_link_previous) override;
    int Add_child(Data_entry& child) override;
    int Attach(Data_entry& parent) override;
    int Remove(Data_entry* child) override;
    const char* Get_name() const override;  // the display name
    // Kept by the link as well.
    void Set_shortcut(int shortcut) override;
    // What the housed entry shows, in the form of its type; nothing for a node. `buffer` holds `length` + 1
    // bytes. Returns the housed entry's result; 0 and writes nothing without one; a positive number, after a
    // message on standard error, for a type that shows nothing, such as a link.
    int Get_display_string(char* buffer, unsigned int length) override;
    int Get_bind_vis() override;
    int setOrOptions(std::vector<std::string> options) override;
    int setProductOptions(std::map<std::string, unsigned int> options) override;
    int isVisible() override;  // isVisible(false, null)
    // 1 when the housed entry is visible and the toggle of a homescreen entry is on, else -1; the setup link
    // is always visible. `Set_visible(bool)` takes no part: to hide a link, hide the housed entry.
    int isVisible(bool if_control_refresh, Data_interface* m_pDataAccessInf) override;
    int Get_value(void* buffer, unsigned int length) override;
    int Set_value(const void* buffer, unsigned int length) override;
    RETURN_TYPE bindingReturnType() override;
    // The base's operation, which writes nothing: leaves commit with an interface, on the housed entry.
    int Commit() override;
    // Refreshes the housed entry through the dispatcher; -1 without one or without an interface.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    int Inc_value(int value, int position) override;
    void Print() override;  // nothing without a housed entry
    void Update_value(char** val, int i) override;
    std::vector<std::string> Get_options() override;
    is_static_value_s isOptionStatic(std::string op, bool n_intact) override;
    int Get_final_value() override;
    void Set_final_value(int value) override;
    void Set_invisible() override;
    void Set_visible() override;
    void Set_binding_object(Binding* bind_obj) override;
    int Add_binding_list(BindingListT bl) override;
    // The housed entry's keys, then those of the toggle expression in the order of their names.
    std::vector<var_index_s> Get_var_index_map_keys(int flags) override;
    // The map given to `setAsHomescreenEntry`; null before.
    var_index_map_t* Get_var_index_map() override;
    int Print_binding_errors() override;
    // Prints the housed entry's binding errors, not its suggestions.
    void Print_suggestions() override;

    // The order of the virtual operations below is a binary contract: never insert, remove or reorder.

    // The destination for one exact `Escape_code`, null when it was never set; for any other value the link.
    virtual Data_entry* Get_escape_node(int coming_from);
    // Stores a destination for every bit of `Escape_code` that is set.
    virtual void Set_escape_node(int coming_from, Data_entry* teleport_destination);
    virtual Data_entry* Get_housed_entry();
    // Stores a flag of the link's own for the application. Does not hide or show the link: no operation of the
    // library asks for the flag. (`Set_invisible` hides the housed entry in every menu.) Returns the previous
    // value.
    virtual bool Set_visible(bool visible);
    // The neighbour that was set, else the housed entry's; null without a housed entry. Entering a mount link
    // (`Get_child`) builds its menu and delivers the first entry, or the link's parent when none is built;
    // leaving it (`Get_parent`) takes the menu down and delivers the link's parent. Each call builds or takes
    // down anew, so callers pair them: `Get_parent` of a mount link whose menu is already down runs the
    // callback once more, and delivers the same parent (null unless `Set_parent` set one, never the housed
    // entry's). `Get_parent_link` asks without that. Without its callback a mount link reports it and delivers
    // null.
    virtual Data_entry* Get_next();
    virtual Data_entry* Get_previous();
    // Only what was set, whatever the role of the link.
    virtual Data_entry* Get_parent_link();
    virtual Data_entry* Get_child_link();
    virtual Data_entry* Get_parent();
    virtual Data_entry* Get_child();
    virtual Data_access Get_access_type();
    virtual bool Is_node_entry();
    virtual bool Is_active();
    virtual int Get_shortcut();
    virtual const char* Get_description();
    virtual const Index_t* Get_index();
    virtual unsigned int Get_pid();
    virtual int Get_visible();  // isVisible()
    // 1 when the toggle expression puts something other than 0 into the evaluator's first variable by name, or
    // is empty; else 0. Evaluated anew on each call, with the cached values of its parameters. All toggles of
    // a process therefore assign to one name, and no other expression uses a name that sorts before it: "a"
    // is before all names that begin with a small letter, "A" before all names. An expression that fails is
    // reported on standard error.
    virtual int CheckToggleState();
    // Copies the cached integer of a parameter that the toggle expression names to `buffer`, at most 4 bytes;
    // what follows up to `length` is cleared. 0, or -1 and all cleared for a name without such a value. That
    // is then printed to standard output whatever `debug` holds ("[NOT FOUND]", "[NOT INTEGER RETURN]"), with
    // each call. An unknown name is kept as the name of an empty key, which `Get_var_index_map_keys` of a
    // homescreen entry lists from then on.
    virtual int GetGetRequest(std::string name, void* buffer, int length);
    virtual int* Get_value_visible_mask();
    virtual int Get_min();
    virtual int Get_max();
    virtual std::string GetToggleExpression();
    virtual bool isMountLink();
    // Makes the link a mount link. An empty callback is reported when it is needed.
    virtual void setAsMountLink(FunctionT1 create_menu, FunctionT1 destroy_menu);
    // Stores the toggle expression and the map that holds the values of its parameters, which must outlive
    // the link; with neither the map nor `fp_data` null the link becomes a homescreen entry, and the names of
    // the expression are looked up. `fp_data` is only tested. Returns 0.
    //
    // The expression is in the evaluator's language, with parameters as [pid], [pid.index] or
    // [pid.index.index] in decimal. An empty one is always on, the text "error" always off.
    virtual int setAsHomescreenEntry(std::string toggle, var_index_map_t* vi, FPData* fp_data);
    virtual bool isHomescreenEntry();
    // Looks up every parameter of the toggle expression. One that the map does not hold is reported on
    // standard error and turns the expression into "error"; names before it stay recorded. Returns 0.
    virtual int createGetRequests(FPData* fp_data);
    // Marks the link for the application. What a link owns depends on its name alone.
    virtual void setAsBridgeLink();
    virtual bool isBridgeLink();
    virtual int getBehaviour();
    // Stores LINK_STAY or LINK_SKIP and nothing else. Returns the previous behaviour.
    virtual int setBehaviour(int stay_or_skip);
    // Whether a parent was set: true after `Set_parent`, false again once a mounted menu was left. Then
    // `Get_parent` of a mount link still delivers the parent that was set.
    virtual bool isValidParentLink();

protected:
    char link_name[25];
    Data_entry* link_entry;  // the housed entry
    // LINK_ENTRY; the housed entry's type while its keys are collected.
    Entry_type entry_type;
    Data_entry* redraw_teleport_destination;
    Data_entry* escape_teleport_destination;
    Data_entry* select_teleport_destination;
    int link_behaviour;
    bool is_bridge_link;
    bool link_visible;
    bool is_mounting_link;
    FunctionT1 create_mount_menu;
    FunctionT1 destroy_mount_menu;
    bool is_homescreen_entry;
    var_index_map_t* vim;  // not owned
    std::string toggle_expression;
    std::map<std::string, var_index_s> homescreen_keys;  // by their name in the expression
    // The link's own neighbours, not owned, and whether each was set.
    Data_entry* next_link;
    Data_entry* previous_link;
    Data_entry* parent_link;
    Data_entry* child_link;
    bool valid_next_link;
    bool valid_previous_link;
    bool valid_parent_link;
    bool valid_child_link;

private:
    friend class Visibility_question;  // asks the housed entry without recursion
    friend class Printing;             // prints the housed entry without recursion

    FRONTPANEL_DATA_LOCAL int toggle_visibility();
    FRONTPANEL_DATA_LOCAL int visibility(int toggle_vis, bool housed_is_visible) const;
    FRONTPANEL_DATA_LOCAL Data_entry& housed() const;
    FRONTPANEL_DATA_LOCAL Data_entry* enter_mounted_menu();
    FRONTPANEL_DATA_LOCAL Data_entry* leave_mounted_menu();
    FRONTPANEL_DATA_LOCAL bool record_key(const std::string& name);
    FRONTPANEL_DATA_LOCAL bool put_in_values(std::string& expression);
};

#pragma GCC diagnostic pop

#endif
