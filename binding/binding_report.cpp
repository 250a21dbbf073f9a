#include <frontpanel_binding/binding_report.h>
#include <frontpanel_binding/rule_fault.h>

namespace frontpanel {
namespace {

std::string result_text(const Rule_explanation& rule) {
    switch (rule.outcome) {
        case Rule_explanation::Outcome::HOLDS:
            return "holds: " + rule.result;
        case Rule_explanation::Outcome::DOES_NOT_HOLD:
            return "does not hold";
        case Rule_explanation::Outcome::FAILED:
            return "failed: " + rule.result;
    }
    return {};
}

}  // namespace

std::string Binding_explanation::text() const {
    std::string text = entry + "\n";
    for (const Rule_explanation& rule : rules) {
        text += "  line " + std::to_string(rule.line) + ": " + rule.source + "\n";
        for (const Rule_explanation::Seen& seen : rule.seen) {
            text += "    " + seen.name + " is " + seen.value + "\n";
        }
        text += "    " + result_text(rule) + "\n";
        text += rule.fault.empty() ? "" : "    fault: " + rule.fault + "\n";
    }
    for (const std::string& suggestion : suggestions) {
        text += "  suggested: " + suggestion + "\n";
    }
    return text;
}

std::string Rule_fault::text() const {
    return (place.empty() ? "" : place + ": ") + name + ": " + source + ": " + reason;
}

std::string Binding_cycle::text() const {
    std::string text;
    for (const std::string& name : path) {
        text += (text.empty() ? "" : " -> ") + name;
    }
    return text;
}

}  // namespace frontpanel
