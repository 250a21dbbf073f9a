#include "file/item_rules.h"

#include <algorithm>

#include <frontpanel_binding/rule_kind.h>
#include <frontpanel_menu/entry_kind.h>
#include "file/item_members.h"

namespace frontpanel {
namespace {

// "line 2, column 7: ", counted from 1.
std::string place_within(const std::string& text, size_t offset) {
    const size_t end_before = text.rfind('\n', offset - 1);
    const size_t begin = offset == 0 || end_before == std::string::npos ? 0 : end_before + 1;
    const auto line = std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(begin), '\n');
    return "line " + std::to_string(line + 1) + ", column " + std::to_string(offset - begin + 1) +
           ": ";
}

// The rules of an item. A text may hold thousands of mistakes, so it is copied once for all of them.
struct Rule_source {
    explicit Rule_source(const Json_value& written)
        : value(written),
          text(written.text_with_lines()),
          stands_in_file(text.find('\n') == std::string::npos && written.place().copy == nullptr) {}

    Json_value value;
    std::string text;
    bool stands_in_file;  // whether a place in the rules is one of the file
};

// An error in rules on one line of the file has its place there; in longer rules it has the line of the rules.
[[noreturn]] void fail_in(const Rule_source& source, size_t offset, const std::string& message) {
    if (source.stands_in_file) {
        throw Placed_error(source.value.place_in_text(offset), message);
    }
    source.value.fail(place_within(source.text, offset) + message);
}

[[noreturn]] void fail_in(const Rule_source& source, const Compile_error& error) {
    if (source.stands_in_file) {
        throw Placed_error(source.value.place_in_text(error.column - 1), error.message);
    }
    source.value.fail(error.text());
}

// A place in rules, and the message there: see `fail_in`.
struct Placed_message {
    Place place;
    std::string message;
};

Placed_message placed_in(const Rule_source& source, const Compile_error& warning) {
    return source.stands_in_file
               ? Placed_message{source.value.place_in_text(warning.column - 1), warning.message}
               : Placed_message{source.value.place(), warning.text()};
}

void warn_in(const Rule_source& source, const Compile_error& warning, Problems& problems) {
    const Placed_message placed = placed_in(source, warning);
    problems.warn(placed.place, placed.message);
}

void warn_in(const Rule_source& source, size_t offset, const std::string& message,
             Problems& problems) {
    if (source.stands_in_file) {
        problems.warn(source.value.place_in_text(offset), message);
    } else {
        source.value.warn(place_within(source.text, offset) + message);
    }
}

std::string interval_text(int low, int high) {
    return low == high ? std::to_string(low) : std::to_string(low) + ".." + std::to_string(high);
}

// The entries that rules are for, as errors have it; null when they are for this one.
const char* misfit(Rule_entries entries, const Entry_kind& kind) {
    switch (entries) {
        case Rule_entries::ALL:
            break;
        case Rule_entries::WITH_VALUE:
            return kind.has(Entry_kind::HAS_VALUE) ? nullptr : "items that have a value";
        case Rule_entries::RANGES:
            return kind.has(Entry_kind::IS_NUMBER) ? nullptr : "items of type \"range\"";
        case Rule_entries::ENUMERATIONS:
            return kind.has(Entry_kind::HAS_KEYS) ? nullptr : "items of type \"enum\"";
    }
    return nullptr;
}

// A name that is unknown because its declaration is wrong was reported there.
void report_in(Load_context& context, const Rule_source& source,
               const std::vector<Compile_error>& errors) {
    for (const Compile_error& error : errors) {
        context.problems.attempt([&] {
            if (!error.unknown_name.empty()) {
                (void)context.device.parameter(error.unknown_name);
            }
            fail_in(source, error);
        });
    }
}

void check_rule_parameter(const Load_context& context, const Rule_source& source,
                          const Named_parameter& named) {
    const var_index_s& key = named.key;
    const Parameter* const parameter = context.device.parameter(key.var, key.index);
    if (parameter == nullptr) {
        fail_in(source, named.offset,
                "the device has no parameter " + std::to_string(key.var) + " with this index");
    }
    if (parameter->type != key.rt) {
        fail_in(source, named.offset,
                "parameter " + std::to_string(key.var) + " is of another type");
    }
}

// The ends of a range are cut to those of the entry, so that one may be beyond them; a key that no choice has
// is a mistake.
void check_interval(const Rule_source& source, const Rule_note& note, Bounds bounds) {
    const auto [low, high] = *note.numbers;
    const bool is_key = note.kind == SUGGESTION_KEYS;
    if (high < bounds.min || low > bounds.max || (is_key && high > bounds.max)) {
        const std::string what = (is_key ? "keys " : "range ") + interval_text(low, high);
        fail_in(source, note.offset,
                is_key ? what + ": the choices are " + interval_text(bounds.min, bounds.max)
                       : what + " holds no value from " + std::to_string(bounds.min) + " to " +
                             std::to_string(bounds.max));
    }
}

void check_written_value(const Load_context& context, const Rule_source& source,
                         const Rule_note& note) {
    const var_index_s& key = note.written;
    const Parameter* const parameter = context.device.parameter(key.var, key.index);
    if (parameter == nullptr || parameter->type != key.rt) {
        return;  // reported where it is named
    }
    if (note.numbers &&
        (note.numbers->first < parameter->min || note.numbers->first > parameter->max)) {
        fail_in(source, note.offset,
                "parameter " + std::to_string(key.var) + " holds " +
                    std::to_string(parameter->min) + " to " + std::to_string(parameter->max) +
                    ", not " + std::to_string(note.numbers->first));
    }
    if (note.text_length && *note.text_length > parameter->length) {
        fail_in(source, note.offset,
                "parameter " + std::to_string(key.var) + " holds texts of at most " +
                    std::to_string(parameter->length) + " characters, not " +
                    std::to_string(*note.text_length));
    }
}

// Limits of an entry's own value are for rules of ranges and keys, which the user sees.
void warn_of_own_target(const Rule_source& source, const Rule_note& note, const Data_entry& entry,
                        Problems& problems) {
    const bool is_own = entry.Get_index() != nullptr && note.written.var == entry.Get_pid() &&
                        varidx_of(note.written.index) == varidx_of(*entry.Get_index());
    if (is_own) {
        warn_in(source, note.offset, "this rule sets the parameter of its own item", problems);
    }
}

// A product that has an option brings it, or the file declares it with 0.
void warn_of_options(const Load_context& context, const Rule_source& source,
                     const std::vector<Named_option>& options) {
    const Option_names& names = context.options.names();
    for (const Named_option& option : options) {
        if (!names.knows(option.name)) {
            warn_in(
                source, option.offset,
                "no product option \"" + option.name + "\" is declared" + names.hint(option.name),
                context.problems);
        }
    }
}

std::pair<int32_t, int32_t> own_bounds_of(const Load_context& context, const Data_entry& entry) {
    const Parameter any{};
    const Parameter* const own =
        entry.Get_index() == nullptr
            ? nullptr
            : context.menu.parameters().find(entry.Get_pid(), *entry.Get_index());
    return own == nullptr ? std::pair(any.min, any.max) : std::pair(own->min, own->max);
}

// Reports a rule without effect on the entry, and values that the entry or the parameter cannot have.
void check_rule(const Load_context& context, const Rule_source& source, const Rule_note& note,
                const Data_entry& entry, std::optional<Bounds> bounds) {
    const Entry_kind& kind = kind_of(entry);
    if (const char* const others = misfit(rule_entries(note.kind), kind)) {
        fail_in(source, note.offset,
                "\"" + std::string(rule_word(note.kind)) + "\" is for " + others);
    }
    if (note.kind == SUGGESTION_KEYS && !kind.has(Entry_kind::IS_FETCHED)) {
        const auto& choices = static_cast<const Enum_entry&>(entry);
        bounds = Bounds{0, static_cast<int>(choices.Get_size_enum()) - 1};
    }
    if (note.kind == SUGGESTION_SET) {
        check_written_value(context, source, note);
        warn_of_own_target(source, note, entry, context.problems);
    } else if (bounds && note.numbers) {
        check_interval(source, note, *bounds);
    }
}

// A reading beyond a limit would be replaced by the limit, on the display and in the device, although the item is
// read-only.
void warn_of_limited_reading(const Rule_source& source, const std::vector<Rule_note>& notes,
                             const Data_entry& entry, Problems& problems) {
    const auto of_kind = [&notes](Suggestion_kind kind) {
        return std::find_if(notes.begin(), notes.end(),
                            [kind](const Rule_note& note) { return note.kind == kind; });
    };
    const auto range = of_kind(SUGGESTION_RANGE);
    if (entry.Get_orig_access_type() != Data_entry::READ_ONLY || range == notes.end() ||
        of_kind(SUGGESTION_ACCESS) != notes.end()) {
        return;
    }
    warn_in(
        source, range->offset,
        "the item is only shown, but a value beyond the range would be written, and shown, as its end",
        problems);
}

// The places of the rules, for faults while the menu is used: the document no longer exists then.
Rule_places places_of(Load_context& context, const Rule_source& source,
                      const std::vector<size_t>& offsets) {
    const Place& whole = source.value.place();
    std::shared_ptr<const std::string>& name = context.file_names[whole.source];
    if (name == nullptr) {
        name = std::make_shared<const std::string>(whole.source->name);
    }
    Rule_places places{name, {}, source.stands_in_file};
    places.rules.reserve(offsets.size());
    for (const Place& place : places.is_exact ? source.value.places_in_text(offsets)
                                              : std::vector<Place>(offsets.size(), whole)) {
        places.rules.push_back({place.line, place.column});
    }
    return places;
}

void note_constants(Built_menu& built, const Rule_source& source,
                    const std::vector<Constant_condition>& constants) {
    built.condition_texts.push_back(source.value.place());
    for (const Constant_condition& constant : constants) {
        const Placed_message placed = placed_in(source, constant.warning);
        built.constants.push_back({source.value, constant.rule, constant.number, constant.is_true,
                                   placed.message, placed.place});
    }
}

}  // namespace

