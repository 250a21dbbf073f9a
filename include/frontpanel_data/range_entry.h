// A menu leaf for a signed integer parameter between two bounds.
//
// The allowed values are a list of half-open ranges, each of which may depend on product options; the
// entry's binding may narrow them at run time. The value is shown as a number, through a table of texts or
// converted by an expression, and scrolls when it does not fit. Driven by the menu thread; only the bounds
// may be read from another thread, through `Get_min` and `Get_max`.
#ifndef FRONTPANEL_DATA_RANGE_ENTRY_H
#define FRONTPANEL_DATA_RANGE_ENTRY_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_data/data_model.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/export.h>
#include <frontpanel_data/jmutex.h>

// The allowed values from `min_inclusive` up to, but without, `max_exclusive`. A single value v is
// [v, v + 1); the largest `int` is therefore in no range.
struct range_s {
    int min_inclusive = 0;
    int max_exclusive = 0;
    std::vector<std::string>
        options;  // product options, one of which must hold; empty: always allowed
};

// The kind of a range suggestion.
enum RANGE_TYPE { RANGE_TYPE_INVALID = -1, RANGE_TYPE_RANGE = 0, RANGE_TYPE_ENUM = 1 };

// The display, commit and bounds operations hide the base's on purpose: a caller that holds the base gets the
// base's answer (the name as display text, a commit that does nothing, bounds of 0).
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

class FRONTPANEL_DATA_EXPORT Range_entry : public Data_entry {
public:
    // `min` <= `default_value` <= `max` (asserted); neither format may be null (asserted), and both are
    // copied. Requires: `setValidRangeAndValues` is called before the first refresh of an entry whose binding
    // suggests ranges. Without it a suggestion allows no value, and the refresh writes the lowest `int` to the
    // device.
    //
    // `val_fmt` is an expression in the variable "v", the raw value; its result is the number shown. `fmt` is
    // the printf format of that number, with at most one conversion (flags, width and precision of up to
    // three digits each; no '*', no length):
    //   - with "%d" anywhere in it, or "%02x", or with "%02X" in the number format, an integer conversion;
    //     the number is cut towards zero and stays within `int`;
    //   - otherwise a floating-point conversion; with "%.1f" the number is rounded to tenths first.
    // Not-a-number counts as 0. A format that does not fit, such as "%5d", shows the raw value. If `fmt` has
    // both ':' and ',' a table of texts precedes the number format, as in "0:Off,1:On,%d dB": value,
    // ':', text and ',' for each row. Without a table at most 14 characters of the formatted number are
    // shown. When either text is empty the raw value is shown. The decimal sign is a point whatever the
    // locale of the process.
    Range_entry(const char* name, const char* description, unsigned int pid, const Index_t* index,
                int min, int max, int default_value, char* fmt, char* val_fmt, Data_entry* parent,
                Data_access access, int visible, bool active, int shortcut, Data_entry* next,
                Data_entry* previous, Data_entry* child);
    ~Range_entry() override;

    // The base's line followed by the allowed ranges with inclusive ends and their options. A new suggestion
    // of the binding is applied before, and thereby consumed, as by `updateRange`.
    std::string getProperties(int flags) override;
    Entry_type Get_entry_type() const override;
    RETURN_TYPE Get_return_type_int_or_string() const override;
    bool Is_active() const override;
    // Delivers the first min(length, 4) bytes of the value in memory order; neither argument may be null or
    // 0 (asserted). OUT_OF_RANGE, and the value still delivered, when it is outside the bounds.
    int Get_value(void* buffer, unsigned int length) override;
    // Stores an int, of which at most 4 bytes are read, without checking it against the bounds. ERROR, and
    // nothing stored, when the binding warns of the value.
    int Set_value(const void* buffer, unsigned int length) override;
    // Reads the value from the device and lets the binding narrow the bounds; `eval_binding` has it evaluate
    // its expressions first. A value outside the bounds is replaced by the nearer bound (the lower one counts
    // as nearer unless the value is above the upper one) and committed. A binding that warns of the bound
    // keeps the value from being replaced: the old one is then committed. While no value is allowed the bounds
    // are crossed, and the lowest `int` is committed (for the lowest `int` itself, the highest).
    //
    // Returns 0, or 1 for two reasons: the read failed, and nothing else was done; or the value was outside
    // the bounds, and a value was committed. The result of that write is not reported. The interface must not
    // be null.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // Steps the value within the constructor's bounds; `position` is not used.
    int Inc_value(int value, int position) override;
    // A value kept for the application; starts as the default value.
    int Get_final_value() override;
    void Set_final_value(int value) override;

