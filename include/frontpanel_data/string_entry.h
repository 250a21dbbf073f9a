// Leaves whose value is text: a free text, an IPv4 address, a time.
//
// All three hold their value in a `String_model` of at most 256 characters and show a text that is longer
// than its line as a marquee: held at its start for two calls, then one character further a call. They are
// used from the menu thread; `isRemoteConnected` forks the process.
#ifndef FRONTPANEL_DATA_STRING_ENTRY_H
#define FRONTPANEL_DATA_STRING_ENTRY_H

#include <frontpanel_data/data_model.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/export.h>

#include <cstdint>
#include <string>

// `Get_value`, `Commit` and `Get_name` are new operations beside the base's of the same names on purpose: a
// caller that holds the base gets the base's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT String_entry : public Data_entry {
public:
    // As `Data_entry`; `max_length` is at most `MAX_STRING_LENGTH` (asserted). An entry that is not `active`
    // never is.
    String_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
                 unsigned int max_length, Data_entry* parent, Data_access access, int visible,
                 bool active, int shortcut, Data_entry* next, Data_entry* previous,
                 Data_entry* child);
    ~String_entry() override;

    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    bool Is_active() const override;
    // Shows the text, or the next step of its marquee, in `length` characters. A text of at most `length`
    // characters is copied with `Get_value` and nothing more is written: one of exactly `length` characters
    // arrives without terminator, so callers zero their buffer. A marquee step is terminated at
    // buffer[length]: the buffer holds `length` + 1 bytes. 1, and nothing written, for a length below 2.
    int Get_display_string(char* buffer, unsigned int length) override;
    // Copies min(length, 257) bytes of the text with its terminator. 0, or 1 when the model fails.
    int Get_value(void* buffer, unsigned int length) override;
    // Stores the first `length` characters at `value`, cut to the maximum, unless the binding warns of the
    // value. 0; 1 when it warned, and the text is as before.
    int Set_value(const void* buffer, unsigned int length) override;
    // Reads the text from the device, then applies the binding. 0, or 1 when the read failed.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // Steps the character at `position` from the right end, or widens the text, on the left to less than its
    // maximum: see `String_model`.
    int Inc_value(int value, int position) override;

    // A window of `length` characters from `offset`, going on after one blank at the start of the text,
    // without terminator. 0, or 1 when the model fails.
    virtual int Get_value(void* buffer, unsigned int length, unsigned int offset);
    // Writes the text, then refreshes the entries whose bindings depend on it, whether the write succeeded
    // or not. Before and after each of them a line that ends in "here 14" goes to standard output, whatever
    // `debug` holds. The binding's map stays as it is. Returns the write's result: 0, or 1.
    virtual int Commit(Data_interface* pDataAccessInf);

    // The most characters that the text can have.
    unsigned int Get_max_length() const { return m_model.Get_max_length(); }

protected:
    // The marquee of all texts that do not fit: a step in `length` characters, terminated at buffer[length].
    int show_marquee(char* buffer, unsigned int length);

    String_model m_model;
    bool m_active;
    uint32_t m_scroll_offset;
    uint32_t m_scroll_delay;
};

class FRONTPANEL_DATA_EXPORT Ip_entry : public String_entry {
public:
    static constexpr int IP_STRING_MAX_LENGTH = 19;
    static constexpr int IP_STRING_MIN_LENGTH = 7;
    static constexpr int IP_STRING_MAX_BLOCK = 4;
    static constexpr int IP_VALUE_MAX = 255;
    static constexpr int IP_VALUE_MIN = 0;
    static constexpr char DEFAULT_IP[] = "0.0.0.0";

    Ip_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
             Data_entry* parent, Data_access access, int visible, bool active, int shortcut,
             Data_entry* next, Data_entry* previous, Data_entry* child);
    ~Ip_entry() override;

    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    // As `String_entry`, but an address exactly as long as the line also scrolls, a length of 1 is shown, and a
    // length of 0 is a programming error (asserted).
    int Get_display_string(char* buffer, unsigned int length) override;
    int Inc_value(int value, int position) override;

    // The entry's name behind "[C]" when the address answers a ping, else behind "[ ]". Blocks for up to a
    // second and takes a step of the marquee. The text is valid until the next call. A new operation: a
    // caller that holds the base gets the plain name.
    virtual char* Get_name();

    // Whether a text is a dotted IPv4 address: four decimal blocks of at most three characters, none above
    // 255, without leading zeros. Runs of dots count as one dot, and a block such as -1 passes. A text of
    // more than 31 characters is no address. `ip` may not be null (asserted).
    static bool Valid_ip(const char* ip);

protected:
    char connect_status_name[32];
};

// A time as the device reports it.
class FRONTPANEL_DATA_EXPORT Time_entry : public String_entry {
public:
    Time_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
               unsigned int max_length, Data_entry* parent, Data_access access, int visible,
               bool active, int shortcut, Data_entry* next, Data_entry* previous,
               Data_entry* child);
    ~Time_entry() override;

    Entry_type Get_entry_type() const override;
    // Copies the text as `Get_value` does: no marquee, and no terminator of its own. Neither argument may be
    // null or 0 (asserted).
    int Get_display_string(char* buffer, unsigned int length) override;
};

#pragma GCC diagnostic pop

#endif
