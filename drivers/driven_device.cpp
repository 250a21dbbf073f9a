#include <frontpanel_drivers/driven_device.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include <frontpanel_base/json_members.h>
#include <frontpanel_base/nearest_name.h>
#include <frontpanel_base/parameter_declaration.h>
#include <frontpanel_drivers/duration.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t LONGEST_NAME = 32;  // of an instance
constexpr const char* DRIVER = "driver";
constexpr const char* POLL = "poll";
constexpr const char* SOURCE = "source";

std::vector<const char*> with_common_members(std::vector<const char*> members) {
    members.insert(members.end(), {DRIVER, POLL});
    return members;
}

std::uint32_t varidx_of(const std::vector<std::uint16_t>& levels) {
    constexpr unsigned LEVEL_BITS = 8;
    std::uint32_t varidx = 0;
    for (std::size_t level = 0; level < levels.size(); ++level) {
        varidx |= std::uint32_t{levels[level]} << (LEVEL_BITS * level);
    }
    return varidx;
}

// The declared name, or else the address.
std::string name_of(const Json_value& parameter, std::uint32_t pid,
                    const std::vector<std::uint16_t>& levels) {
    const auto name = parameter.find("name");
    if (name && name->is_text()) {
        return name->text();
    }
    std::string address = std::to_string(pid);
    for (const std::uint16_t level : levels) {
        address += "." + std::to_string(level);
    }
    return address;
}

Driver_parameter declaration_of(const Json_value& parameter, Problems& problems) {
    const std::vector<std::uint16_t> levels = levels_of(parameter);
    Driver_parameter declared;
    declared.pid = pid_of(parameter);
    declared.varidx = varidx_of(levels);
    declared.name = name_of(parameter, declared.pid, levels);
    declared.is_text = is_text_parameter(parameter);
    if (declared.is_text) {
        declared.length = text_limit_of(parameter, problems);
    } else {
        const Number_limits limits = number_limits_of(parameter, problems);
        declared.min = limits.min;
        declared.max = limits.max;
    }
    return declared;
}

}  // namespace

bool has_source(const Json_value& parameter) {
    return parameter.is_object() && parameter.find(SOURCE);
}

bool has_sources(const Json_value& file) {
    const auto device = file.is_object() ? file.find("device") : std::nullopt;
    if (!device || !device->is_object()) {
        return false;
    }
    try {
        const std::vector<Json_value> parameters = list_or_none(*device, "parameters");
        return std::any_of(parameters.begin(), parameters.end(), has_source);
    } catch (const Placed_error&) {
        return false;  // the menu reports it
    }
}

class Driven_device::Reader {
public:
    Reader(Driven_device& device, Problems& problems, const Driver_table& table, std::string folder,
           Lacking_drivers lacking)
        : m_device(device),
          m_problems(problems),
          m_table(table),
          m_folder(std::move(folder)),
          m_lacking(lacking) {}

    void read(const Json_value& section) {
        m_problems.attempt([&] { read_drivers(section); });
        m_problems.attempt([&] {
            for (const Json_value& parameter : list_or_none(section, "parameters")) {
                if (has_source(parameter)) {
                    m_problems.attempt([&] { read_parameter(parameter); });
                }
            }
        });
        warn_of_unused_drivers();
    }

private:
    struct Instance {
        Place place{};
        const Driver_row* row = nullptr;  // null: its mistake has been reported
        Driver* driver = nullptr;
        std::size_t number = 0;  // in the cache
        bool is_used = false;
    };

    void read_drivers(const Json_value& section) {
        const auto drivers = section.find("drivers");
        if (!drivers) {
            return;
        }
        const std::vector<Json_value::Member> members = drivers->members();
        if (members.size() > MOST_DRIVERS) {
            drivers->fail("expected at most " + std::to_string(MOST_DRIVERS) + " drivers");
        }
        for (const Json_value::Member& member : members) {
            Instance& instance = m_instances[member.name];
            instance.place = member.place;
            m_problems.attempt([&] { read_driver(member, instance); });
        }
    }

