#include <frontpanel_data/range_entry.h>

#include <frontpanel_data/binding.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "../assertion.h"
#include "../diagnostics.h"
#include "../marquee.h"
#include "dependants.h"
#include "option_test.h"
#include "range_display.h"

namespace {

constexpr int LOWEST = std::numeric_limits<int>::min();
constexpr int HIGHEST = std::numeric_limits<int>::max();

int saturated(int64_t value) {
    return static_cast<int>(std::clamp<int64_t>(value, LOWEST, HIGHEST));
}

int last_of(const range_s& range) {
    return saturated(int64_t{range.max_exclusive} - 1);
}

int distance(int left, int right) {
    const int64_t difference = int64_t{left} - right;
    return saturated(difference < 0 ? -difference : difference);
}

class Lock {
public:
    explicit Lock(JMutex& mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    ~Lock() { m_mutex.Unlock(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    JMutex& m_mutex;
};

// The bounds that a list of ranges spans; without any, no value lies between them.
struct Span {
    int min = HIGHEST;
    int max = LOWEST;

    void include(const range_s& range) {
        min = std::min(min, range.min_inclusive);
        max = std::max(max, last_of(range));
    }
};

range_s half_open(int one_end, int other_end) {
    const auto [lesser, greater] = std::minmax(one_end, other_end);
    return {lesser, saturated(int64_t{greater} + 1), {}};
}

bool are_disjoint(const range_s& allowed, const range_s& suggested) {
    return (allowed.min_inclusive >= suggested.min_inclusive &&
            allowed.min_inclusive >= suggested.max_exclusive) ||
           (suggested.min_inclusive >= allowed.max_exclusive &&
            allowed.max_exclusive <= suggested.max_exclusive);
}

range_s intersection(const range_s& allowed, const range_s& suggested) {
    return {std::max(allowed.min_inclusive, suggested.min_inclusive),
            std::min(allowed.max_exclusive, suggested.max_exclusive),
            {}};
}

std::string report(const range_s& range) {
    std::string text =
        " [" + std::to_string(range.min_inclusive) + ", " + std::to_string(last_of(range)) + "] ";
    if (!range.options.empty()) {
        text += "options:";
    }
    for (const std::string& option : range.options)
        text += option + " ";
    return text;
}

// Whether a range bound lies beyond the wanted value in the direction of the move.
bool lies_ahead(int bound, int old_value, int new_value) {
    return new_value > old_value ? bound > new_value : bound < new_value;
}

}  // namespace

Range_entry::Range_entry(const char* name, const char* description, unsigned int pid,
                         const Index_t* index, int min, int max, int default_value, char* fmt,
                         char* val_fmt, Data_entry* parent, Data_access access, int visible,
                         bool active, int shortcut, Data_entry* next, Data_entry* previous,
                         Data_entry* child)
    : Data_entry(name, description, pid, index, visible, shortcut, next, previous, parent, child),
      m_model(pid, index, min, max, default_value),
      m_active(active),
      m_min(min),
      m_max(max),
      m_min_from_constructor(min),
      m_max_from_constructor(max),
      m_final_value(default_value),
      m_scroll_offset(0),
      m_scroll_delay(marquee::HOLD_CALLS),
      optionMinAndMaxProcessed(false) {
    FRONTPANEL_ASSERT(fmt && val_fmt, "fmt&&val_fmt");
    display_format = fmt;
    display_value_format = val_fmt;
    Data_entry::Set_access_type(access);
    min_max_mutex.Init();
}

Range_entry::~Range_entry() = default;

std::string Range_entry::getProperties(int flags) {
    std::string text = Data_entry::getProperties(flags);
    updateRange();
    text += "range={ ";
    for (const range_s& range : valid_ranges_and_values_ANDED)
        text += report(range);
    return text + "}";
}

Data_entry::Entry_type Range_entry::Get_entry_type() const {
    return RANGE_LEAF;
}

RETURN_TYPE Range_entry::Get_return_type_int_or_string() const {
    return INTEGER;
}

bool Range_entry::Is_active() const {
    return m_active && m_model.Is_active();
}

int Range_entry::Get_value(void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    int value = 0;
    int result = m_model.Get(&value, sizeof value);
    if (result == OK) {
        const Lock lock(min_max_mutex);
        if (value < m_min || value > m_max) result = OUT_OF_RANGE;
    }
    std::memcpy(buffer, &value, std::min<std::size_t>(length, sizeof value));
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_value", "Returning range value [%d]. \n", value);
    return result;
}

int Range_entry::Set_value(const void* buffer, unsigned int length) {
    if (Data_entry::Set_value(buffer, length) != OK) {
        return ERROR;
    }
    // The model copies as many bytes as it is given: a longer value would overwrite its bounds.
    return m_model.Set(buffer, std::min<unsigned int>(length, sizeof(int)));
}

int Range_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    if (const int result = m_model.Refresh(pDataAccessInf); result != OK) {
        return result;
    }
    Data_entry::Refresh(pDataAccessInf, eval_binding);
    updateRange();
    int value = 0;
    if (Get_value(&value, sizeof value) != OUT_OF_RANGE) {
        return OK;
    }
    return correct_value(value, pDataAccessInf);
}

// The device must not keep a value that the menu cannot show as chosen.
int Range_entry::correct_value(int value, Data_interface* pDataAccessInf) {
    const int stored = value;
    Span allowed;
    {
        const Lock lock(min_max_mutex);
        allowed = {m_min, m_max};
    }
    value = stored > allowed.max ? allowed.max : allowed.min;
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh",
              "Value stored on product[%d] is not in range [%d,%d]. "
              "Setting/Commiting product to the value [%d]\n",
              stored, allowed.min, allowed.max, value);
    Set_value(&value, sizeof value);
    Commit(pDataAccessInf);
    return ERROR;
}

int Range_entry::Inc_value(int value, int position) {
    return m_model.Inc_value(value, position);
}

int Range_entry::Get_final_value() {
    return m_final_value;
}

void Range_entry::Set_final_value(int value) {
    m_final_value = value;
}

int Range_entry::Get_display_string(char* buffer, unsigned int length, bool use_override,
                                    int override_value) {
    FRONTPANEL_ASSERT(buffer, "buffer");
    if (length < 2) {
        return ERROR;
    }
    int value = override_value;
    if (!use_override) {
        if (const int result = Get_value(&value, sizeof value); result != OK) {
            return result;
        }
    }
    range_display::Storage storage;
    const std::string_view text =
        range_display::text_of(value, display_format, display_value_format, length, storage);
    // Intended: a text that fills the line exactly scrolls, since editors keep the last position for a mark.
    if (text.size() >= length) {
        marquee::show(buffer, length, text.data(), text.size(), m_scroll_offset, m_scroll_delay);
        return OK;
    }
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return OK;
}

int Range_entry::Get_display_string(char* buffer, unsigned int length, int override_value) {
    return Get_display_string(buffer, length, true, override_value);
}

int Range_entry::Commit(Data_interface* pDataAccessInf) {
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Commit", "Calling m_model commit...\n");
    const int result = m_model.Commit(pDataAccessInf);
    dependants::refresh(
        *this, binding, pDataAccessInf,
        {"Commit", __FILE_NAME__,
         diagnostics::place<diagnostics::Prefix::FUNCTION_FIRST, diagnostics::GENERAL>(__LINE__),
         true, true, true});
    return result;
}

int Range_entry::Get_min() {
    const Lock lock(min_max_mutex);
    return m_min;
}

int Range_entry::Get_max() {
    const Lock lock(min_max_mutex);
    return m_max;
}

int Range_entry::setValidRangeAndValues(std::vector<range_s> ranges) {
    valid_ranges_and_values = std::move(ranges);
    valid_ranges_and_values_ANDED = std::vector<range_s>(valid_ranges_and_values);
    evaluateOptions();
    return updateRange();
}

int Range_entry::evaluateOptions() {
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "evaluateOptions",
              "Range Control Option: ranges before [%d]\n",
              static_cast<int>(valid_ranges_and_values.size()));
    std::vector<range_s> allowed;
    allowed.reserve(valid_ranges_and_values.size());
    Span span;
    for (const range_s& range : valid_ranges_and_values) {
        if (!is_allowed_by_options(range)) {
            continue;
        }
        allowed.push_back(range);
        span.include(range);
    }
    m_min = span.min;
    m_max = span.max;
    // Every number of a menu has such a list, so unused capacity is released.
    if (allowed.capacity() != allowed.size()) {
        allowed = std::vector<range_s>(allowed);
    }
    const std::size_t before = valid_ranges_and_values.size();
    if (allowed.size() != before || valid_ranges_and_values.capacity() != before) {
        valid_ranges_and_values = std::vector<range_s>(allowed);
    }
    valid_ranges_and_values_ANDED = std::move(allowed);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "evaluateOptions",
              "Range Control Option: ranges after [%d]\n",
              static_cast<int>(valid_ranges_and_values.size()));
    return OK;
}

