// Keys as messages of the front panel, from the code that reads them to the controller.
//
// | action           | type            | payload                                                      |
// |------------------|-----------------|--------------------------------------------------------------|
// | turns the shaft  | ShaftEncoderUIT | the steps in one byte, as a signed number; clockwise is up   |
// | pushes a button  | PushButtonUIT   | of SelectPressMessage, with the code of `Key_row` at the end |
// | a shortcut       | PushButtonUIT   | the button's number in one byte, 0 to 254                    |
// | nothing          | UserInputTimeoutT, none; or PushButtonUIT, the byte 255                        |
#ifndef FRONTPANEL_UI_KEY_MESSAGE_H
#define FRONTPANEL_UI_KEY_MESSAGE_H

#include <frontpanel_data/front_panel_messages.h>

#include <memory>
#include <vector>

#include <frontpanel_display/key.h>

namespace frontpanel {

using Message_pointer = std::unique_ptr<const FrontPanel::Message>;

// One press of a key, or one step. Null for a shortcut whose number no message can hold.
Message_pointer message_of(const Key& key);

// The keys of a message, in order: several for a shaft that was turned by several steps. Empty for a message that is no
// key, and for a damaged one (another length, an unknown code).
std::vector<Key> keys_of(const FrontPanel::Message& message);

// Whether the message reports that the panel was idle for a while.
bool tells_idle(const FrontPanel::Message& message);

}  // namespace frontpanel

#endif
