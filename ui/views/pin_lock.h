// Asks for the PIN of a locked panel: its digits are set with the encoder or typed, one after the other.
//
// Its only clock is the time that the caller passes.
#ifndef FRONTPANEL_UI_PIN_LOCK_H
#define FRONTPANEL_UI_PIN_LOCK_H

#include <string>

#include <frontpanel_display/front.h>

namespace frontpanel {

class Pin_lock {
public:
    static constexpr int FREE_TRIES = 3;
    static constexpr std::chrono::seconds PENALTY{
        30};  // without keys, after FREE_TRIES wrong tries
    static constexpr std::chrono::seconds PATIENCE{
        15};  // for the next key, before the question goes away

    static constexpr const char* CHARACTERS = "0123456789";  // that a keyboard can type

    enum class Result { ASKING, OPEN, GIVEN_UP };

    // `pin` is one: see `is_pin`.
    explicit Pin_lock(std::string pin) : m_pin(std::move(pin)) {}

    // Asks from the first digit on. A wrong try before counts as before.
    void ask(Time now);
    // Up and down change the digit, select takes it, back goes a digit back or gives up. A key with one of CHARACTERS
    // sets the digit and takes it. OPEN once the last digit of the right PIN is taken.
    Result press(const Key& key, Time now);
    // GIVEN_UP when no key came for long.
    Result tick(Time now);
    // Draws the question, or how long nothing can be tried.
    void draw(Lcd& lcd, Time now) const;

private:
    Result take_digit(Time now);

    std::string m_pin;
    std::string m_taken;
    int m_digit = 0;
    int m_wrong = 0;         // tries since the panel was opened last
    bool m_refused = false;  // the try before this one
    Time m_last_key;
    Time m_penalty_end;
};

}  // namespace frontpanel

#endif
