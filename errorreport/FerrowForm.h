// The error dialog as designed.
#pragma once

#include "platform/Dialog.h"

namespace orvo {

/// The dialog's controls with their design captions, which stand until the dialog is activated first.
Form DesignFerrow();

}  // namespace orvo
