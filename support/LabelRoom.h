// What a form says about its controls between the lines: whose title is whose, and what room a label has.
#pragma once

#include <string>

#include "platform/Dialog.h"

namespace orvo {

/// The place of a label: designed boxes are small, and the label may take what its frame leaves to its right
/// and below. It keeps clear of its frame's edge and of what stands beside it.
Box LabelRoom(const Control& label, const Form& form);

/// The name by which a screen reader announces a control: its own caption, for a value the title beside it,
/// else its frame's caption.
std::string SpokenName(const Control& control, const Form& form);

}  // namespace orvo
