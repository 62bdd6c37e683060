// The pages as texts; the build makes their definitions.
#pragma once

namespace orvo::tiling {

extern const char* const kPreviewTemplate;        ///< preview.html
extern const char* const kVectorPreviewTemplate;  ///< vector-preview.html

}  // namespace orvo::tiling
