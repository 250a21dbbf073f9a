// A text on as many pages as it needs. They turn by themselves at reading speed, until a person turns one.
#ifndef FRONTPANEL_UI_TEXT_PAGES_H
#define FRONTPANEL_UI_TEXT_PAGES_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace frontpanel {

class Text_pages {
public:
    explicit Text_pages(std::string text) : m_text(std::move(text)) {}

    // Lays the text out on pages of this size, at least one column and one row. With `has_number_beside` and more than
    // one page, the last columns of the row are left free for `number`.
    void fit(int columns, int rows, bool has_number_beside = false);
    // Turns this many pages on, or back if negative; the first page follows the last.
    void turn(int pages);
    // The lines of the page to show now. After a number of calls the next page follows. Requires: `fit` was called.
    std::vector<std::string> show();
    // The number of that page, "2/3"; empty when there is only one.
    std::string number() const;
    bool has_several() const { return m_count > 1; }

private:
    int wait() const;

    std::string m_text;
    std::vector<std::string> m_lines;
    int m_columns = 0;
    std::size_t m_rows = 1;
    std::size_t m_count = 1;
    std::size_t m_page = 0;
    int m_shown = 0;  // calls for which the page has been shown
    bool m_is_turned_by_hand = false;
};

}  // namespace frontpanel

#endif
