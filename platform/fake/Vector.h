// Vector layers and geometries of the fake platform, simple enough to be exact: points, lines along the axes,
// and areas made of boxes.
#pragma once

#include <memory>
#include <vector>

#include "platform/Vector.h"
#include "platform/fake/World.h"

namespace orvo::fake {

struct Box {
    double xMin = 0;
    double yMin = 0;
    double xMax = 0;
    double yMax = 0;
};

/// What a geometry is made of: single points, paths of axis-parallel segments, or closed rings of boxes.
/// Rings fill by the even-odd rule, so that a box inside a box is a hole; no two rings share part of an edge.
struct Shape {
    GeometryType type = GeometryType::Null;
    std::vector<std::vector<Point>> parts;
};

// Every call of these objects is counted by the world and may be made to fail.

std::shared_ptr<IEnvelope> MakeEnvelope(const std::shared_ptr<World>& world, const Box& box);
/// A layer that hands out `areaOfInterest` itself.
std::shared_ptr<ILayer> MakeVectorLayer(std::shared_ptr<World> world,
                                        std::shared_ptr<IEnvelope> areaOfInterest);
std::shared_ptr<IGeometry> MakePoint(std::shared_ptr<World> world, const Point& point);
std::shared_ptr<IGeometry> MakeMultipoint(std::shared_ptr<World> world, const std::vector<Point>& points);
std::shared_ptr<IGeometry> MakePolyline(std::shared_ptr<World> world, std::vector<std::vector<Point>> paths);
std::shared_ptr<IGeometry> MakePolygon(std::shared_ptr<World> world, const std::vector<Box>& boxes);

/// The shape of a geometry that was made here; not counted.
const Shape& ShapeOf(const std::shared_ptr<IGeometry>& geometry);

}  // namespace orvo::fake
