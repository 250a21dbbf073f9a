// The base entry's plain queries and setters. Nothing here throws or calls what may throw.
#include <frontpanel_data/entry.h>

#include <cstdint>
#include <utility>

namespace {

constexpr int32_t HIDDEN_BIT = INT32_MIN;  // bit 31 of the visibility

}  // namespace

Data_entry* Data_entry::Get_next() const {
    return m_next;
}

Data_entry* Data_entry::Get_previous() const {
    return m_previous;
}

Data_entry* Data_entry::Get_parent() const {
    return m_parent;
}

Data_entry* Data_entry::Get_child() const {
    return m_child;
}

Data_entry* Data_entry::Get_dynamic_parent() {
    return m_dynamic_parent;
}

Data_entry* Data_entry::Get_dynamic_child() {
    return m_dynamic_child;
}

Data_entry* Data_entry::Get_dynamic_next() {
    return m_dynamic_next;
}

Data_entry* Data_entry::Get_dynamic_previous() {
    return m_dynamic_previous;
}

Data_entry::Data_access Data_entry::Get_access_type() const {
    return m_access;
}

Data_entry::Data_access Data_entry::Get_orig_access_type() const {
    return m_access_orig;
}

bool Data_entry::Get_flag_access_type_chg() const {
    return flag_access_changed;
}

void Data_entry::Set_flag_access_type_chg(bool changed) {
    flag_access_changed = changed;
}

void Data_entry::Set_access_type(Data_access access) {
    m_access = access;
    if (!flag_access_changed) {
        m_access_orig = access;
    }
}

Data_entry* Data_entry::Set_parent(Data_entry* parent) {
    return std::exchange(m_parent, parent);
}

Data_entry* Data_entry::Set_previous(Data_entry* previous) {
    return std::exchange(m_previous, previous);
}

void Data_entry::Set_dynamic_parent(Data_entry* parent) {
    m_dynamic_parent = parent;
}

void Data_entry::Set_dynamic_child(Data_entry* child) {
    m_dynamic_child = child;
}

void Data_entry::Set_dynamic_next(Data_entry* next) {
    m_dynamic_next = next;
}

void Data_entry::Set_dynamic_previous(Data_entry* previous) {
    m_dynamic_previous = previous;
}

bool Data_entry::Is_active() const {
    return true;
}

const char* Data_entry::Get_name() const {
    return m_name;
}

int Data_entry::Get_shortcut() const {
    return m_shortcut;
}

int Data_entry::Get_hs_shortcut() {
    return m_hs_shortcut;
}

void Data_entry::Set_shortcut(int shortcut) {
    m_shortcut = shortcut;
}

std::map<int, ShortcutS>* Data_entry::Get_shortcuts_map() {
    return shortcuts_map;
}

const char* Data_entry::Get_description() const {
    return m_description;
}

const Index_t* Data_entry::Get_index() const {
    return m_index;
}

const char* Data_entry::Get_id_string() {
    return identification_string;
}

unsigned int Data_entry::Get_pid() const {
    return m_pid;
}

int Data_entry::Get_visible() const {
    return m_visible;
}

int Data_entry::Set_hs_shortcut(int shortcut) {
    return std::exchange(m_hs_shortcut, shortcut);
}

int Data_entry::setShortcuts(std::map<int, ShortcutS>* shortcuts) {
    shortcuts_map = shortcuts;
    return 0;
}

void Data_entry::setNodeLevel(unsigned int level) {
    m_NodeLevel = level;
}

unsigned int Data_entry::getNodeLevel() {
    return m_NodeLevel;
}

int Data_entry::Commit() {
    return OK;
}

void Data_entry::Update_value(char** /*texts*/, int /*size*/) {}

int* Data_entry::Get_value_visible_mask() const {
    return nullptr;
}

int Data_entry::Get_min() const {
    return 0;
}

int Data_entry::Get_max() const {
    return 0;
}

int Data_entry::Get_final_value() {
    return 0;
}

void Data_entry::Set_final_value(int /*value*/) {}

void Data_entry::Set_invisible() {
    m_visible |= HIDDEN_BIT;
}

void Data_entry::Set_visible() {
    m_visible &= ~HIDDEN_BIT;
}

void Data_entry::SetBindRefreshIsLocked(bool locked) {
    bindRefreshIsLocked = locked;
}

bool Data_entry::GetBindRefreshIsLocked() {
    return bindRefreshIsLocked;
}

void Data_entry::Set_has_children(int has_children) {
    m_has_children = has_children;
}

int Data_entry::Get_has_children() const {
    return m_has_children;
}

void Data_entry::Set_entry_visible(int visible) {
    m_entry_visible = visible;
}

int Data_entry::Get_entry_visible() const {
    return m_entry_visible;
}
