// preview.html as a text; the build makes its definition.
#pragma once

namespace orvo::host {

extern const char* const kPreviewTemplate;

}  // namespace orvo::host
