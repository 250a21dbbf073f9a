#include <frontpanel_menu/mounted_menu.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/json_value.h>
#include "file/item_builder.h"

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

Wanted_value value_of(const Json_value::Member& member, const Parameter_table& parameters) {
    const Parameter* const parameter = parameters.find_reference(member.name);
    if (parameter == nullptr) {
        throw Placed_error(member.place, no_parameter(parameters, member.name));
    }
    Wanted_value wanted{{parameter->pid, varidx_of(parameter->index)}, {}};
    wanted.value.rt = parameter->type;
    if (parameter->type == INTEGER) {
        wanted.value.i = static_cast<int>(member.value.integer(parameter->min, parameter->max));
    } else {
        wanted.value.s = member.value.shown_text_of_length(0, parameter->length);
    }
    return wanted;
}

// All of a preset's values, or an error with all that is wrong: none is used of a preset of which one is wrong.
std::vector<Wanted_value> read_preset(const std::string& file, const Parameter_table& parameters) {
    const Source source{file, 0};
    Problems problems;
    const Json_document document(source, read_input_file(file, LARGEST_PRESET));
    std::vector<Wanted_value> values;
    problems.attempt([&] {
        for (const Json_value::Member& member : Json_value(document.root(), problems).members()) {
            problems.attempt([&] { values.push_back(value_of(member, parameters)); });
        }
    });
    if (problems.error_count() > 0) {
        throw Input_errors(problems.errors());
    }
    return values;
}

// The values of a preset, or nothing: what is wrong is then added to `mistakes`, one line each.
std::optional<std::vector<Wanted_value>> usable_preset(const std::string& file,
                                                       const Parameter_table& parameters,
                                                       std::vector<std::string>& mistakes) {
    try {
        return read_preset(file, parameters);
    } catch (const Input_errors& errors) {
        mistakes.insert(mistakes.end(), errors.lines().begin(), errors.lines().end());
    } catch (const Input_error& error) {
        mistakes.emplace_back(error.what());
    }
    return std::nullopt;
}

std::string shown_stem(const fs::path& file) {
    std::string name = file.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c < ' ' || c > '~' || c == ':'; }, '?');
    return name.empty() ? "?" : name;
}

}  // namespace

Preset::Preset(const std::string& name, const std::optional<std::vector<Wanted_value>>& values,
               Preset_damage damage, Write_gate& gate)
    : Enum_entry(name.c_str(), name.c_str(), PID_NONE, &NO_INDEX, KEEP, values ? LOAD : KEEP, KEEP,
                 values ? usable : unusable, values ? 2U : 1U, nullptr,
                 values ? READ_WRITE : READ_ONLY, VISIBLE_ALL, true, SHORTCUT_NONE, nullptr,
                 nullptr, nullptr, nullptr, nullptr, nullptr),
      m_values(values.value_or(std::vector<Wanted_value>())),
      m_damage(std::move(damage)),
      m_gate(gate) {}

int Preset::Refresh(Data_interface* /*iface*/, bool /*eval_binding*/) {
    return OK;
}

bool Preset::is_chosen() {
    return Get_integer() == LOAD;
}

void Preset::wait() {
    constexpr int WAITING = KEEP;
    Set_value(&WAITING, sizeof WAITING);
}

int Preset::Commit(Data_interface* /*iface*/) {
    const bool loads = is_chosen();
    wait();
    const bool is_loaded =
        !loads || m_gate.write(m_values, Write_gate::Hidden_items::ACCEPTED).result ==
                      Write_gate::Result::WRITTEN;
    return is_loaded ? OK : ERROR;
}

Preset* preset_of(Data_entry& entry) {
    return entry.Get_entry_type() == Data_entry::ENUM_LEAF ? dynamic_cast<Preset*>(&entry)
                                                           : nullptr;
}

int Mount_node::isVisible(bool if_control_refresh, Data_interface* iface) {
    if (if_control_refresh) {
        Refresh(iface, true);
    }
    const bool is_allowed = cached_option_vis >= 0 && Get_bind_vis() >= 0;
    const int visible = is_allowed ? Get_visible() : int{VIS_FALSE};
    Set_entry_visible(visible);
    return visible;
}

std::string Mounted_menu::folder_of(const Place& place, const std::string& folder) {
    return (fs::path(place.source->name).parent_path() / folder).string();
}

std::vector<std::string> Mounted_menu::files_in(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        if (file->path().extension() == EXTENSION && file->is_regular_file(error)) {
            files.push_back(file->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    files.resize(std::min(files.size(), MOST_PRESETS));
    return files;
}

Mounted_menu::Mounted_menu(std::string folder, const Parameter_table& parameters, Write_gate& gate)
    : m_folder(std::move(folder)), m_parameters(parameters), m_gate(gate) {}

Data_entry* Mounted_menu::build(Data_entry& parent) {
    destroy();
    m_problems.clear();
    for (const fs::path file : files_in(m_folder)) {
        const size_t before = m_problems.size();
        auto values = usable_preset(file.string(), m_parameters, m_problems);
        Preset_damage damage;
        if (!values) {
            damage = {m_problems[before], file.parent_path().string().size() + 1};
        }
        m_presets.push_back(
            std::make_unique<Preset>(shown_stem(file), values, std::move(damage), m_gate));
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

std::vector<std::string> Mounted_menu::mistakes() const {
    std::vector<std::string> mistakes;
    for (const std::string& file : files_in(m_folder)) {
        usable_preset(file, m_parameters, mistakes);
    }
    return mistakes;
}

}  // namespace frontpanel
