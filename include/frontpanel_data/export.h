// Marks what the shared library exports; everything else is hidden. LOCAL hides a private operation of an exported
// class.
#ifndef FRONTPANEL_DATA_EXPORT_H
#define FRONTPANEL_DATA_EXPORT_H

#define FRONTPANEL_DATA_EXPORT __attribute__((visibility("default")))
#define FRONTPANEL_DATA_LOCAL __attribute__((visibility("hidden")))

// On 64-bit processors there are gaps between members, and a private member can fill one. Other processors have
// no gap: the member comes last there. Members after the gap are protected. NOLINTBEGIN(bugprone-macro-parentheses)
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
