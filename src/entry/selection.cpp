// One home for the vtables and type descriptions of the abstract editors.
#include <frontpanel_data/selection.h>

Selection::Selection() = default;
Selection::~Selection() = default;

NumericRangeSelection::NumericRangeSelection() = default;
NumericRangeSelection::~NumericRangeSelection() = default;

EnumSelection::EnumSelection() = default;
EnumSelection::~EnumSelection() = default;

StringSelection::StringSelection() = default;
StringSelection::~StringSelection() = default;

WarnSelection::WarnSelection() = default;
WarnSelection::~WarnSelection() = default;

IPv4Selection::IPv4Selection() = default;
IPv4Selection::~IPv4Selection() = default;

TimeSelection::TimeSelection() = default;
TimeSelection::~TimeSelection() = default;
