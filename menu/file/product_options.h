// The product options of a menu: what the file and its products declare, and which of them items use.
#ifndef FRONTPANEL_MENU_PRODUCT_OPTIONS_H
#define FRONTPANEL_MENU_PRODUCT_OPTIONS_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include "file/work_budget.h"

namespace frontpanel {

class Product_options {
public:
    // What is wrong becomes one of `problems`, and tests of options take `work`; both outlive the options.
    Product_options(Problems& problems, Work_budget& work) : m_problems(problems), m_work(work) {}

    // Declares an object of names and values. Of an option that comes several times, the highest value counts.
    void declare(const Json_value& options);
    void declare(const std::string& name, unsigned int value);
    const std::map<std::string, unsigned int>& values() const { return m_values; }
    // Where each was first declared, if that is in the file.
    const std::map<std::string, Place>& places() const { return m_places; }

    // The names in a list, which are used, and tested by an entry, from now on.
    std::vector<std::string> use(const Json_value& list);
    // For an entry that tests options: a copy of all of them, and of `tests` options without a name in the file.
    std::map<std::string, unsigned int> copy(const Json_value& item, size_t tests = 0);
    const std::set<std::string>& used() const { return m_used; }

private:
    void declare(const Json_value::Member& option);

    Problems& m_problems;
    Work_budget& m_work;
    std::map<std::string, unsigned int> m_values;
    std::map<std::string, Place> m_places;
    std::set<std::string> m_used;
};

}  // namespace frontpanel

#endif
