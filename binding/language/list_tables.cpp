#include "language/list_tables.h"

#include <iterator>

#include <frontpanel_data/data_model.h>

namespace frontpanel::binding_language {

namespace {

constexpr std::size_t MOST_LEVELS = Data_model::S_CURRENT_SUPPORT_DIMENTIONS;

}  // namespace

void List_tables::clear() {
    for (BindingListT* const table :
         {&parameters, &options, &texts, &wide_numbers, &segments, &rules, &code}) {
        table->clear();
    }
    unescaped.clear();
    own_type = 0;
    if (!later_rows.empty()) {
        later_rows.clear();
    }
}

void List_tables::clear_rules() {
    rules.clear();
    segments.clear();
    code.clear();
}

BindingListT List_tables::list(std::string_view source) const {
    const std::size_t pool_bytes = source.size() + unescaped.size();
    const BindingListT* const sections[] = {&parameters, &options, &texts, &wide_numbers,
                                            &segments,   &rules,   &code};
    std::size_t size = HEADER_SIZE;
    for (const BindingListT* const section : sections) {
        size += section->size();
    }
    const std::size_t pool = size;
    size += (pool_bytes + BYTES_PER_NUMBER - 1) / BYTES_PER_NUMBER;

    int header[HEADER_SIZE] = {};
    header[HEADER_MAGIC] = LIST_MAGIC;
    header[HEADER_VERSION] = LIST_VERSION;
    header[HEADER_LENGTH] = static_cast<int>(size);
    header[HEADER_OWN_TYPE] = own_type;
    header[HEADER_PARAMETERS] = static_cast<int>(parameters.size() / PARAMETER_SIZE);
    header[HEADER_OPTIONS] = static_cast<int>(options.size() / REFERENCE_SIZE);
    header[HEADER_TEXTS] = static_cast<int>(texts.size() / REFERENCE_SIZE);
    header[HEADER_WIDE_NUMBERS] = static_cast<int>(wide_numbers.size() / WIDE_NUMBER_SIZE);
    header[HEADER_SEGMENTS] = static_cast<int>(segments.size());
    header[HEADER_RULES] = static_cast<int>(rules.size() / RULE_SIZE);
    header[HEADER_INSTRUCTIONS] = instruction_count();
    header[HEADER_POOL_BYTES] = static_cast<int>(pool_bytes);

    BindingListT list;
    list.reserve(size);
    list.assign(std::begin(header), std::end(header));
    for (const BindingListT* const section : sections) {
        list.insert(list.end(), section->begin(), section->end());
    }
    list.resize(size);
    char* const bytes = reinterpret_cast<char*>(list.data() + pool);
    unescaped.copy(bytes + source.copy(bytes, source.size()), unescaped.size());
    list[HEADER_CHECKSUM] = list_checksum(list.data(), list.size());
    return list;
}

var_index_s List_tables::key(int parameter) const {
    const int* const row = &parameters[static_cast<std::size_t>(parameter) * PARAMETER_SIZE];
    var_index_s key{static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]),
                    static_cast<uint32_t>(row[PARAMETER_PID]),
                    {}};
    key.index.m_index_num = static_cast<decltype(key.index.m_index_num)>(row[PARAMETER_LEVELS]);
    for (std::size_t level = 0; level < MOST_LEVELS; ++level) {
        key.index.m_index[level] = static_cast<uint16_t>(row[PARAMETER_LEVEL_0 + level]);
    }
    return key;
}

std::vector<Named_parameter> List_tables::named_parameters() const {
    std::vector<Named_parameter> named(parameters.size() / PARAMETER_SIZE);
    for (std::size_t number = 0; number < named.size(); ++number) {
        const int place = parameters[number * PARAMETER_SIZE + PARAMETER_NAME];
        named[number] = {key(static_cast<int>(number)), static_cast<std::size_t>(place)};
    }
    return named;
}

}  // namespace frontpanel::binding_language
