#include <frontpanel_data/data_interface.h>

#include <algorithm>
#include <cstring>

#include <frontpanel_data/pdt_data_access.h>

Data_interface* VarIdDataInfStore::m_pDataAccessInf = nullptr;

bool operator==(const Index_t& left, const Index_t& right) {
    if (left.m_index_num != right.m_index_num) {
        return false;
    }
    const std::size_t levels = std::min<std::size_t>(left.m_index_num, 8);
    return std::equal(left.m_index, left.m_index + levels, right.m_index);
}

bool operator!=(const Index_t& left, const Index_t& right) {
    return !(left == right);
}

bool cmp_var_index_t::operator()(const var_index_s& left, const var_index_s& right) const {
    if (left.var != right.var) {
        return left.var < right.var;
    }
    if (left.index.m_index_num != right.index.m_index_num) {
        return left.index.m_index_num < right.index.m_index_num;
    }
    // Only two levels, as the device supports: deeper ones do not distinguish keys.
    for (int level = 0; level < 2; ++level) {
        if (left.index.m_index[level] != right.index.m_index[level]) {
            return left.index.m_index[level] < right.index.m_index[level];
        }
    }
    return static_cast<int>(left.rt) < static_cast<int>(right.rt);
}

bool operator==(const GetSetS& left, const GetSetS& right) {
    return left.varid == right.varid && left.varidx == right.varidx && left.rt == right.rt &&
           left.length == right.length &&
           std::memcmp(left.buffer, right.buffer,
                       std::min<std::size_t>(left.length, sizeof left.buffer)) == 0;
}

Data_interface::Data_interface() = default;

Data_interface::~Data_interface() = default;

void Data_interface::Init() {}

Pdt_data_access::Pdt_data_access() = default;

Pdt_data_access::~Pdt_data_access() = default;
