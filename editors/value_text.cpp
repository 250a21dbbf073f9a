#include <frontpanel_editors/value_text.h>

#include <array>
#include <cstring>
#include <vector>

namespace frontpanel {
namespace {

constexpr std::size_t USUAL_LENGTH = 256;
constexpr std::size_t GREATEST_LENGTH = std::size_t{1} << 20U;

// Counts every key of a list as visible, since an enumeration shows no text for a key beyond that count.
class All_keys_count {
public:
    explicit All_keys_count(Enum_entry& entry) : m_entry(entry), m_size(entry.Get_size()) {
        m_entry.Set_size(m_entry.Get_size_enum());
    }
    ~All_keys_count() { m_entry.Set_size(m_size); }
    All_keys_count(const All_keys_count&) = delete;
    All_keys_count& operator=(const All_keys_count&) = delete;

private:
    Enum_entry& m_entry;
    int m_size;
};

// `show` writes the text to a line, whose last character it uses only for a text that scrolls: then the line was too
// short. A failed call leaves "".
template <typename Show>
std::string whole_text(Show show) {
    for (std::size_t length = USUAL_LENGTH;; length *= 2) {
        std::vector<char> line(length + 1, '\0');
        show(line.data(), static_cast<unsigned int>(length));
        const std::size_t used = std::strlen(line.data());
        if (used + 1 < length || length >= GREATEST_LENGTH) {
            return {line.data(), used};
        }
    }
}

}  // namespace

bool Stored_key::is_foreign(const Enum_entry& entry) {
    const int key = stored_key();
    return key < entry.Get_min_enum() || key > entry.Get_max_enum();
}

std::string value_text(Range_entry& entry, int value) {
    return whole_text(
        [&](char* line, unsigned int length) { entry.Get_display_string(line, length, value); });
}

std::string value_text(String_entry& entry) {
    std::array<char, MAX_STRING_LENGTH + 1> text = {};
    entry.Get_value(text.data(), text.size());
    return text.data();
}

std::string option_text(Enum_entry& entry, int position) {
    const All_keys_count all(entry);
    return whole_text(
        [&](char* line, unsigned int length) { entry.Get_display_string(line, length, position); });
}

std::string option_text(Enum_entry& entry) {
    constexpr int CURRENT = -1;
    return holds_no_option(entry) ? NO_OPTION_TEXT : option_text(entry, CURRENT);
}

bool holds_no_option(Enum_entry& entry) {
    auto* const stored = dynamic_cast<Stored_key*>(&entry);
    return stored != nullptr && stored->is_foreign(entry);
}

}  // namespace frontpanel