    // The order of the virtual operations below is a binary contract: never insert, remove or reorder.

    // Writes the display text of `override_value`, or of the entry's own value without `use_override`, to
    // `buffer`, which holds `length` + 1 bytes and must not be null (asserted). Returns 0; 1 for a `length`
    // below 2; the error of `Get_value`, such as OUT_OF_RANGE. In both cases nothing is written.
    //
    // A text of fewer than `length` characters is copied; one of `length` or more is cut to `length` and
    // scrolls: every call shows the next position. For two calls, at first and after every full turn, only
    // its first `length` - 1 characters are written, position `length` - 1 keeps what it held, and the
    // terminator stands at `length`.
    virtual int Get_display_string(char* buffer, unsigned int length, bool use_override,
                                   int override_value);
    // As above, for `override_value`.
    virtual int Get_display_string(char* buffer, unsigned int length, int override_value);
    // Writes the value to the device, then refreshes every entry whose binding depends on it. Returns the
    // result of the write, ERROR when it failed; the dependants are refreshed nevertheless. Before and after
    // each of them a line that ends in "here 14" goes to standard output, whatever `debug` holds. A parameter
    // that the binding's map lacks is added to it with an empty record. The interface must not be null.
    virtual int Commit(Data_interface* pDataAccessInf);
    // The lowest and the highest allowed value. When nothing is allowed, the largest and the smallest `int`.
    virtual int Get_min();
    virtual int Get_max();
    // Installs the allowed ranges, drops those whose options do not hold (call it after
    // `setProductOptions`) and sets the bounds. A suggestion that is new narrows them at once; one that was
    // consumed before does not, until the binding suggests again. Until this is called there are no ranges,
    // and a suggestion allows no value: see the constructor. Returns 0.
    virtual int setValidRangeAndValues(std::vector<range_s> ranges);
    // Drops the installed ranges none of whose options holds and sets the bounds from the others, without
    // taking the mutex. Returns 0.
    virtual int evaluateOptions();
    // Cuts the allowed ranges to those that the binding newly suggests, which consumes the suggestion, and
    // sets the bounds; without a new suggestion everything stays as it is. When they have nothing in common no
    // value is allowed. Returns 0.
    virtual int updateRange();
    // The value that an editor moves to from `old_value` when the user selects `new_value`: `new_value`,
    // limited to the bounds after a new suggestion of the binding has been applied. A value in a gap between
    // two ranges is allowed.
    virtual int increment(int old_value, int new_value);

    // The ranges that the binding newly suggests; empty when there are none. This consumes the suggestion: it
    // no longer narrows the bounds of this entry, unless the caller hands the ranges on. A suggestion that is
    // not a pair of numbers is reported and left out.
    std::vector<range_s> getBindingRange();

protected:
    Integer_model m_model;
    JMutex min_max_mutex;  // guards m_min and m_max
    bool m_active;
    int m_min;
    int m_max;
    int m_min_from_constructor;
    int m_max_from_constructor;
    int m_final_value;
    std::string display_format;
    std::string display_value_format;
    unsigned int m_scroll_offset;                  // the next position of the marquee
    unsigned int m_scroll_delay;                   // calls for which the marquee is still held
    std::vector<range_s> valid_ranges_and_values;  // those whose options hold
    std::vector<range_s>
        valid_ranges_and_values_ANDED;  // the same, cut to the binding's suggestion
    bool optionMinAndMaxProcessed;      // the application's; starts false
    range_s bindRange;                  // the application's; starts empty
    range_s optionRangeOutcome;         // the application's; starts empty

private:
    FRONTPANEL_DATA_LOCAL bool is_allowed_by_options(const range_s& range);
    FRONTPANEL_DATA_LOCAL int correct_value(int value, Data_interface* pDataAccessInf);
};

#pragma GCC diagnostic pop

#endif
