// The classes that scripts create by name.
#pragma once

#include "platform/windows/automation/ScriptObject.h"

namespace orvo::windows {

// The caller owns the reference that each object starts with.
ScriptObject* NewEmptyEnvelopeObject();
ScriptObject* NewRasterLayerObject();
ScriptObject* NewWorkspaceFactoryObject();
ScriptObject* NewUtilToolsObject();
ScriptObject* NewRasterConvertObject();

}  // namespace orvo::windows
