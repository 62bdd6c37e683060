// The localization pass over a dialog.
#pragma once

#include "platform/Dialog.h"

namespace orvo {

/// Puts localized texts on a dialog and its controls, from the string ids in their properties. Whatever fails
/// is skipped: a missing property, a missing text, an id that is no number.
void LoadResStrings(Form& frm);

}  // namespace orvo
