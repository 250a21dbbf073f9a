#include "language/token_cursor.h"

namespace frontpanel::binding_language {

void Token_cursor::fail(const char* place, const std::string& message) const {
    throw error(place, message);
}

void Token_cursor::fail_expected(const std::string& expected) const {
    fail(place(), "expected " + expected + ", found " + m_token.description());
}

void Token_cursor::fail_too_deep() const {
    fail(place(), "nested too deeply");
}

}  // namespace frontpanel::binding_language
