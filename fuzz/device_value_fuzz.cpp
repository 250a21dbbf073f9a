// Feeds texts of a device to what finds and scales values in them. The first bytes choose the part of the text, the scale and
// the member; the rest is the text.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <frontpanel_drivers/scale.h>
#ifdef FRONTPANEL_DRIVER_FILE
#include "line_part.h"
#endif
#ifdef FRONTPANEL_DRIVER_MQTT
#include "topic_source.h"
#endif

namespace {

using namespace frontpanel;

void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// A number that is read, written and read again is the same.
void scale(std::string_view text, std::uint8_t kind) {
    static const Scale SCALES[] = {Scale(),
                                   Scale(1, 1000),
                                   Scale(100, 1),
                                   Scale(1, Scale::LARGEST),
                                   Scale(Scale::LARGEST, 1),
                                   Scale(7, 3)};
    const Scale& scale = SCALES[kind % std::size(SCALES)];
    const Scaled_number number = scale.from_device(text);
    if (const auto* const whole = std::get_if<std::int32_t>(&number)) {
        const std::string written = scale.to_decimal(*whole);
        expect(!written.empty() && written.find_first_not_of("-.0123456789") == std::string::npos);
        // With the others, nine decimals or eighteen digits are not enough for every number.
        if (kind % std::size(SCALES) < 3) {
            expect(scale.from_device(written) == Scaled_number(*whole));
        }
    } else {
        expect(!std::get<std::string>(number).empty());
    }
}

#ifdef FRONTPANEL_DRIVER_FILE
void find_part(std::string_view text, std::uint8_t line, std::uint8_t word) {
    const Line_part part{line % 5 == 4 ? "Mem" : "", line % 5U % 4U, word % 4U};
    const Found_part found = part_of(text, part);
    expect(found.failure.empty() || found.text.empty());
    if (found.failure.empty() && !found.text.empty()) {
        expect(found.text.data() >= text.data() &&
               found.text.data() + found.text.size() <= text.data() + text.size());
    }
}
#endif

#ifdef FRONTPANEL_DRIVER_MQTT
Message_member member_of(const char* json) {
    const Source source{"member", 0};
    const std::string text = json;
    const Json_document document(source, text);
    Problems problems;
    return Message_member(Json_value(document.root(), problems));
}

void take_message(std::string_view text, std::uint8_t kind) {
    static const Message_member MEMBERS[] = {Message_member(), member_of("\"Power\""),
                                             member_of("\"/ENERGY/0/Power\"")};
    Topic_source source;
    source.member = MEMBERS[kind % 3];
    source.is_text = (kind & 4U) != 0;
    source.words =
        (kind & 8U) != 0 ? std::vector<std::string>{"OFF", "ON"} : std::vector<std::string>{};
    Topic_message message(text);
    const auto value = value_in(source, message);
    if (const auto* const none = std::get_if<No_value>(&value)) {
        expect(!none->reason.empty());
        return;
    }
    const auto& found = std::get<Parameter_value>(value);
    expect(std::holds_alternative<std::string>(found) == source.is_text);
    source.write_topic = "set";
    source.write_member = source.member;
    (void)message_for(source, found);
}
#endif

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const uint8_t* data,
                                                                             std::size_t size) {
    constexpr std::size_t CHOICES = 2;
    if (size < CHOICES) {
        return 0;
    }
    // A copy of its own, so that a read beyond its end is found.
    const std::string text(reinterpret_cast<const char*>(data) + CHOICES, size - CHOICES);
    scale(text, data[0]);
#ifdef FRONTPANEL_DRIVER_FILE
    find_part(text, data[0], data[1]);
#endif
#ifdef FRONTPANEL_DRIVER_MQTT
    take_message(text, data[0]);
#endif
    return 0;
}
