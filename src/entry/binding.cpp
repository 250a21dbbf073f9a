#include <frontpanel_data/binding.h>

#include <cstdio>

const int Binding::EXECUTE_FLAG = EVALUATION_UPDATE;

Binding::Binding() : self_control_info() {}

Binding::~Binding() = default;

EntryModelCache::EntryModelCache()
    : EntryModelCache(Data_entry::INVALID_ENTRY_TYPE, nullptr, INVALID_TYPE) {}

EntryModelCache::EntryModelCache(Data_entry::Entry_type type, Data_entry* monitored,
                                 RETURN_TYPE value_type)
    : entry_type(type),
      model_type(value_type),
      monitored_entry(monitored),
      value_string(),
      value_int(0) {}

EntryModelCache::EntryModelCache(const EntryModelCache& other) = default;

EntryModelCache& EntryModelCache::operator=(const EntryModelCache& other) = default;

EntryModelCache::~EntryModelCache() = default;

int EntryModelCache::getInt() {
    if (model_type != INTEGER) {
        std::printf("[NOT INTEGER RETURN]\n");
        return -1;
    }
    return value_int;
}

char* EntryModelCache::getString() {
    if (model_type == INTEGER) {
        std::snprintf(value_string, sizeof value_string, "%d", value_int);
    }
    return value_string;
}

std::string EntryModelCache::Get_entry_name() {
    return monitored_entry != nullptr ? monitored_entry->Get_name() : "";
}

RETURN_TYPE EntryModelCache::Type_to_return_type(Data_entry::Entry_type type) {
    switch (type) {
        case Data_entry::RANGE_LEAF:
        case Data_entry::ENUM_LEAF:
        case Data_entry::SLOT_ENUM:
            return INTEGER;
        default:
            return STRING;
    }
}
