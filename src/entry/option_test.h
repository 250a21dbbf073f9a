// The test of one product option that qualifies a range or an enumerated key.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_OPTION_TEST_H
#define FRONTPANEL_DATA_SRC_ENTRY_OPTION_TEST_H

#include <frontpanel_data/entry.h>

namespace option_test {

enum class Verdict {
    VALUE_ZERO,     // the product has none of it: does not count
    UNDECIDED,      // not among the product options: does not count
    STATIC_HOLDS,   // a static option of the product
    DYNAMIC_HOLDS,  // an instance that the product has
    DYNAMIC_FAILS,  // an instance beyond what the product has
    UNKNOWN         // anything else: does not count
};

inline Verdict judge(const is_static_value_s& option) {
    if (option.realValue == 0) {
        return Verdict::VALUE_ZERO;
    }
    switch (option.isStatic) {
        case -1:
            return Verdict::UNDECIDED;
        case 1:
            return Verdict::STATIC_HOLDS;
        case 0:
            return option.dynamicValue <= option.realValue ? Verdict::DYNAMIC_HOLDS
                                                           : Verdict::DYNAMIC_FAILS;
        default:
            return Verdict::UNKNOWN;
    }
}

}  // namespace option_test

#endif