bool Range_entry::is_allowed_by_options(const range_s& range) {
    const int min = range.min_inclusive;
    if (range.options.empty()) {
        LEAF_LINE(GENERAL, NONE, "evaluateOptions", "Saving range.min[%d] range.max[%d]\n", min,
                  last_of(range));
        return true;
    }
    for (const std::string& option : range.options) {
        switch (option_test::judge(isOptionStatic(option, false))) {
            case option_test::Verdict::VALUE_ZERO:
                LEAF_LINE(GENERAL, NONE, "evaluateOptions",
                          "Range option [%s], is not considered because its true value is zero\n",
                          option.c_str());
                break;
            case option_test::Verdict::UNDECIDED:
                LEAF_LINE(GENERAL, NONE, "evaluateOptions",
                          "Range option [%s], for range [%d,%d] will not be considered for range "
                          "changes for [%s]\n",
                          option.c_str(), min, last_of(range), Get_name());
                break;
            case option_test::Verdict::STATIC_HOLDS:
            case option_test::Verdict::DYNAMIC_HOLDS:
                LEAF_LINE(GENERAL, NONE, "evaluateOptions",
                          "pushing back range...line[%d] [%d, %d)\n", __LINE__, min,
                          range.max_exclusive);
                return true;
            case option_test::Verdict::DYNAMIC_FAILS:
                LEAF_LINE(GENERAL, NONE, "evaluateOptions",
                          "need another option (not [%s]) to make it valid...line[%d] [%d, %d)\n",
                          option.c_str(), __LINE__, min, range.max_exclusive);
                break;
            case option_test::Verdict::UNKNOWN:
                break;
        }
    }
    return false;
}

