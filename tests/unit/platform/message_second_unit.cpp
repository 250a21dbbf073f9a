// A second unit with a catalogue of its own.
#include <frontpanel_data/front_panel_messages.h>

const FrontPanel::Message& heart_beat_of_the_second_unit();

const FrontPanel::Message& heart_beat_of_the_second_unit() {
    return FrontPanel::HeartBeat;
}
