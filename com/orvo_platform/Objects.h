// The classes that scripts create by name.
#pragma once

#include "platform/windows/system/Win32.h"

namespace orvo::windows {

// The caller owns the reference that each object starts with.
IUnknown* NewEmptyEnvelopeObject();
IUnknown* NewRasterLayerObject();
IUnknown* NewWorkspaceFactoryObject();
IUnknown* NewUtilToolsObject();
IUnknown* NewRasterConvertObject();

}  // namespace orvo::windows
