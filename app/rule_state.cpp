#include "rule_state.h"

#include <vector>

namespace frontpanel {
namespace {

Memory_device::Value value_of(const Done_writes::Write& write) {
    return {write.target.pid, write.target.varidx, write.value.rt, write.value.i, write.value.s};
}

Done_writes::Write write_of(const Memory_device::Value& value) {
    Done_writes::Write write{{value.pid, value.varidx}, {}};
    write.value.rt = value.type;
    write.value.i = value.number;
    write.value.s = value.text;
    return write;
}

}  // namespace

void restore_rules(const State_file& file, Menu& menu) {
    std::vector<Done_writes> done;
    for (const State_file::Rule_writes& rules : file.rule_writes()) {
        Done_writes& known = done.emplace_back(Done_writes{rules.rules, {}});
        for (const Memory_device::Value& value : rules.writes) {
            known.writes.push_back(write_of(value));
        }
    }
    menu.bindings()->set_done_writes(done);
}

bool keep_rules(const Menu& menu, State_file& file) {
    std::vector<State_file::Rule_writes> kept;
    for (const Done_writes& done : menu.bindings()->done_writes()) {
        State_file::Rule_writes& rules = kept.emplace_back();
        rules.rules = done.rules;
        for (const Done_writes::Write& write : done.writes) {
            rules.writes.push_back(value_of(write));
        }
    }
    return file.set_rule_writes(kept);
}

}  // namespace frontpanel
