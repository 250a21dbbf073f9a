#include <frontpanel_editors/time_editor.h>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

#include "entry_text.h"

namespace frontpanel {
namespace {

// A letter stands for a digit of its field, '_' for a blank or "T", anything else for itself.
constexpr std::string_view FORMS[] = {"hh:mm",
                                      "hh:mm:ss",
                                      "YYYY-MM-DD",
                                      "YYYY-MM-DD_hh:mm",
                                      "YYYY-MM-DD_hh:mm:ss",
                                      "YYYY-MM-DD_hh:mm!",
                                      "YYYY-MM-DD_hh:mm:ss!"};
constexpr std::string_view FIELD_LETTERS = "YMDhms";
constexpr char BLANK_OR_T = '_';
constexpr char UTC_MARK = '!';

bool is_field(char letter) {
    return FIELD_LETTERS.find(letter) != std::string_view::npos;
}

bool fits(char letter, char character) {
    if (is_field(letter)) {
        return std::isdigit(static_cast<unsigned char>(character)) != 0;
    }
    if (letter == BLANK_OR_T) {
        return character == ' ' || character == 'T';
    }
    return character == (letter == UTC_MARK ? 'Z' : letter);
}

std::string_view form_of(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(FORMS), std::end(FORMS), [text](std::string_view form) {
            return std::equal(form.begin(), form.end(), text.begin(), text.end(), fits);
        });
    return found == std::end(FORMS) ? std::string_view() : *found;
}

struct Parsed_time {
    std::string kinds;
    std::vector<Number_field> fields;
    std::string trailing;
};

Parsed_time parse(std::string_view text) {
    const std::string_view form = form_of(text);
    Parsed_time time;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (!is_field(form[i])) {
            time.trailing += text[i];
            continue;
        }
        if (i == 0 || form[i] != form[i - 1]) {
            time.kinds += form[i];
            time.fields.push_back({0, 0, time.trailing});
            time.trailing.clear();
        }
        Number_field& field = time.fields.back();
        field.value = field.value * 10 + (text[i] - '0');
        ++field.width;
    }
    return time;
}

bool is_leap_year(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// A month that the device made up counts as the nearest.
int days_of(int year, int month) {
    constexpr int FEBRUARY = 2;
    constexpr int DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == FEBRUARY && is_leap_year(year) ? 29 : DAYS[std::clamp(month, 1, 12) - 1];
}

// A day's limits follow from year and month.
Field_line::Limits limits_of_kind(char kind, int year, int month) {
    switch (kind) {
        case 'Y':
            return {1, 9999};
        case 'M':
            return {1, 12};
        case 'D':
            return {1, days_of(year, month)};
        case 'h':
            return {0, 23};
        default:
            return {0, 59};
    }
}

}  // namespace

bool is_time(const std::string& text) {
    const Parsed_time time = parse(text);
    const auto value_of_kind = [&time](char kind) {
        const std::size_t place = time.kinds.find(kind);
        return place == std::string::npos ? 0 : time.fields[place].value;
    };
    for (std::size_t field = 0; field < time.fields.size(); ++field) {
        const Field_line::Limits limits = limits_of_kind(time.kinds[field], value_of_kind('Y'),
                                                         std::clamp(value_of_kind('M'), 1, 12));
        if (time.fields[field].value < limits.min || time.fields[field].value > limits.max) {
            return false;
        }
    }
    return !time.kinds.empty();
}

Time_editor::Time_editor() = default;
Time_editor::~Time_editor() = default;

void Time_editor::start() {
    const std::string text = value_text(edited());
    m_viewed.follow(text);
    Parsed_time time = parse(text);
    m_kinds = time.kinds;
    m_fields.set(std::move(time.fields), std::move(time.trailing));
    keep_limits();
}

void Time_editor::remember() {
    m_opened = value_text(edited());
    m_viewed.set(m_opened);
}

bool Time_editor::put_back() {
    return store_text(edited(), m_opened);
}

// A clock goes on while it is looked at.
void Time_editor::show_value() {
    if (m_kinds.empty()) {
        m_viewed.follow(value_text(edited()));
    } else {
        start();
    }
}

bool Time_editor::is_editable() const {
    return !m_kinds.empty() && Editor_base::is_editable();
}

// Year and month stand before their day.
Field_line::Limits Time_editor::limits_of(std::size_t field) const {
    constexpr std::size_t BEFORE_DAY = 2;
    const bool is_day = m_kinds[field] == 'D';
    return limits_of_kind(m_kinds[field], is_day ? m_fields.value(field - BEFORE_DAY) : 0,
                          is_day ? m_fields.value(field - 1) : 0);
}

void Time_editor::keep_limits() {
    m_fields.keep_limits([this](std::size_t field) { return limits_of(field); });
}

void Time_editor::step(Editor_key key, int steps) {
    if (key == Editor_key::ERASE) {
        m_fields.erase();
        return;
    }
    m_fields.step(key, {steps, wraps()}, [this](std::size_t field) { return limits_of(field); });
}

std::string Time_editor::typed_characters() const {
    return "0123456789-: ";
}

void Time_editor::put(char character) {
    m_fields.type(character, [this](std::size_t field) { return limits_of(field); });
}

bool Time_editor::is_typing() const {
    return m_fields.is_typing();
}

bool Time_editor::is_stored() {
    return value_text(edited()) == m_fields.text();
}

bool Time_editor::accept() {
    keep_limits();
    return store_text(edited(), m_fields.text());
}

void Time_editor::draw(int columns, Editor_view& shown) {
    if (is_editable()) {
        m_fields.draw(columns, shown);
    } else {
        shown.text = m_viewed.show(columns);
    }
}

}  // namespace frontpanel
