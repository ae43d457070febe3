// The one way in which the component shows its message form.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace pelmora {

// Shows `message` modally with the buttons of `buttonStyle` (message_box.h) and returns the code of
// the pressed button, 2 if the form was closed. An empty title shows the host program's name.
//
// The form is presented by platform().createFormPresenter. Where that is empty, delivers nothing or
// fails, the standard message box shows the same text with the same style and no title, and its
// answer is the result. buttonStyle is read only.
// Errors: none; a message box that is missing or throws counts as answered harmlessly.
std::int32_t showMessageForm(const std::string& message, std::int32_t& buttonStyle,
                             const std::string& title);

}  // namespace pelmora
