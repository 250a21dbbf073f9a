// Runs whatever binding list is accepted.
//
// An input that begins with "L" is the bytes of a list as they are; with "R", their length and checksum are put right.
// Any other input is a source text up to a zero byte, then changes to its list: an operation, a place in two bytes,
// and a number in four; after them length and checksum are put right.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "language/compiler.h"
#include "language/machine.h"
#include "language/program.h"
#include "unit/binding/language/program_exercise.h"

using namespace frontpanel;

using namespace frontpanel::binding_language;

namespace {

BindingListT numbers_of(std::string_view bytes) {
    BindingListT list(bytes.size() / sizeof(int));
    if (!list.empty()) {
        std::memcpy(list.data(), bytes.data(), list.size() * sizeof(int));
    }
    return list;
}

void change(BindingListT& list, std::string_view change) {
    uint16_t place = 0;
    int number = 0;
    std::memcpy(&place, change.data() + 1, sizeof place);
    std::memcpy(&number, change.data() + 3, sizeof number);
    if (list.empty()) {
        return;
    }
    const auto at = list.begin() + static_cast<std::ptrdiff_t>(place % list.size());
    switch (static_cast<unsigned char>(change[0]) % 5) {
        case 0:
            *at = number;
            break;
        case 1:
            *at = static_cast<int>(static_cast<uint32_t>(*at) + static_cast<uint32_t>(number % 4));
            break;
        case 2:
            *at ^= number;
            break;
        case 3:
            list.insert(at, number);
            break;
        default:
            list.erase(at);
            break;
    }
}

BindingListT changed_list(std::string_view input) {
    static const Parameter_table parameters;
    static Compiler compiler;
    const std::size_t zero_byte = std::min(input.find('\0'), input.size());
    BindingListT list = compiler.compile(input.substr(0, zero_byte), {parameters, INTEGER}).list;
    constexpr std::size_t CHANGE_SIZE = 7;
    for (std::size_t at = zero_byte + 1; at + CHANGE_SIZE <= input.size(); at += CHANGE_SIZE) {
        change(list, input.substr(at, CHANGE_SIZE));
    }
    support::repair(list);
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static Machine machine;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const bool is_list = !input.empty() && (input[0] == 'L' || input[0] == 'R');
    BindingListT list = is_list ? numbers_of(input.substr(1)) : changed_list(input);
    if (is_list && input[0] == 'R') {
        support::repair(list);
    }
    std::string why;
    const std::optional<Program> program = Program::decode(list, why);
    support::require(program.has_value() || !why.empty());
    if (program) {
        support::exercise(*program, machine);
    }
    return 0;
}
