#include "check/widest_value.h"

#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/value_text.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>

#include <cstdint>
#include <cstdlib>
#include <utility>

#include "file/item_members.h"

namespace frontpanel {
namespace {

// An evaluation is about two microseconds, and longer for a long expression. Without work left only the bounds of a
// number are tried.
constexpr std::size_t MOST_WORK = 100000;
constexpr std::size_t CHARACTERS_OF_WORK = 64;
constexpr int64_t MOST_BETWEEN = 1000;
constexpr std::size_t MOST_ROWS = 1000;

std::string text_or_empty(const Json_value& item, const char* name) {
    const auto found = item.find(name);
    return found ? found->shown_text() : std::string();
}

struct Numbers {
    int64_t min;
    int64_t max;
    std::set<int> values;

    void add(int64_t value) {
        if (value >= min && value <= max) {
            values.insert(static_cast<int>(value));
        }
    }
};

// Where a number has a digit more, and a sign.
void add_powers_of_ten(Numbers& numbers) {
    for (int64_t power = 1; power <= INT32_MAX; power *= 10) {
        for (const int64_t value : {power - 1, power}) {
            numbers.add(value);
            numbers.add(-value);
        }
    }
}

void add_rows(Numbers& numbers, const std::string& format) {
    std::size_t rows = 0;
    for (std::size_t row = 0; rows < MOST_ROWS && format.find(',', row) != std::string::npos;
         ++rows) {
        numbers.add(std::strtoll(format.c_str() + row, nullptr, 10));
        row = format.find(',', row) + 1;
    }
}

void add_between(Numbers& numbers) {
    const int64_t step = (numbers.max - numbers.min) / MOST_BETWEEN + 1;
    for (int64_t value = numbers.min; value <= numbers.max; value += step) {
        numbers.add(value);
    }
}

std::string widest_choice(const Json_value& choices) {
    std::string widest;
    for (const Json_value& choice : choices.items()) {
        const std::string text =
            choice.is_text() ? choice.shown_text() : choice.member("text").shown_text();
        if (width_of(text) > width_of(widest)) {
            widest = text;
        }
    }
    return widest;
}

}  // namespace

const std::string* Widest_values::of(Data_entry& entry, const Json_value& item) {
    if (kind_of(entry).has(Entry_kind::IS_NUMBER)) {
        return &of_number(static_cast<Range_entry&>(entry), item);
    }
    const auto choices = item.find(member::CHOICES);
    return choices ? &*m_choices.insert(widest_choice(*choices)).first : nullptr;
}

const std::string& Widest_values::of_number(Range_entry& number, const Json_value& item) {
    const std::string format = text_or_empty(item, member::FORMAT);
    const std::string conversion = text_or_empty(item, member::VALUE_FORMAT);
    Numbers numbers{number.Get_min(), number.Get_max(), {}};
    const std::string key = std::to_string(numbers.min) + " " + std::to_string(numbers.max) + " " +
                            conversion + '\n' + format;
    if (const auto known = m_known.find(key); known != m_known.end()) {
        return known->second;
    }
    numbers.add(numbers.min);
    numbers.add(numbers.max);
    if (m_work < MOST_WORK && !(format.empty() && conversion.empty())) {
        add_powers_of_ten(numbers);
        add_rows(numbers, format);
        if (!conversion.empty()) {
            add_between(numbers);
        }
    }
    m_work +=
        numbers.values.size() * (1 + (format.size() + conversion.size()) / CHARACTERS_OF_WORK);
    std::string widest;
    for (const int value : numbers.values) {
        const std::string text = value_text(number, value);
        if (width_of(text) > width_of(widest)) {
            widest = text;
        }
    }
    return m_known[key] = std::move(widest);
}

}  // namespace frontpanel
