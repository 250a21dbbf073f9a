// What the binding engines of one menu share: compiled rules, dependants and the device.
//
// A source text is compiled here into a binding list; the list is given to the `Expression_binding` of an
// entry. The registry knows which entries depend on which parameter, so that a commit refreshes them. Menu
// thread only.
#ifndef FRONTPANEL_BINDING_BINDING_REGISTRY_H
#define FRONTPANEL_BINDING_BINDING_REGISTRY_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_binding/parameter_table.h>
#include <frontpanel_data/binding.h>

namespace binding_language {
class Compiler;
}

// Why a source text was refused, and where. Lines and columns count from 1, columns in bytes.
struct Compile_error {
    std::size_t line;
    std::size_t column;
    std::string message;  // "expected a comparison (== != < <= > >=), found \"3\""

    std::string text() const;  // "line 1, column 12: MESSAGE"
};

// A closed range, min <= max.
struct Binding_interval {
    std::int32_t min;
    std::int32_t max;
};

// The list of a source text, or the error and an empty list.
struct Compile_result {
    BindingListT list;
    // Of the text's range rules, those that are plain numbers: for whoever knows the entry's bounds.
    std::vector<Binding_interval> intervals;
    std::optional<Compile_error> error;

    bool ok() const { return !error; }
};

class Binding_registry {
public:
    using Warning_listener = std::function<void(const std::string&)>;

    // Parameters are read from `iface`, which outlives the registry; with null, from
    // `VarIdDataInfStore::m_pDataAccessInf` as it stands at each evaluation.
    explicit Binding_registry(Data_interface* iface = nullptr);
    ~Binding_registry();
    Binding_registry(const Binding_registry&) = delete;
    Binding_registry& operator=(const Binding_registry&) = delete;

    // Compiles rules such as "visible if [gain] > 3; range 0..[limit] if [102] == 1": docs/bindings.md has the
    // language. `own_type` is the type of the entry's own value: INTEGER, STRING, or INVALID_TYPE for an entry
    // without one. The first error ends the work. A list is complete in itself: it depends on no registry.
    Compile_result compile(std::string_view source, RETURN_TYPE own_type = INTEGER);

    // The names and types that texts may use; declare them before compiling.
    Parameter_table& parameters() { return m_parameters; }

    // Null only when neither the registry nor the process has an interface.
    Data_interface* interface() const;

    // Called with each warning that an engine shows. Without one, warnings are dropped.
    void set_warning_listener(Warning_listener listener);
    void show_warning(const std::string& text) const;

    // Every referenced parameter with the entries that depend on it; lives as long as the registry.
    var_index_map_t* var_index_map() { return &m_var_index_map; }

    // For engines. `add_dependant` yields false when the entry is listed already.
    bool add_dependant(const var_index_s& key, Data_entry* entry);
    void remove_dependant(const var_index_s& key, Data_entry* entry);

private:
    Data_interface* m_interface;
    Warning_listener m_warning_listener;
    Parameter_table m_parameters;
    std::unique_ptr<binding_language::Compiler> m_compiler;
    var_index_map_t m_var_index_map;
};

#endif