// The engine gets all it needs before the entry takes it over.
void bind(Load_context& context, const Json_value& item, Data_entry& entry,
          std::optional<Bounds> bounds) {
    const std::optional<Json_value> written = item.find(member::BINDING);
    if (!written) {
        return;
    }
    context.problems.attempt([&] {
        const Rule_source source(*written);
        const Compile_result compiled = context.menu.bindings()->compile(
            source.text, entry.Get_return_type_int_or_string(), own_bounds_of(context, entry));
        context.work.take(written->place(), Work_budget::RULES_COST + compiled.parameters.size());
        if (!compiled.ok()) {
            report_in(context, source, compiled.errors);
            return;
        }
        for (const Compile_error& warning : compiled.warnings) {
            warn_in(source, warning, context.problems);
        }
        warn_of_options(context, source, compiled.options);
        note_constants(context.built, source, compiled.constants);
        auto binding = std::make_unique<Expression_binding>(context.menu.bindings());
        binding->addBindingList(compiled.list);
        binding->set_rule_places(places_of(context, source, compiled.rule_offsets));
        if (bounds) {
            binding->set_fallback_range(bounds->min, bounds->max);
        }
        entry.Set_binding_object(binding.release());
        context.built.rules.emplace(&entry, written->place());
        for (const Named_parameter& parameter : compiled.parameters) {
            context.problems.attempt([&] { check_rule_parameter(context, source, parameter); });
        }
        warn_of_limited_reading(source, compiled.notes, entry, context.problems);
        for (const Rule_note& note : compiled.notes) {
            if (note.kind == SUGGESTION_VISIBILITY) {
                context.built.conditional.insert(&entry);
            }
            context.problems.attempt([&] { check_rule(context, source, note, entry, bounds); });
        }
    });
}

Toggle_result compile_condition(Load_context& context, const Json_value& written) {
    const Rule_source source(written);
    Toggle_result toggle = context.menu.bindings()->compile_toggle(written.text());
    if (toggle.error) {
        if (!toggle.error->unknown_name.empty()) {
            (void)context.device.parameter(toggle.error->unknown_name);
        }
        fail_in(source, *toggle.error);
    }
    for (const Compile_error& warning : toggle.warnings) {
        warn_in(source, warning, context.problems);
    }
    warn_of_options(context, source, toggle.options);
    note_constants(context.built, source, toggle.constants);
    for (const Named_parameter& parameter : toggle.parameters) {
        check_rule_parameter(context, source, parameter);
    }
    return toggle;
}

}  // namespace frontpanel
