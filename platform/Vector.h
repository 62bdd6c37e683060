// Vector layers, and what their geometries can do.
#pragma once

#include <memory>

#include "platform/Geometry.h"
#include "platform/RuntimeError.h"

namespace orvo {

/// A layer of a map.
class ILayer {
  public:
    virtual ~ILayer() = default;
    /// The layer's extent in map units; the reference that the platform hands out.
    virtual std::shared_ptr<IEnvelope> AreaOfInterest() = 0;
};

// A geometry offers the interfaces below beside IGeometry; ask for one by As<Interface>(geometry).

/// A single point.
class IPoint {
  public:
    virtual ~IPoint() = default;
    virtual double X() const = 0;
    virtual double Y() const = 0;
};

class IClone {
  public:
    virtual ~IClone() = default;
    /// A deep copy, owned by the caller.
    virtual std::shared_ptr<IGeometry> Clone() const = 0;
};

/// How a geometry lies to an envelope, by Simple Features (DE-9IM). An envelope without area counts as a line
/// or a point; an empty reference fails with number 91.
class IRelationalOperator {
  public:
    virtual ~IRelationalOperator() = default;
    virtual bool Within(const std::shared_ptr<IEnvelope>& other) const = 0;
    virtual bool Crosses(const std::shared_ptr<IEnvelope>& other) const = 0;
    virtual bool Overlaps(const std::shared_ptr<IEnvelope>& other) const = 0;
};

class ITopologicalOperator {
  public:
    virtual ~ITopologicalOperator() = default;
    /// Cuts the geometry in place to an envelope; it keeps its kind and dimension and may become empty.
    virtual void Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) = 0;
};

/// Another interface of an object; an empty reference fails with number 91, a missing interface with 13.
template <class Interface, class Class>
std::shared_ptr<Interface> As(const std::shared_ptr<Class>& object) {
    if (!object) throw RuntimeError(Fault::ObjectNotSet);
    auto found = std::dynamic_pointer_cast<Interface>(object);
    if (!found) throw RuntimeError(Fault::TypeMismatch);
    return found;
}

}  // namespace orvo