int Range_entry::updateRange() {
    const std::vector<range_s> suggestions = getBindingRange();
    if (suggestions.empty()) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "updateRange",
                  "No bindings, so the total range stays the way it is. m_min[%d] m_max[%d] "
                  "entry[%s]\n",
                  m_min, m_max, Get_name());
        return OK;
    }
    valid_ranges_and_values_ANDED.clear();
    Span span;
    for (const range_s& suggested : suggestions) {
        for (const range_s& allowed : valid_ranges_and_values) {
            if (are_disjoint(allowed, suggested)) {
                continue;
            }
            const range_s common = intersection(allowed, suggested);
            // Intended: the line shows the inclusive end in front of its bracket.
            LEAF_LINE(GENERAL, FUNCTION_FIRST, "updateRange",
                      "Adding a chopped/extended range to total range: [%d, %d)\n",
                      common.min_inclusive, last_of(common));
            valid_ranges_and_values_ANDED.push_back(common);
            span.include(common);
        }
    }
    {
        // Intended: without a common value the bounds cross, and every value reads as out of range.
        const Lock lock(min_max_mutex);
        m_min = span.min;
        m_max = span.max;
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "updateRange", "final min[%d] max[%d]\n", span.min,
              span.max);
    return OK;
}

std::vector<range_s> Range_entry::getBindingRange() {
    std::vector<range_s> ranges;
    if (binding == nullptr || !binding->suggestionUpdated(SUGGESTION_RANGE)) {
        return ranges;
    }
    std::vector<std::vector<int>> suggestion;
    binding->getSuggestion(SUGGESTION_RANGE, &suggestion);
    for (const std::vector<int>& ends : suggestion) {
        if (ends.size() == 2) {
            ranges.push_back(half_open(ends[0], ends[1]));
            continue;
        }
        // Intended: the number is that of the suggested ranges, which is what a log reader looks up.
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "getBindingRange",
                  "Returned bind_range_controls must be of size two. size[%d] Returning a "
                  "zero-range.\n",
                  static_cast<int>(suggestion.size()));
    }
    binding->clearSuggestion(SUGGESTION_RANGE);
    return ranges;
}

int Range_entry::increment(int old_value, int new_value) {
    updateRange();
    if (new_value > m_max) {
        return m_max;
    }
    if (new_value < m_min) {
        return m_min;
    }
    int closest_allowed_value = new_value;
    for (const range_s& range : valid_ranges_and_values_ANDED) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "increment", "Range or Value: [%d, %d) \n",
                  range.min_inclusive, range.max_exclusive);
        if (range.min_inclusive <= new_value && new_value < range.max_exclusive) {
            LEAF_LINE(GENERAL, NONE, "increment", "return range new_value[%d]\n", new_value);
            return new_value;
        }
        const int compare_value = new_value > old_value ? range.min_inclusive : last_of(range);
        const int candidate = distance(compare_value, new_value);
        const int closest = distance(closest_allowed_value, new_value);
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "increment", "[%d] < [%d] ? \n", candidate, closest);
        // Intended: the search starts at distance 0, so no bound is ever closer and a value in a gap stays.
        // Editors step through gaps one by one and rely on it.
        if (closest > candidate && lies_ahead(compare_value, old_value, new_value)) {
            closest_allowed_value = compare_value;
            LEAF_LINE(GENERAL, FUNCTION_FIRST, "increment", "new closest_allowed_value = [%d]\n",
                      closest_allowed_value);
        }
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "increment", "return closest_allowed_value[%d]\n",
              closest_allowed_value);
    return closest_allowed_value;
}
