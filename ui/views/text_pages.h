// A text on as many pages as it takes. They turn by themselves at the pace of a reader, until a person turns one.
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

    // Lays the text out on pages of so many columns and rows, both at least 1. With `has_number_beside` the last columns of
    // the row are left to `number`, if there is more than one page.
    void fit(int columns, int rows, bool has_number_beside = false);
    // By how many pages a person goes on or back; behind the last one comes the first.
    void turn(int pages);
    // The lines of the page to show now. Each call is a moment nearer to the next page. Requires: `fit`.
    std::vector<std::string> show();
    // Of that page: "2/3"; empty when all is on one.
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
