#include <frontpanel_editors/number_scale.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <tuple>

namespace frontpanel {
namespace {

constexpr int64_t MOST_SAMPLES = 33;
constexpr int MOST_DECIMALS = 9;

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

// A text around one of its numbers.
struct Parts {
    std::string before;  // without the blanks that fill up a narrow number
    std::string behind;
    std::size_t blanks;  // that fill it up
    std::size_t first;   // digit of the number, and what stands behind the last one
    std::size_t end;
    int decimals;
    double number;
};

// "5-12" holds no negative number.
bool is_sign(const std::string& text, std::size_t at) {
    const bool joins = at > 0 && std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0;
    return (text[at] == '-' || text[at] == '+') && !joins;
}

Parts parts_at(const std::string& text, std::size_t digit) {
    Parts parts{"", "", 0, digit, digit, 0, 0};
    for (; parts.end < text.size() && is_digit(text[parts.end]); ++parts.end) {
        parts.number = parts.number * 10 + (text[parts.end] - '0');
    }
    if (parts.end + 1 < text.size() && text[parts.end] == '.' && is_digit(text[parts.end + 1])) {
        double weight = 1;
        for (++parts.end; parts.end < text.size() && is_digit(text[parts.end]); ++parts.end) {
            weight /= 10;
            parts.number += weight * (text[parts.end] - '0');
            ++parts.decimals;
        }
    }
    const bool has_sign = digit > 0 && is_sign(text, digit - 1);
    parts.number = has_sign && text[digit - 1] == '-' ? -parts.number : parts.number;
    parts.before = text.substr(0, has_sign ? digit - 1 : digit);
    const std::size_t filled = parts.before.size();
    parts.before.erase(parts.before.find_last_not_of(' ') + 1);
    parts.blanks = filled - parts.before.size();
    parts.behind = text.substr(parts.end);
    return parts;
}

// Around each of its numbers.
std::vector<Parts> all_parts_of(const std::string& text) {
    std::vector<Parts> all;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (is_digit(text[at])) {
            all.push_back(parts_at(text, at));
            at = all.back().end;
        }
    }
    return all;
}

std::string fixed(double number, int decimals) {
    char text[64] = {};
    const int length = std::snprintf(text, sizeof text, "%.*f", decimals, number);
    std::string shown(text, static_cast<std::size_t>(std::clamp(length, 0, 63)));
    std::replace(shown.begin(), shown.end(), ',', '.');  // whatever the locale
    return shown;
}

std::vector<int> samples(int min, int max) {
    const int64_t span = int64_t{max} - min;
    const int64_t last = std::min(span, MOST_SAMPLES - 1);
    std::vector<int> values;
    for (int64_t i = 0; i <= last; ++i) {
        values.push_back(static_cast<int>(last == 0 ? min : min + span * i / last));
    }
    return values;
}

int saturated(double value) {
    constexpr double LOWEST = std::numeric_limits<int>::min();
    constexpr double HIGHEST = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::round(value), LOWEST, HIGHEST));
}

}  // namespace

// The number is what most samples have the same text around. It can be typed when it only rises or only falls with the
// value.
Number_scale::Number_scale(Text_of text_of, int min, int max) : m_text_of(std::move(text_of)) {
    if (min > max) {
        return;
    }
    using Form = std::tuple<std::string, std::string, int>;
    struct Group {
        std::vector<Place> places;
        std::size_t blanks = std::numeric_limits<std::size_t>::max();
    };
    std::map<Form, Group> forms;
    const std::vector<int> values = samples(min, max);
    for (const int value : values) {
        for (const Parts& parts : all_parts_of(m_text_of(value))) {
            Group& group = forms[{parts.before, parts.behind, parts.decimals}];
            group.places.push_back({value, parts.number});
            group.blanks = std::min(group.blanks, parts.blanks);
        }
    }
    const auto most =
        std::max_element(forms.begin(), forms.end(), [](const auto& left, const auto& right) {
            return left.second.places.size() < right.second.places.size();
        });
    if (most == forms.end()) {
        return;
    }
    const std::vector<Place>& places = most->second.places;
    if (places.size() < 2 || places.size() * 2 < values.size()) {
        return;
    }
    std::tie(m_form, m_behind, m_decimals) = most->first;
    m_before = m_form + std::string(most->second.blanks, ' ');
    m_has_form = true;
    const auto rises = [&](int direction) {
        return std::adjacent_find(places.begin(), places.end(),
                                  [direction](const Place& left, const Place& right) {
                                      return (right.number - left.number) * direction <= 0;
                                  }) == places.end();
    };
    if (rises(1) || rises(-1)) {
        m_places = places;
    }
}