    void read_driver(const Json_value::Member& member, Instance& instance) {
        if (member.name.empty() || member.name.size() > LONGEST_NAME) {
            throw Placed_error(member.place, "expected a name of 1 to " +
                                                 std::to_string(LONGEST_NAME) + " characters");
        }
        const Json_value& options = member.value;
        const Driver_row& row = row_of(options.member(DRIVER), member.name);
        options.expect_members(with_common_members(row.members));
        const milliseconds poll = duration_or(options, POLL, Device_cache::SHORTEST_POLL,
                                              Device_cache::LONGEST_POLL, Device_cache::USUAL_POLL);
        std::unique_ptr<Driver> driver = row.create(options, {member.name, m_folder});
        instance.driver = driver.get();
        m_device.m_drivers.push_back(driver.get());
        instance.number = m_device.m_cache.add_driver(member.name, std::move(driver), poll);
        instance.row = &row;
    }

    // Includes drivers that are left out: a menu that names one has no typing mistake.
    std::vector<const char*> kinds() const {
        std::vector<const char*> names(m_table.size());
        std::transform(m_table.begin(), m_table.end(), names.begin(),
                       [](const Driver_row* row) { return row->name; });
        return names;
    }

    // The row of a kind. Throws when the build lacks it.
    const Driver_row& row_of(const Json_value& kind, const std::string& instance) {
        if (m_lacking == Lacking_drivers::WARNED_OF) {
            expect_row(kind, instance);
        }
        if (m_table.empty()) {
            kind.fail("the program was built without drivers");
        }
        const Driver_row& row = *m_table[kind.choice(kinds())];
        if (row.is_left_out()) {
            kind.fail(std::string("this build lacks the driver \"") + row.name +
                      "\" (build with -D " + row.build_option + "=ON)");
        }
        return row;
    }

    // Warns of a kind that the build lacks, and skips the instance: its members are unknown.
    void expect_row(const Json_value& kind, const std::string& instance) {
        const std::string name = kind.text();
        const auto row = std::find_if(m_table.begin(), m_table.end(),
                                      [&](const Driver_row* one) { return name == one->name; });
        if (row != m_table.end() && !(*row)->is_left_out()) {
            return;
        }
        const std::string hint = row == m_table.end() ? hint_of(name, kinds()) : "";
        kind.warn("this build lacks the driver \"" + name + "\", so what lives at \"" + instance +
                  "\" is not checked" + hint);
        throw Told_already();
    }

    // Which driver is meant need not be said where there is only one.
    Instance& instance_of(const Json_value& source) {
        const auto name = source.find(DRIVER);
        if (!name && m_instances.size() == 1) {
            return m_instances.begin()->second;
        }
        const std::string wanted = name ? name->text() : source.member(DRIVER).text();
        const auto found = m_instances.find(wanted);
        if (found == m_instances.end()) {
            Nearest_name nearest(wanted);
            for (const auto& [known, instance] : m_instances) {
                nearest.offer(known);
            }
            name->fail("no driver is named \"" + wanted + "\"" + nearest.hint());
        }
        return found->second;
    }

    void read_parameter(const Json_value& parameter) {
        const Json_value source = parameter.member(SOURCE);
        Instance& instance = instance_of(source);
        instance.is_used = true;
        if (instance.row == nullptr) {
            throw Told_already();
        }
        source.expect_members(with_common_members(instance.row->source_members));
        std::optional<milliseconds> poll;
        if (const auto own = source.find(POLL)) {
            poll = duration_of(*own, Device_cache::SHORTEST_POLL, Device_cache::LONGEST_POLL);
        }
        const Driver_parameter declared = declaration_of(parameter, m_problems);
        instance.driver->add(source, declared);
        m_device.m_cache.add_parameter(instance.number, declared, poll);
    }

    void warn_of_unused_drivers() {
        for (const auto& [name, instance] : m_instances) {
            if (!instance.is_used && instance.row != nullptr) {
                m_problems.warn(instance.place, "no parameter lives at \"" + name + "\"");
            }
        }
    }

    Driven_device& m_device;
    Problems& m_problems;
    const Driver_table& m_table;
    std::string m_folder;
    Lacking_drivers m_lacking;
    std::map<std::string, Instance> m_instances;
};

Driven_device::Driven_device(const Json_value& file, Problems& problems,
                             const Driver_table& drivers, const std::string& folder,
                             Data_interface& others, Device_cache_settings settings,
                             Lacking_drivers lacking)
    : m_cache(others, std::move(settings)) {
    problems.attempt(
        [&] { Reader(*this, problems, drivers, folder, lacking).read(file.member("device")); });
}

void Driven_device::check(Problems& problems) const {
    for (const Driver* const driver : m_drivers) {
        driver->check(problems);
    }
}

}  // namespace frontpanel
