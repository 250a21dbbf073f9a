// The names of product options: as a menu file writes them, and as the library judges them.
//
// The library takes every option whose name holds the letter "n" for a pattern, in which the last letter stands for a
// number, and finds a pattern anywhere within a name. A menu file says what it means: "gain" is an option, "slot{n}"
// stands for slot1, slot2 and so on. So the library gets names without the letter, and patterns in signs that no name
// of a file holds.
#ifndef FRONTPANEL_MENU_OPTION_NAMES_H
#define FRONTPANEL_MENU_OPTION_NAMES_H

#include <set>
#include <string>

namespace frontpanel {

class Option_names {
public:
    static constexpr const char* NUMBER = "{n}";

    // Whether a name is a pattern; false for one that holds "{n}" elsewhere than behind its first letters.
    static bool is_pattern(const std::string& name);

    void declare(const std::string& name);
    // Whether the option is declared, or is an instance of a pattern that is.
    bool knows(const std::string& name) const;
    // What the library calls an option that is declared, or only asked for.
    std::string library_name(const std::string& name) const;
    // The name in the file that the library calls so.
    static std::string file_name(const std::string& library_name);
    // What a message adds about a name that is unknown.
    std::string hint(const std::string& unknown) const;

private:
    // The pattern, up to its number, of which a name is an instance; empty for none.
    std::string prefix_of(const std::string& name) const;

    std::set<std::string> m_names;     // that are no patterns
    std::set<std::string> m_prefixes;  // of patterns
    mutable size_t m_searched = 0;     // by all hints
};

}  // namespace frontpanel

#endif
