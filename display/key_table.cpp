#include <frontpanel_display/key_table.h>

#include <algorithm>
#include <iterator>

namespace frontpanel {
namespace {

template <typename Test>
const Key_row* find_row(Test test) {
    const auto* const found = std::find_if(std::begin(KEY_TABLE), std::end(KEY_TABLE), test);
    return found == std::end(KEY_TABLE) ? nullptr : found;
}

std::optional<Key::Kind> kind_of(const Key_row* row) {
    return row == nullptr ? std::nullopt : std::optional<Key::Kind>(row->kind);
}

}  // namespace

const Key_row* row_of(Key::Kind kind) {
    return find_row([kind](const Key_row& row) { return row.kind == kind; });
}

std::optional<Key::Kind> key_of_word(const std::string& word) {
    return kind_of(find_row([&word](const Key_row& row) { return word == row.word; }));
}

std::optional<Key::Kind> key_of_code(uint8_t code) {
    return kind_of(
        find_row([code](const Key_row& row) { return row.detents == 0 && row.code == code; }));
}

std::string key_words() {
    std::string words;
    for (const Key_row& row : KEY_TABLE) {
        words += (words.empty() ? "" : ", ") + std::string(row.word);
    }
    return words;
}

}  // namespace frontpanel