std::optional<Number_scale::Digits> Number_scale::digits_in(const std::string& text) const {
    const std::vector<Parts> all = all_parts_of(text);
    const auto found = std::find_if(all.begin(), all.end(), [this](const Parts& parts) {
        return m_has_form && parts.before == m_form && parts.behind == m_behind;
    });
    if (found != all.end()) {
        return Digits{found->first, found->end};
    }
    return all.empty() ? std::nullopt
                       : std::optional<Digits>(Digits{all.front().first, all.front().end});
}

std::string Number_scale::characters() const {
    if (m_places.empty()) {
        return "";
    }
    const bool has_negative = m_places.front().number < 0 || m_places.back().number < 0;
    return std::string("0123456789") + (has_negative ? "-" : "") + (m_decimals > 0 ? "." : "");
}

std::optional<double> Number_scale::number_of(int value) const {
    for (const Parts& parts : all_parts_of(m_text_of(value))) {
        if (parts.before == m_form && parts.behind == m_behind) {
            return parts.number;
        }
    }
    return std::nullopt;
}

double Number_scale::slope() const {
    const Place& first = m_places.front();
    const Place& last = m_places.back();
    return (last.number - first.number) / (static_cast<double>(last.value) - first.value);
}

// Shown numbers are rounded to their last digit.
bool Number_scale::is_linear() const {
    const double unit = std::pow(10, -m_decimals);
    return std::all_of(m_places.begin(), m_places.end(), [&](const Place& place) {
        const double expected =
            m_places.front().number +
            slope() * (static_cast<double>(place.value) - m_places.front().value);
        return std::abs(place.number - expected) <= unit;
    });
}

std::optional<std::string> Number_scale::step_text(int step) const {
    if (m_places.empty() || !is_linear()) {
        return std::nullopt;
    }
    const double change = std::abs(slope() * step);
    constexpr double CLOSE = 0.05;  // of the step
    int decimals = m_decimals;
    while (decimals < MOST_DECIMALS &&
           std::abs(std::round(change * std::pow(10, decimals)) / std::pow(10, decimals) - change) >
               CLOSE * change) {
        ++decimals;
    }
    return fixed(change, decimals) + m_behind;
}

std::optional<Number_scale::Typed> Number_scale::value_of(const std::string& typed) const {
    std::string text = typed;
    const std::size_t point = text.find('.');
    if (point != std::string::npos && (point == 0 || !is_digit(text[point - 1]))) {
        text.insert(point, 1, '0');
    }
    const std::vector<Parts> parts = all_parts_of(text);
    if (m_places.empty() || parts.empty() || all_parts_of(typed).empty()) {
        return std::nullopt;
    }
    const double number = parts.front().number;
    const int value = nearest(number);
    const std::optional<double> shown = number_of(value);
    constexpr double CLOSE = 1e-9;
    return Typed{value,
                 shown && std::abs(*shown - number) <= CLOSE * std::max(1.0, std::abs(number))};
}

// A conversion that is not linear cannot be continued: beyond its ends, every number is mapped to the next value.
int Number_scale::nearest(double number) const {
    const Place& first = m_places.front();
    const Place& last = m_places.back();
    if (is_linear()) {
        const int guess = saturated(first.value + (number - first.number) / slope());
        int best = guess;
        double distance = std::numeric_limits<double>::max();
        for (const int64_t candidate : {int64_t{guess}, int64_t{guess} - 1, int64_t{guess} + 1}) {
            if (candidate < std::numeric_limits<int>::min() ||
                candidate > std::numeric_limits<int>::max()) {
                continue;
            }
            const auto shown = number_of(static_cast<int>(candidate));
            if (shown && std::abs(*shown - number) < distance) {
                distance = std::abs(*shown - number);
                best = static_cast<int>(candidate);
            }
        }
        return best;
    }
    const double direction = last.number > first.number ? 1 : -1;
    if ((number - first.number) * direction < 0) {
        return saturated(first.value - 1.0);
    }
    if ((number - last.number) * direction > 0) {
        return saturated(last.value + 1.0);
    }
    const auto above = std::find_if(m_places.begin() + 1, m_places.end(), [&](const Place& place) {
        return (place.number - number) * direction >= 0;
    });
    return nearest_between(*(above - 1), *above, number);
}

int Number_scale::nearest_between(Place low, Place high, double number) const {
    const double direction = high.number > low.number ? 1 : -1;
    while (int64_t{high.value} - low.value > 1) {
        const auto middle = static_cast<int>(low.value + (int64_t{high.value} - low.value) / 2);
        const auto shown = number_of(middle);
        if (!shown) {
            break;
        }
        ((*shown - number) * direction < 0 ? low : high) = {middle, *shown};
    }
    return std::abs(low.number - number) <= std::abs(high.number - number) ? low.value : high.value;
}

}  // namespace frontpanel
