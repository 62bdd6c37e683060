// Envelopes that automation clients see.
#pragma once

#include <memory>

#include "platform/Geometry.h"
#include "platform/windows/automation/ScriptObject.h"

namespace orvo::windows {

/// An automation object over an envelope. The caller owns the reference that the object starts with.
ScriptObject* NewEnvelopeObject(std::shared_ptr<IEnvelope> envelope);

/// A new empty envelope in memory, behind an automation object.
std::shared_ptr<IEnvelope> NewEnvelope();

}  // namespace orvo::windows
