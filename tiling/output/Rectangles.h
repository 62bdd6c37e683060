// Rectangles in map units and the platform's envelopes.
#pragma once

#include <memory>

#include "platform/memory/Envelope.h"
#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

inline Rectangle EdgesOf(const IEnvelope& envelope) {
    return {envelope.XMin(), envelope.YMin(), envelope.XMax(), envelope.YMax()};
}

inline std::shared_ptr<IEnvelope> EnvelopeOf(const Rectangle& r) {
    auto envelope = std::make_shared<memory::Envelope>();
    envelope->XMin(r.xMin);
    envelope->XMax(r.xMax);
    envelope->YMin(r.yMin);
    envelope->YMax(r.yMax);
    return envelope;
}

}  // namespace orvo::tiling
