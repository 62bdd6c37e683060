// Geometries and envelopes as the platform hands them out.
#pragma once

#include <memory>

#include "platform/Types.h"

namespace orvo {

/// The platform's geometry-type codes.
enum class GeometryType : Long {
    Null = 0,
    Point = 1,
    Multipoint = 2,
    Polyline = 3,
    Polygon = 4,
    Envelope = 5,
    Other = 6  ///< collections, curves, surfaces
};

/// A planar geometry in map units.
class IGeometry {
  public:
    virtual ~IGeometry() = default;
    virtual orvo::GeometryType GeometryType() const = 0;
    virtual bool IsEmpty() const = 0;
};

/// A point in map units.
struct Point {
    double X = 0;
    double Y = 0;
};

/// An axis-aligned rectangle in map units, with an extent along Z.
///
/// A new envelope is empty: its edges are not numbers and its sizes are 0. Setting an edge on an axis
/// without edges sets both edges of that axis; setting an edge past its opposite swaps the two. `Width`
/// keeps XMin, `Height` keeps YMin, `Depth` keeps ZMin; a negative size swaps the edges like any other;
/// setting a size on an axis without edges starts that axis at 0.
class IEnvelope : public IGeometry {
  public:
    virtual double XMin() const = 0;
    virtual double YMin() const = 0;
    virtual double XMax() const = 0;
    virtual double YMax() const = 0;
    virtual double Width() const = 0;
    virtual double Height() const = 0;
    virtual double Depth() const = 0;
    virtual void XMin(double value) = 0;
    virtual void YMin(double value) = 0;
    virtual void XMax(double value) = 0;
    virtual void YMax(double value) = 0;
    virtual void Width(double value) = 0;
    virtual void Height(double value) = 0;
    virtual void Depth(double value) = 0;

    /// A deep copy, owned by the caller.
    virtual std::shared_ptr<IEnvelope> Clone() const = 0;
    /// Becomes the intersection with `other`; empty where the two are disjoint or only touch.
    virtual void Intersect(const IEnvelope& other) = 0;
};

}  // namespace orvo
