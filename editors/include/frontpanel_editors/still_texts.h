// Holds scrolling texts where they are, for frames that are drawn more often than a reader can follow. Menu thread only.
#ifndef FRONTPANEL_EDITORS_STILL_TEXTS_H
#define FRONTPANEL_EDITORS_STILL_TEXTS_H

namespace frontpanel {

// While one is in scope, drawing a text does not move it on. Scopes do not overlap.
class Still_texts {
public:
    explicit Still_texts(bool are_still) { s_are_still = are_still; }
    ~Still_texts() { s_are_still = false; }
    Still_texts(const Still_texts&) = delete;
    Still_texts& operator=(const Still_texts&) = delete;

    static bool are_still() { return s_are_still; }

private:
    static inline thread_local bool s_are_still = false;
};

}  // namespace frontpanel

#endif
