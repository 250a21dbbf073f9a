#include <frontpanel_data/pdt_data_access.h>
#include <frontpanel_data/slot_enum_entry.h>
#include <frontpanel_data/string_entry.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "../diagnostics.h"
#include "slot_enum_line.h"

namespace {

using slot_enum_line::ALIAS_SIZE;
using slot_enum_line::Line;

constexpr std::size_t PRODUCT_RECORDS = 16;
// Record 0 of the product list is the controller's own.
constexpr int LAST_SLOT = PRODUCT_RECORDS - 1;
constexpr int LINES_BELOW = 4;
// The parameter that selects a slot even with an address entry beside it.
constexpr unsigned int SLOT_SELECTION_PID = 0x10008;

constexpr unsigned int MAX_ADDRESS_LENGTH = Ip_entry::IP_STRING_MAX_LENGTH;

// The slots whose aliases the panel can show. Aliases are asked one by one, so only these are.
struct Window {
    Window(int selected, int selected_line)
        : m_low(int64_t{selected} - selected_line),
          m_high(int64_t{selected} + selected_line + LINES_BELOW) {}
    bool holds(int slot) const { return m_low < slot && slot <= m_high; }

private:
    int64_t m_low;
    int64_t m_high;
};

void write_slot_alias(Line& line, std::size_t used, prod_id_t product, Data_interface& iface) {
    char alias[ALIAS_SIZE] = {};
    const int result = iface.Get_prod_alias_name(alias, product);
    alias[ALIAS_SIZE - 1] = '\0';
    if (result != 0 || alias[0] == '\0') {
        return;
    }
    ENTRY_LINE(REFRESH, FUNCTION_ONLY, "Refresh", "Slot-%d alias: %s\n", product, alias);
    slot_enum_line::write_alias(line, used, alias);
}

void write_slot(Line& line, int slot, const PROD_LIST_S& record, bool shows_alias,
                Data_interface& iface) {
    if (slot_enum_line::is_fitted(record)) {
        ENTRY_LINE(REFRESH, FUNCTION_ONLY, "Refresh", "Slot-%d name: %.*s\n", record.prod_id,
                   static_cast<int>(sizeof record.prod_family), record.prod_family);
        const std::size_t used = slot_enum_line::write_product(line, slot, record);
        if (shows_alias) {
            write_slot_alias(line, used, record.prod_id, iface);
        }
    } else {
        slot_enum_line::write_empty(line, slot);
    }
    slot_enum_line::finish(line);
    ENTRY_LINE(REFRESH, FUNCTION_ONLY, "Refresh", "slot name2: %s\n", line);
}

// Null for an interface that reaches one unit only.
Pdt_data_access* sockets_of(Data_interface& iface) {
    return dynamic_cast<Pdt_data_access*>(&iface);
}

}  // namespace

Slot_enum_entry::Slot_enum_entry(const char* name, const char* description, unsigned int pid,
                                 const Index_t* index, int min, int max, int default_value,
                                 valdef_value_t* /*val_array*/, char** enum_array,
                                 unsigned int enum_size, Ip_entry* pIpEntry, Data_entry* parent,
                                 Data_access access, int* /*value_mask*/, int visible, bool active,
                                 int shortcut, Data_entry* next, Data_entry* previous,
                                 Data_entry* child)
    : Enum_entry(name, description, pid, index, min, max, default_value, enum_array, enum_size,
                 parent, access, visible, active, shortcut, next, previous, child, nullptr, nullptr,
                 nullptr),
      m_IpEntry(pIpEntry),
      string_model(pid, index, MAX_ADDRESS_LENGTH),
      string_entry_refresh(false) {}

Slot_enum_entry::~Slot_enum_entry() = default;

std::string Slot_enum_entry::getProperties(int flags) {
    return Data_entry::getProperties(flags);
}

Data_entry::Entry_type Slot_enum_entry::Get_entry_type() const {
    return SLOT_ENUM;
}

RETURN_TYPE Slot_enum_entry::Get_return_type_int_or_string() const {
    return INTEGER;
}

Ip_entry* Slot_enum_entry::Get_ip_entry() {
    return m_IpEntry;
}

