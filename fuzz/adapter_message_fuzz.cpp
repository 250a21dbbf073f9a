// Feeds lines to the parser of what adapters say, and texts to the writer of what the panel says.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "adapter_message.h"

namespace {

using namespace frontpanel;

void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// What the rest of the driver relies on.
void check(const Adapter_message& message) {
    constexpr std::size_t LONGEST_FAULT = 400;
    expect(message.kind != Adapter_message::RESULT || message.id.has_value());
    expect(message.kind != Adapter_message::FAULTY ||
           (!message.text.empty() && message.text.size() <= LONGEST_FAULT));
    const bool has_text =
        message.value.kind == Adapter_value::NUMBER || message.value.kind == Adapter_value::TEXT;
    expect(has_text || message.value.text.empty());
    expect(message.value.kind != Adapter_value::NUMBER || !message.value.text.empty());
}

// A line is one line, and JSON that holds the text.
void write_and_read(const std::string& text) {
    const std::optional<std::string> line = write_text_line(7, "name", text);
    if (!line) {
        return;
    }
    expect(line->find('\n') == std::string::npos);
    std::string answer = *line;
    const std::string kind = R"("type":"write")";
    expect(answer.find(kind) != std::string::npos);
    answer.replace(answer.find(kind), kind.size(), R"("type":"result")");
    const Adapter_message message = parse_adapter_message(answer);
    expect(message.kind == Adapter_message::RESULT && message.id == 7);
    expect(message.value.kind == Adapter_value::TEXT && message.value.text == text);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const uint8_t* data,
                                                                             std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    check(parse_adapter_message(text));
    write_and_read(text.substr(0, LONGEST_ADAPTER_TEXT));
    expect(error_line(text).find('\n') == std::string::npos);
    return 0;
}
