#include <frontpanel_menu/mounted_menu.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/json_value.h>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr size_t MOST_PRESETS = 200;
constexpr size_t LARGEST_PRESET =
    size_t{64} * 1024;  // bytes: all are read when the menu is entered
constexpr const char* EXTENSION = ".json";
constexpr int KEEP = 0;
constexpr int LOAD = 1;

// The texts of an entry of one option or two; an entry neither changes nor frees them.
char waiting_text[] = "-";
char load_text[] = "load";
char damaged_text[] = "damaged";
char* usable[] = {waiting_text, load_text};
char* unusable[] = {damaged_text};

const Index_t NO_INDEX{};

struct Value {
    const Parameter* parameter;
    int number;
    std::string text;
};

Value value_of(const Json_value::Member& member, const Parameter_table& parameters) {
    const Parameter* const parameter = parameters.find_reference(member.name);
    if (parameter == nullptr) {
        throw Placed_error(member.place, "the device has no parameter \"" + member.name + "\"");
    }
    if (parameter->type == INTEGER) {
        return {parameter, static_cast<int>(member.value.integer(parameter->min, parameter->max)),
                ""};
    }
    return {parameter, 0, member.value.text_of_length(0, parameter->length)};
}

// All of a preset's values, or an error: none is used of a preset of which one is wrong.
std::vector<Value> read_preset(const std::string& file, const Parameter_table& parameters) {
    const Source source{file, 0};
    Problems problems;
    const Json_document document(source, read_input_file(file, LARGEST_PRESET));
    std::vector<Value> values;
    for (const Json_value::Member& member : Json_value(document.root(), problems).members()) {
        values.push_back(value_of(member, parameters));
    }
    if (problems.error_count() > 0) {
        throw Input_errors(problems.errors());
    }
    return values;
}

std::vector<fs::path> files_in(const std::string& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        if (file->path().extension() == EXTENSION && file->is_regular_file(error)) {
            files.push_back(file->path());
        }
    }
    std::sort(files.begin(), files.end());
    files.resize(std::min(files.size(), MOST_PRESETS));
    return files;
}

std::string shown_stem(const fs::path& file) {
    std::string name = file.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c < ' ' || c > '~' || c == ':'; }, '?');
    return name.empty() ? "?" : name;
}

// Shows that it can be loaded, and writes its values when that is committed.
class Preset : public Enum_entry {
public:
    Preset(const std::string& name, const std::optional<std::vector<Value>>& values,
           Binding_registry& bindings)
        : Enum_entry(name.c_str(), name.c_str(), PID_NONE, &NO_INDEX, KEEP, values ? LOAD : KEEP,
                     KEEP, values ? usable : unusable, values ? 2U : 1U, nullptr,
                     values ? READ_WRITE : READ_ONLY, VISIBLE_ALL, true, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr, nullptr, nullptr, nullptr),
          m_values(values.value_or(std::vector<Value>())),
          m_bindings(bindings) {}

    // No parameter stands behind the entry.
    int Refresh(Data_interface* /*iface*/, bool /*eval_binding*/) override { return OK; }
    using Enum_entry::Commit;
    int Commit(Data_interface* iface) override {
        const int result = Get_integer() == LOAD ? load(*iface) : int{OK};
        constexpr int WAITING = KEEP;
        Set_value(&WAITING, sizeof WAITING);
        return result;
    }

private:
    int load(Data_interface& iface) {
        for (const Value& value : m_values) {
            if (write(iface, value) != 0) {
                return ERROR;
            }
            refresh_dependants(iface, *value.parameter);
        }
        return OK;
    }
    static int write(Data_interface& iface, const Value& value) {
        const Parameter& parameter = *value.parameter;
        const bool is_number = parameter.type == INTEGER;
        return iface.Set(parameter.pid, varidx_of(parameter.index),
                         is_number ? static_cast<const void*>(&value.number) : value.text.c_str(),
                         is_number ? static_cast<unsigned int>(sizeof value.number)
                                   : static_cast<unsigned int>(value.text.size()));
    }
    void refresh_dependants(Data_interface& iface, const Parameter& parameter) {
        const auto record = m_bindings.var_index_map()->find(parameter.key());
        if (record == m_bindings.var_index_map()->end()) {
            return;
        }
        const std::vector<Data_entry*> dependants = record->second.binding_dependant_entries;
        for (Data_entry* const dependant : dependants) {
            EntryTypeSpecificOperation(dependant, &iface, nullptr, true, OPERATION_REFRESH,
                                       nullptr);
        }
    }

    std::vector<Value> m_values;
    Binding_registry& m_bindings;
};

}  // namespace

int Mount_node::isVisible(bool if_control_refresh, Data_interface* iface) {
    if (if_control_refresh) {
        Refresh(iface, true);
    }
    const bool is_allowed = cached_option_vis >= 0 && Get_bind_vis() >= 0;
    const int visible = is_allowed ? Get_visible() : int{VIS_FALSE};
    Set_entry_visible(visible);
    return visible;
}

Mounted_menu::Mounted_menu(std::string folder, const Parameter_table& parameters,
                           Binding_registry& bindings)
    : m_folder(std::move(folder)), m_parameters(parameters), m_bindings(bindings) {}

Data_entry* Mounted_menu::build(Data_entry& parent) {
    destroy();
    m_problems.clear();
    for (const fs::path& file : files_in(m_folder)) {
        std::optional<std::vector<Value>> values;
        try {
            values = read_preset(file.string(), m_parameters);
        } catch (const Input_error& error) {
            m_problems.emplace_back(error.what());
        }
        m_presets.push_back(std::make_unique<Preset>(shown_stem(file), values, m_bindings));
    }
    Data_entry* last = nullptr;
    for (const std::unique_ptr<Data_entry>& preset : m_presets) {
        preset->Set_parent(&parent);
        preset->Set_previous(last);
        if (last != nullptr) {
            last->Set_next(preset.get());
        }
        last = preset.get();
    }
    return m_presets.empty() ? nullptr : m_presets.front().get();
}

}  // namespace frontpanel
