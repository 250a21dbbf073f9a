// The parameters that a text names, each with its row in the list.
#ifndef FRONTPANEL_BINDING_LANGUAGE_PARAMETER_REFERENCES_H
#define FRONTPANEL_BINDING_LANGUAGE_PARAMETER_REFERENCES_H

#include <optional>
#include <string_view>

#include <frontpanel_binding/parameter_table.h>

#include "language/list_tables.h"
#include "language/token_cursor.h"

namespace frontpanel::binding_language {

class Parameter_references {
public:
    // All outlive the object.
    Parameter_references(const Parameter_table& declared, List_tables& tables,
                         const Token_cursor& cursor)
        : m_declared(declared), m_tables(tables), m_cursor(cursor) {}

    // Requires: the token at hand is a PARAMETER. Returns the number of its row.
    int number();

private:
    std::optional<int> known_row(std::string_view name) const;
    std::optional<int> known_row(const int* address, uint64_t variable) const;
    var_index_s address(std::string_view text) const;
    int row(const var_index_s& key, std::string_view name);
    [[noreturn]] void fail_unknown(std::string_view name) const;

    const Parameter_table& m_declared;
    List_tables& m_tables;
    const Token_cursor& m_cursor;
};

}  // namespace frontpanel::binding_language

#endif
