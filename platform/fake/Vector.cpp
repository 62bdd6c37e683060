#include "platform/fake/Vector.h"

#include <algorithm>
#include <utility>

#include "platform/fake/Objects.h"

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
    Geometry(std::shared_ptr<World> world, orvo::GeometryType type, std::string content,
             std::vector<Answer> table)
        : world_(std::move(world)), type_(type), content_(std::move(content)), table_(std::move(table)) {}
    const std::string& Content() const { return content_; }

    orvo::GeometryType GeometryType() const override {
        Count("GeometryType");
        return type_;
    }
    bool IsEmpty() const override {
        Count("IsEmpty");
        return content_.empty();
    }
    std::shared_ptr<IGeometry> Clone() const override {
        Count("Clone");
        return std::make_shared<Geometry>(*this);
    }
    bool Within(const std::shared_ptr<IEnvelope>& other) const override {
        return Ask("Within", other).within;
    }
    bool Crosses(const std::shared_ptr<IEnvelope>& other) const override {
        return Ask("Crosses", other).crosses;
    }
    bool Overlaps(const std::shared_ptr<IEnvelope>& other) const override {
        return Ask("Overlaps", other).overlaps;
    }
    void Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) override {
        content_ = Ask("Clip", clipEnvelope).clipped;
    }

  protected:
    void Count(const char* member) const { world_->Call(std::string("Geometry.") + member); }
    virtual Answer AnswerFor(const Box& rectangle) const {
        const auto found = std::ranges::find(table_, rectangle, &Answer::rectangle);
        return found == table_.end() ? Answer{} : *found;
    }

  private:
    Answer Ask(const char* member, const std::shared_ptr<IEnvelope>& other) const {
        Count(member);
        const IEnvelope& envelope = Object(other);
        return envelope.IsEmpty() ? Answer{} : AnswerFor(BoxOf(envelope));
    }

    std::shared_ptr<World> world_;
    orvo::GeometryType type_;
    std::string content_;
    std::vector<Answer> table_;
};

class PointGeometry : public Geometry, public IPoint {
  public:
    PointGeometry(std::shared_ptr<World> world, const Point& point)
        : Geometry(std::move(world), orvo::GeometryType::Point, "point", {}), point_(point) {}
    std::shared_ptr<IGeometry> Clone() const override {
        Count("Clone");
        return std::make_shared<PointGeometry>(*this);
    }
    double X() const override {
        Count("X");
        return point_.X;
    }
    double Y() const override {
        Count("Y");
        return point_.Y;
    }

  private:
    Answer AnswerFor(const Box& r) const override {
        return {r, r.xMin < point_.X && point_.X < r.xMax && r.yMin < point_.Y && point_.Y < r.yMax};
    }

    Point point_;
};

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
    return std::make_shared<PointGeometry>(std::move(world), point);
}

std::shared_ptr<IGeometry> MakeGeometry(std::shared_ptr<World> world, GeometryType type, std::string content,
                                        std::vector<Answer> table) {
    return std::make_shared<Geometry>(std::move(world), type, std::move(content), std::move(table));
}

const std::string& ContentOf(const std::shared_ptr<IGeometry>& geometry) {
    return dynamic_cast<const Geometry&>(Object(geometry)).Content();
}

}  // namespace orvo::fake
