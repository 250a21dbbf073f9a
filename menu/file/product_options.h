// The product options of a menu: what the file and its products declare, and which of them items use.
#ifndef FRONTPANEL_MENU_PRODUCT_OPTIONS_H
#define FRONTPANEL_MENU_PRODUCT_OPTIONS_H

#include <map>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include "file/option_names.h"
#include "file/work_budget.h"

namespace frontpanel {

class Product_options {
public:
    // What is wrong becomes one of `problems`, and tests of options take `work`; both outlive the options.
    Product_options(Problems& problems, Work_budget& work) : m_problems(problems), m_work(work) {}

    // Declares an object of names and values. Of an option that comes several times, the highest value counts.
    void declare(const Json_value& options);
    void declare(const std::string& name, unsigned int value);
    // A name that some product may bring.
    void expect(const std::string& name) { m_names.declare(name); }
    // As the file names them.
    const std::map<std::string, unsigned int>& values() const { return m_values; }
    const Option_names& names() const { return m_names; }
    // As the library names them.
    std::map<std::string, unsigned int> library_values() const;

    // The names in a list, as the library has them: an entry tests them from now on. Warns of one that is not declared.
    // Requires: all options are declared.
    std::vector<std::string> use(const Json_value& list);
    // For an entry that tests options: a copy of `library_values`, and of `tests` options without a name in the file.
    std::map<std::string, unsigned int> copy(const Json_value& item, size_t tests = 0);

private:
    void declare(const Json_value::Member& option);

    Problems& m_problems;
    Work_budget& m_work;
    std::map<std::string, unsigned int> m_values;
    Option_names m_names;
    mutable std::map<std::string, unsigned int> m_library_values;  // empty until it is asked for
};

}  // namespace frontpanel

#endif
