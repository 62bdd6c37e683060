// Vector layers and geometries of the fake platform. A geometry computes nothing: it answers from a table.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Vector.h"
#include "platform/fake/World.h"

namespace orvo::fake {

struct Box {
    double xMin = 0;
    double yMin = 0;
    double xMax = 0;
    double yMax = 0;
    bool operator==(const Box&) const = default;
};

/// How a geometry lies to one rectangle, and what `Clip` makes of its content there.
struct Answer {
    Box rectangle;
    bool within = false;
    bool crosses = false;
    bool overlaps = false;
    std::string clipped{};
};

// Every call of these objects is counted by the world and may be made to fail.

std::shared_ptr<IEnvelope> MakeEnvelope(const std::shared_ptr<World>& world, const Box& box);
/// A layer that hands out `areaOfInterest` itself.
std::shared_ptr<ILayer> MakeVectorLayer(std::shared_ptr<World> world,
                                        std::shared_ptr<IEnvelope> areaOfInterest);
/// A point lies within the rectangles that hold it off their edges.
std::shared_ptr<IGeometry> MakePoint(std::shared_ptr<World> world, const Point& point);
/// Any other geometry. The content is a text that tells it from others; without one it is empty. To
/// rectangles that are not in the table it has no relation, and clipping to them leaves nothing.
std::shared_ptr<IGeometry> MakeGeometry(std::shared_ptr<World> world, GeometryType type, std::string content,
                                        std::vector<Answer> table);

/// The content of a geometry that was made here; not counted.
const std::string& ContentOf(const std::shared_ptr<IGeometry>& geometry);

}  // namespace orvo::fake
