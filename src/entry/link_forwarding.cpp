// What a link forwards to the entry it houses.
#include <frontpanel_data/link_entry.h>

#include <utility>

// The library's own walks over a tree reach this and `Print`, so links that house nothing answer them.
RETURN_TYPE Link_entry::Get_return_type_int_or_string() const {
    return link_entry != nullptr ? link_entry->Get_return_type_int_or_string() : INVALID_TYPE;
}

void Link_entry::Print() {
    if (link_entry != nullptr) {
        link_entry->Print();
    }
}

void Link_entry::Set_invisible() {
    housed().Set_invisible();
}

void Link_entry::Set_visible() {
    housed().Set_visible();
}

Data_entry::Data_access Link_entry::Get_access_type() {
    return housed().Get_access_type();
}

bool Link_entry::Is_node_entry() {
    return housed().Is_node_entry();
}

bool Link_entry::Is_active() {
    return housed().Is_active();
}

int Link_entry::Get_shortcut() {
    return housed().Get_shortcut();
}

const char* Link_entry::Get_description() {
    return housed().Get_description();
}

const Index_t* Link_entry::Get_index() {
    return housed().Get_index();
}

unsigned int Link_entry::Get_pid() {
    return housed().Get_pid();
}

int Link_entry::Add_child(Data_entry& child) {
    return housed().Add_child(child);
}

int Link_entry::Attach(Data_entry& parent) {
    return housed().Attach(parent);
}

int Link_entry::Remove(Data_entry* child) {
    return housed().Remove(child);
}

int Link_entry::Get_bind_vis() {
    return housed().Get_bind_vis();
}

int Link_entry::Get_value(void* buffer, unsigned int length) {
    return housed().Get_value(buffer, length);
}

int Link_entry::Set_value(const void* buffer, unsigned int length) {
    return housed().Set_value(buffer, length);
}

RETURN_TYPE Link_entry::bindingReturnType() {
    return housed().bindingReturnType();
}

int Link_entry::Commit() {
    return housed().Commit();
}

int Link_entry::Inc_value(int value, int position) {
    return housed().Inc_value(value, position);
}

void Link_entry::Update_value(char** val, int i) {
    housed().Update_value(val, i);
}

int* Link_entry::Get_value_visible_mask() {
    return housed().Get_value_visible_mask();
}

int Link_entry::Get_min() {
    return housed().Get_min();
}

int Link_entry::Get_max() {
    return housed().Get_max();
}

std::vector<std::string> Link_entry::Get_options() {
    return housed().Get_options();
}

is_static_value_s Link_entry::isOptionStatic(std::string op, bool n_intact) {
    return housed().isOptionStatic(std::move(op), n_intact);
}

int Link_entry::Get_final_value() {
    return housed().Get_final_value();
}

void Link_entry::Set_final_value(int value) {
    housed().Set_final_value(value);
}

void Link_entry::Set_binding_object(Binding* bind_obj) {
    housed().Set_binding_object(bind_obj);
}

int Link_entry::Print_binding_errors() {
    return housed().Print_binding_errors();
}

// Prints errors instead of suggestions on purpose: panels call it to find out why a binding suggests nothing.
void Link_entry::Print_suggestions() {
    housed().Print_binding_errors();
}

int Link_entry::Add_binding_list(BindingListT bl) {
    return housed().Add_binding_list(std::move(bl));
}

int Link_entry::setOrOptions(std::vector<std::string> options) {
    return housed().setOrOptions(std::move(options));
}

int Link_entry::setProductOptions(std::map<std::string, unsigned int> options) {
    return housed().setProductOptions(std::move(options));
}

void Link_entry::Set_shortcut(int shortcut) {
    housed().Set_shortcut(shortcut);
    m_shortcut = shortcut;
}

// Through the dispatcher, which refreshes every type in its own way, links that are housed included.
int Link_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    return EntryTypeSpecificOperation(link_entry, pDataAccessInf, nullptr, eval_binding,
                                      OPERATION_REFRESH, nullptr);
}
