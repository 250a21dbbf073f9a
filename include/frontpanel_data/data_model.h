// Value models: the local copy of one device parameter, as a menu leaf holds it.
//
// A model reads (`Refresh`), writes (`Commit`) and steps (`Inc_value`) its copy within its own bounds;
// visibility and allowed ranges belong to the entry. Values are stored inline and no operation allocates. A
// model has no lock: it is used from the thread that drives its entry.
#ifndef FRONTPANEL_DATA_DATA_MODEL_H
#define FRONTPANEL_DATA_DATA_MODEL_H

#include <cstdint>

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/export.h>

// The models' `Commit` and `Refresh` take the interface to use and hide the operations without argument on
// purpose: `Init` calls the latter and must never read the device.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Data_model {
public:
    enum Return_code { OK = 0, ERROR = 1, INVALID = 2, OUT_OF_RANGE = 3 };

    // Index levels that the device supports.
    static constexpr uint32_t S_CURRENT_SUPPORT_DIMENTIONS = 2;

    // `index` must not be null (asserted), is not copied and must outlive the model. An index that cannot be
    // converted leaves the variable index 0.
    Data_model(unsigned int pid, const Index_t* index);
    virtual ~Data_model();

    // Copies at most `length` bytes of the value to `buffer`. Neither may be null or 0 (asserted).
    virtual int Get(void* buffer, unsigned int length) = 0;
    // Stores a value from `length` bytes of `buffer`.
    virtual int Set(const void* buffer, unsigned int length) = 0;
    virtual bool Is_active() const = 0;
    virtual int Inc_value(int value, int position) = 0;
    virtual int Commit();   // does nothing, returns OK
    virtual int Refresh();  // does nothing, returns OK
    // Marks the model as initialised. Reads nothing from the device.
    virtual void Init();

    uint32_t Get_pid() const { return m_pid; }
    uint32_t Get_varidx() const { return m_varidx; }

    // Packs an index into the variable index of `Data_interface`: 0 without levels, level 0 alone, or level 1
    // shifted left by 8 bits or-ed with level 0. Neither level is masked: a level 0 above 255 overlaps level
    // 1, as the device expects. INVALID, and `varidx` untouched, for a null index or more than two levels.
    static int Index_convert(const Index_t* index, unsigned int& varidx);

protected:
    uint32_t m_pid;
    const Index_t* m_index;  // not owned
    uint32_t m_varidx;
    bool m_init;
};

// A signed 32-bit parameter with inclusive bounds.
class FRONTPANEL_DATA_EXPORT Integer_model : public Data_model {
public:
    // The value starts as `default_value`, which must lie within the bounds (asserted).
    Integer_model(unsigned int pid, const Index_t* index, int min, int max, int default_value);
    ~Integer_model() override;

    // Copies the first min(length, 4) bytes of the value in memory order. Returns OK.
    int Get(void* buffer, unsigned int length) override;
    // Copies `length` bytes over the value; callers pass 4. Bounds are not checked: that is the entry's part.
    int Set(const void* buffer, unsigned int length) override;
    bool Is_active() const override;
    // Adds `value` and stays within the bounds; `position` is not used. Returns OK.
    int Inc_value(int value, int position) override;
    // Writes the value. ERROR when the interface fails.
    virtual int Commit(Data_interface* pDataAccessInf);
    // Reads the value, without checking it against the bounds. ERROR when the interface fails; the value is
    // then what the interface left. A model of pid 65547 is never read.
    virtual int Refresh(Data_interface* pDataAccessInf);

    // Store a bound without checking the value or the other bound.
    void Set_min(int min) { m_min = min; }
    void Set_max(int max) { m_max = max; }

protected:
    int32_t m_value;
    int32_t m_min;
    int32_t m_max;
    int32_t m_default;
};

// A text parameter of at most 256 characters.
class FRONTPANEL_DATA_EXPORT String_model : public Data_model {
public:
    // The characters that stepping may produce, inclusive.
    static constexpr uint32_t MIN_CHARACTER = 32;
    static constexpr uint32_t MAX_CHARACTER = 127;

    // `max_length` is at most `MAX_STRING_LENGTH` (asserted). The text starts empty.
    String_model(unsigned int pid, const Index_t* index, unsigned int max_length);
    ~String_model() override;

    // Copies min(length, 257) bytes of the text, its terminator and what follows it included. Returns OK.
    int Get(void* buffer, unsigned int length) override;
    // Stores the first min(length, maximum) characters; a longer text is cut. `buffer` may not be null
    // (asserted). Returns OK.
    int Set(const void* buffer, unsigned int length) override;
    bool Is_active() const override;
    // `position` counts from the right end of the text, 0 is its last character. Steps that character by
    // `value`; INVALID, and the text unchanged, when the result is not printable. A position left of the text
    // pads it with blanks on the left, one right of it (negative) on the right, without stepping; INVALID
    // when the text would exceed its maximum, and on the left also when it would reach it exactly.
    int Inc_value(int value, int position) override;
    // A window for scrolling: `length` characters from `offset` (from 0 when it lies beyond the text), going
    // on after one blank at the start of the text. Writes no terminator. A text shorter than `length` is
    // copied as by the `Get` above.
    virtual int Get(void* buffer, unsigned int length, unsigned int offset);
    // Writes the text without its terminator (0 bytes for an empty one). ERROR when the interface fails.
    virtual int Commit(Data_interface* pDataAccessInf);
    // Reads up to 257 bytes; the last byte becomes a terminator whatever the device wrote. ERROR when the
    // interface fails. A model of pid 65547 is never read.
    virtual int Refresh(Data_interface* pDataAccessInf);

    uint32_t Get_max_length() const { return m_max_length; }
    // The length of the text, in characters.
    uint32_t Get_current_length() const;

protected:
    char m_value[MAX_STRING_LENGTH + 1];
    uint32_t m_max_length;
};

#pragma GCC diagnostic pop

#endif
