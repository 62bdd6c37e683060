#include "platform/fake/Vector.h"

#include <utility>

#include "platform/fake/Objects.h"
#include "platform/fake/Relations.h"

namespace orvo::fake {
namespace {

Box BoxOf(const IEnvelope& envelope) {
    return {envelope.XMin(), envelope.YMin(), envelope.XMax(), envelope.YMax()};
}

class VectorLayer : public ILayer {
  public:
    VectorLayer(std::shared_ptr<World> world, std::shared_ptr<IEnvelope> areaOfInterest)
        : world_(std::move(world)), areaOfInterest_(std::move(areaOfInterest)) {}
    std::shared_ptr<IEnvelope> AreaOfInterest() override {
        world_->Call("Layer.AreaOfInterest");
        return areaOfInterest_;
    }

  private:
    std::shared_ptr<World> world_;
    std::shared_ptr<IEnvelope> areaOfInterest_;
};

class Geometry : public IGeometry, public IClone, public IRelationalOperator, public ITopologicalOperator {
  public:
    Geometry(std::shared_ptr<World> world, Shape shape)
        : world_(std::move(world)), shape_(std::move(shape)) {}
    const Shape& GetShape() const { return shape_; }

    orvo::GeometryType GeometryType() const override { return Counted("GeometryType").type; }
    bool IsEmpty() const override { return Counted("IsEmpty").parts.empty(); }
    std::shared_ptr<IGeometry> Clone() const override;
    bool Within(const std::shared_ptr<IEnvelope>& other) const override {
        return RelateTo("Within", other).Within();
    }
    bool Crosses(const std::shared_ptr<IEnvelope>& other) const override {
        return RelateTo("Crosses", other).Crosses();
    }
    bool Overlaps(const std::shared_ptr<IEnvelope>& other) const override {
        return RelateTo("Overlaps", other).Overlaps();
    }
    void Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) override {
        Counted("Clip");
        const IEnvelope& envelope = Object(clipEnvelope);
        shape_ = envelope.IsEmpty() ? Shape{shape_.type, {}} : Cut(shape_, BoxOf(envelope));
    }

  protected:
    const Shape& Counted(const char* member) const {
        world_->Call(std::string("Geometry.") + member);
        return shape_;
    }

  private:
    Matrix RelateTo(const char* member, const std::shared_ptr<IEnvelope>& other) const {
        const Shape& shape = Counted(member);
        const IEnvelope& envelope = Object(other);
        return Relate(shape, envelope.IsEmpty() ? Shape{} : ShapeOfBox(BoxOf(envelope)));
    }

    std::shared_ptr<World> world_;
    Shape shape_;
};

class PointGeometry : public Geometry, public IPoint {
  public:
    using Geometry::Geometry;
    double X() const override { return Counted("X").parts.at(0).at(0).X; }
    double Y() const override { return Counted("Y").parts.at(0).at(0).Y; }
};

std::shared_ptr<IGeometry> Make(std::shared_ptr<World> world, Shape shape) {
    if (shape.type == GeometryType::Point) {
        return std::make_shared<PointGeometry>(std::move(world), std::move(shape));
    }
    return std::make_shared<Geometry>(std::move(world), std::move(shape));
}

std::shared_ptr<IGeometry> Geometry::Clone() const {
    return Make(world_, Counted("Clone"));
}

}  // namespace

std::shared_ptr<IEnvelope> MakeEnvelope(const std::shared_ptr<World>& world, const Box& box) {
    auto envelope = std::make_shared<Envelope>(world);
    envelope->XMin(box.xMin);
    envelope->YMin(box.yMin);
    envelope->XMax(box.xMax);
    envelope->YMax(box.yMax);
    return envelope;
}

std::shared_ptr<ILayer> MakeVectorLayer(std::shared_ptr<World> world,
                                        std::shared_ptr<IEnvelope> areaOfInterest) {
    return std::make_shared<VectorLayer>(std::move(world), std::move(areaOfInterest));
}

std::shared_ptr<IGeometry> MakePoint(std::shared_ptr<World> world, const Point& point) {
    return Make(std::move(world), {GeometryType::Point, {{point}}});
}

std::shared_ptr<IGeometry> MakeMultipoint(std::shared_ptr<World> world, const std::vector<Point>& points) {
    Shape shape{GeometryType::Multipoint, {}};
    for (const Point& point : points) shape.parts.push_back({point});
    return Make(std::move(world), std::move(shape));
}

std::shared_ptr<IGeometry> MakePolyline(std::shared_ptr<World> world, std::vector<std::vector<Point>> paths) {
    return Make(std::move(world), {GeometryType::Polyline, std::move(paths)});
}

std::shared_ptr<IGeometry> MakePolygon(std::shared_ptr<World> world, const std::vector<Box>& boxes) {
    Shape shape{GeometryType::Polygon, {}};
    for (const Box& box : boxes) shape.parts.push_back(ShapeOfBox(box).parts.at(0));
    return Make(std::move(world), std::move(shape));
}

const Shape& ShapeOf(const std::shared_ptr<IGeometry>& geometry) {
    return dynamic_cast<const Geometry&>(Object(geometry)).GetShape();
}

}  // namespace orvo::fake
