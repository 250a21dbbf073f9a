// Marks what the shared library exports; everything else is hidden. LOCAL hides a private operation of an exported
// class.
#ifndef FRONTPANEL_DATA_EXPORT_H
#define FRONTPANEL_DATA_EXPORT_H

#define FRONTPANEL_DATA_EXPORT __attribute__((visibility("default")))
#define FRONTPANEL_DATA_LOCAL __attribute__((visibility("hidden")))

// A private member in a gap between members, which 64-bit processors leave and others do not: there it stands behind them
// all. Behind the gap the members are protected again. NOLINTBEGIN(bugprone-macro-parentheses): members, no values
#ifdef __LP64__
#define FRONTPANEL_DATA_IN_GAP(member) \
private:                               \
    member;                            \
                                       \
protected:
#define FRONTPANEL_DATA_WITHOUT_GAP(member)
#else
#define FRONTPANEL_DATA_IN_GAP(member)
#define FRONTPANEL_DATA_WITHOUT_GAP(member) member;
#endif  // NOLINTEND(bugprone-macro-parentheses)

#endif
