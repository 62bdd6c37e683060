#include "platform/memory/Envelope.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvo::memory {

const double Axis::kNoEdge = std::numeric_limits<double>::quiet_NaN();

bool Axis::HasEdges() const {
    return !std::isnan(min_) && !std::isnan(max_);
}

double Axis::Size() const {
    return HasEdges() ? max_ - min_ : 0;
}

void Axis::Min(double value) {
    Set(value, HasEdges() ? max_ : value);
}

void Axis::Max(double value) {
    Set(HasEdges() ? min_ : value, value);
}

void Axis::Size(double value) {
    const double from = HasEdges() ? min_ : 0;
    Set(from, from + value);
}

void Axis::Clear() {
    min_ = max_ = kNoEdge;
}

bool Axis::Intersect(double otherMin, double otherMax) {
    const double low = std::max(min_, otherMin);
    const double high = std::min(max_, otherMax);
    if (HasEdges() && low < high) {
        Set(low, high);
        return true;
    }
    Clear();
    return false;
}

void Axis::Set(double a, double b) {
    min_ = std::min(a, b);
    max_ = std::max(a, b);
}

void Envelope::Intersect(const IEnvelope& other) {
    const bool meetsX = !other.IsEmpty() && x_.Intersect(other.XMin(), other.XMax());
    const bool meetsY = !other.IsEmpty() && y_.Intersect(other.YMin(), other.YMax());
    if (meetsX && meetsY) return;
    x_.Clear();
    y_.Clear();
}

}  // namespace orvo::memory
