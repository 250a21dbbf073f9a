#include "engine/done_list.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <frontpanel_binding/parameter_address.h>

#include "engine/engine.h"
#include "engine/suggestions/suggestion_maker.h"

namespace frontpanel::binding_engine {
namespace {

// FNV-1a: the same on every machine and in every version.
class Hash {
public:
    void add(std::string_view text) {
        for (const char byte : text) {
            m_value = (m_value ^ static_cast<unsigned char>(byte)) * PRIME;
        }
        m_value *= PRIME;  // the end of the text counts
    }
    std::string text() const {
        char digits[20];
        std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(m_value));
        return digits;
    }

private:
    static constexpr uint64_t PRIME = 0x100000001B3;
    uint64_t m_value = 0xCBF29CE484222325;
};

// Rules may read their entry's own value, so that its parameter is part of what they say.
std::string name_of_rules(const Engine& engine) {
    Hash hash;
    for (const Bound_list& list : engine.lists()) {
        for (std::size_t number = 0; number < list.program.rule_count(); ++number) {
            if (list.program.kind_of_rule(number) == SUGGESTION_SET) {
                hash.add(list.program.rule(number).source);
            }
        }
    }
    const Cached_parameter* const own = engine.own();
    return (own == nullptr ? "" : std::to_string(own->pid) + "." + std::to_string(own->varidx)) +
           "-" + hash.text();
}

// Does what `visit` says with each engine that has write rules.
template <typename Visit>
void each_writer(const Cascade& cascade, Visit visit) {
    for (const auto& [number, engine] : cascade.engines()) {
        if (Suggestion_maker* const maker = engine->find_maker(SUGGESTION_SET)) {
            visit(*engine, *maker);
        }
    }
}

GetSetS request_of(const Done_writes::Write& write) {
    GetSetS request{};
    request.varid = write.target.pid;
    request.varidx = write.target.varidx;
    request.rt = write.value.rt;
    if (request.rt == STRING) {
        const std::size_t length = std::min(write.value.s.size(), sizeof request.buffer);
        std::copy_n(write.value.s.begin(), length, request.buffer);
        request.length = static_cast<uint32_t>(length);
    } else {
        request.length = sizeof write.value.i;
        std::memcpy(request.buffer, &write.value.i, sizeof write.value.i);
    }
    return request;
}

}  // namespace

return_s value_of(const GetSetS& request) {
    return_s value;
    value.rt = request.rt;
    if (request.rt == STRING) {
        value.s.assign(reinterpret_cast<const char*>(request.buffer), request.length);
    } else {
        std::memcpy(&value.i, request.buffer, sizeof value.i);
    }
    return value;
}

std::vector<Done_writes> done_writes(const Cascade& cascade) {
    std::map<std::string, std::vector<Done_writes::Write>> by_name;
    each_writer(cascade, [&](const Engine& engine, const Suggestion_maker& maker) {
        std::vector<Done_writes::Write>& writes = by_name[name_of_rules(engine)];
        if (!writes.empty()) {
            return;
        }
        for (const GetSetS& request : maker.done()) {
            writes.push_back({{request.varid, request.varidx}, value_of(request)});
        }
    });
    std::vector<Done_writes> all;
    all.reserve(by_name.size());
    for (auto& [name, writes] : by_name) {
        all.push_back({name, std::move(writes)});
    }
    return all;
}

void set_done_writes(const Cascade& cascade, const std::vector<Done_writes>& done) {
    std::map<std::string_view, const Done_writes*> by_name;
    for (const Done_writes& each : done) {
        by_name.emplace(each.rules, &each);
    }
    each_writer(cascade, [&](const Engine& engine, Suggestion_maker& maker) {
        const auto found = by_name.find(name_of_rules(engine));
        std::vector<GetSetS> requests;
        if (found != by_name.end()) {
            for (const Done_writes::Write& write : found->second->writes) {
                requests.push_back(request_of(write));
            }
        }
        maker.set_done(std::move(requests));
    });
}

}  // namespace frontpanel::binding_engine
