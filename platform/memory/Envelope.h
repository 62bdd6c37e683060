// Envelopes that live in memory.
#pragma once

#include <memory>

#include "platform/Geometry.h"

namespace orvo::memory {

/// One axis of an envelope: two edges in order, or none.
class Axis {
  public:
    bool HasEdges() const;
    double Min() const { return min_; }
    double Max() const { return max_; }
    double Size() const;  ///< 0 without edges
    void Min(double value);
    void Max(double value);
    void Size(double value);  ///< keeps the lower edge; without edges it becomes 0
    void Clear();
    /// Becomes the common part of positive length; false, and without edges, where there is none.
    bool Intersect(double otherMin, double otherMax);

  private:
    void Set(double a, double b);
    double min_ = kNoEdge;
    double max_ = kNoEdge;
    static const double kNoEdge;
};

class Envelope : public IEnvelope {
  public:
    orvo::GeometryType GeometryType() const override { return orvo::GeometryType::Envelope; }
    bool IsEmpty() const override { return !x_.HasEdges() || !y_.HasEdges(); }
    double XMin() const override { return x_.Min(); }
    double YMin() const override { return y_.Min(); }
    double XMax() const override { return x_.Max(); }
    double YMax() const override { return y_.Max(); }
    double Width() const override { return x_.Size(); }
    double Height() const override { return y_.Size(); }
    double Depth() const override { return z_.Size(); }
    void XMin(double value) override { x_.Min(value); }
    void YMin(double value) override { y_.Min(value); }
    void XMax(double value) override { x_.Max(value); }
    void YMax(double value) override { y_.Max(value); }
    void Width(double value) override { x_.Size(value); }
    void Height(double value) override { y_.Size(value); }
    void Depth(double value) override { z_.Size(value); }
    std::shared_ptr<IEnvelope> Clone() const override { return std::make_shared<Envelope>(*this); }
    void Intersect(const IEnvelope& other) override;

  private:
    Axis x_, y_, z_;
};

}  // namespace orvo::memory