int Slot_enum_entry::Get_display_string(char* buffer, unsigned int length) {
    if (m_IpEntry == nullptr) {
        return Enum_entry::Get_display_string(buffer, length);
    }
    m_IpEntry->Get_value(buffer, length);
    string_model.Set(buffer, length);
    std::memset(buffer, 0, length);
    return m_IpEntry->Get_display_string(buffer, length);
}

int Slot_enum_entry::slot_count() const {
    return std::min(m_size, LAST_SLOT);
}

int Slot_enum_entry::ClearMenu() {
    for (int slot = 1; slot <= m_size; ++slot) {
        if (char* const text = option_text(slot - 1)) {
            std::snprintf(text, slot_enum_line::LINE_SIZE, "%d", slot);
        }
    }
    return 0;
}

int Slot_enum_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    return Refresh(pDataAccessInf, eval_binding, 0, 0, false);
}

int Slot_enum_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding, int selected,
                             int selected_line, bool /*use_line_info*/) {
    const int local = static_cast<int>(m_model.Get_varidx());
    // The values have the labels of other ones. Intended: readers of logs depend on the line.
    ENTRY_LINE(REFRESH, FILE_FIRST, "Refresh", "selected=[%d] selected_line=[%d]local=[%d]\n",
               local, selected, selected_line);
    refresh_address(pDataAccessInf, eval_binding);
    Pdt_data_access* const sockets = sockets_of(*pDataAccessInf);
    int status_before = 0;
    if (sockets != nullptr) {
        status_before = sockets->Is_current_selection_local();
        sockets->setCurrentRouterSocket(local);
    }
    m_model.Refresh(pDataAccessInf);
    if (local == 0 && sockets != nullptr && sockets->Is_use_selection_local()) {
        return 0;  // the local socket stays selected: the user chose it
    }
    const int result = refresh_lines(*pDataAccessInf, local != 0, selected, selected_line);
    ENTRY_LINE(REFRESH, FILE_FIRST, "Refresh", "Exiting function. local=[%d]\n", local);
    if (sockets != nullptr) {
        // The answer to "is it local" is the socket that is selected again. Intended: the panel reads from
        // the controller or from its one remote card.
        sockets->setCurrentRouterSocket(status_before);
    }
    return result;
}

void Slot_enum_entry::refresh_address(Data_interface* pDataAccessInf, bool eval_binding) {
    if (string_entry_refresh || m_IpEntry == nullptr) {
        return;
    }
    ENTRY_LINE(GENERAL, NONE, "Refresh", "String_node_entry::Refresh");
    m_IpEntry->Refresh(pDataAccessInf, eval_binding);
    string_entry_refresh = true;
}

int Slot_enum_entry::refresh_lines(Data_interface& iface, bool remote, int selected,
                                   int selected_line) {
    PROD_LIST_S products[PRODUCT_RECORDS] = {};
    const int result = iface.Get_prod_list(products, remote, true);
    ENTRY_LINE(REFRESH, FUNCTION_ONLY, "Refresh", "Returned slot enum after getting prod list\n");
    if (result != 0) {
        return result;
    }
    const Window window(selected, selected_line);
    Line lines[PRODUCT_RECORDS] = {};
    for (int slot = 1; slot <= slot_count(); ++slot) {
        write_slot(lines[slot], slot, products[slot], window.holds(slot), iface);
    }
    for (int slot = 1; slot <= slot_count(); ++slot) {
        if (char* const text = option_text(slot - 1)) {
            std::memcpy(text, lines[slot], sizeof lines[slot]);
        }
        ENTRY_LINE(REFRESH, FUNCTION_ONLY, "Refresh", "SLOT_NAME[i] [%s]\n", lines[slot]);
    }
    return result;
}

int Slot_enum_entry::Commit(Data_interface* pDataAccessInf) {
    if (m_IpEntry == nullptr || Get_pid() == SLOT_SELECTION_PID) {
        LEAF_LINE(COMMIT, FILE_FIRST, "Commit", "About to commit...\n");
        return Enum_entry::Commit(pDataAccessInf);
    }
    LEAF_LINE(COMMIT, FILE_FIRST, "Commit", "Commit ip_entry\n");
    const int result = string_model.Commit(pDataAccessInf);
    string_entry_refresh = false;
    return result;
}
