// The characters that a display cannot show: each is reported once.
#ifndef FRONTPANEL_DISPLAYS_LOST_CHARACTERS_H
#define FRONTPANEL_DISPLAYS_LOST_CHARACTERS_H

#include <set>

#include <frontpanel_base/character_set.h>

namespace frontpanel {

class Lost_characters {
public:
    static constexpr size_t MOST_REPORTED = 256;

    // Calls `say` with a message for each character that was not reported before.
    template <typename Say>
    void report(const std::set<char32_t>& lost, Say say) {
        for (const char32_t character : lost) {
            if (m_reported.size() < MOST_REPORTED && m_reported.insert(character).second) {
                say("cannot show the character " + code_point_name(character));
            }
        }
    }

private:
    std::set<char32_t> m_reported;
};

}  // namespace frontpanel

#endif
