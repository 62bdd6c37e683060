#include "tiling/vector/geometry/Geometry.h"

#include "tiling/vector/geometry/Clip.h"
#include "tiling/vector/geometry/Reduce.h"
#include "tiling/vector/geometry/Relations.h"
#include "tiling/vector/geometry/Wkb.h"

namespace orvo::geos {

class Geometry::Single final : public Geometry, public IPoint {
  public:
    explicit Single(State state) : Geometry(std::move(state)) {}
    double X() const override { return Only().x; }
    double Y() const override { return Only().y; }

  private:
    const Coordinate& Only() const {
        if (IsEmpty()) throw RuntimeError(Fault::InvalidProcedureCall, "an empty point has no coordinates");
        return Coordinates().Points().front();
    }
};

class Geometry::Several final : public Geometry {
  public:
    explicit Several(State state) : Geometry(std::move(state)) {}
};

std::shared_ptr<Geometry> Geometry::Make(State state) {
    if (state.shape->type == GeometryType::Point) return std::make_shared<Single>(std::move(state));
    return std::make_shared<Several>(std::move(state));
}

std::shared_ptr<Geometry> Geometry::Make(Shape shape) {
    auto shared = std::make_shared<const Shape>(std::move(shape));
    return Make({shared, shared, nullptr});
}

std::shared_ptr<Geometry> Geometry::FromWkb(std::span<const unsigned char> bytes) {
    auto shape = std::make_shared<const Shape>(ReadWkb(bytes));
    State state{shape, shape, nullptr};
    if (shape->type == GeometryType::Other)
        state.bytes = std::make_shared<const std::vector<unsigned char>>(bytes.begin(), bytes.end());
    return Make(std::move(state));
}

std::vector<unsigned char> Geometry::ToWkb() const {
    return state_.bytes ? *state_.bytes : WriteWkb(*state_.shape);
}

std::shared_ptr<Geometry> Geometry::ReducedTo(const Bounds& range) const {
    if (range.Holds(Extent())) return Make(state_);
    State state = state_;
    state.shape = std::make_shared<const Shape>(Reduced(*state_.shape, range));
    return Make(std::move(state));
}

std::shared_ptr<Geometry> Geometry::Mended() const {
    const auto& mended = state_.mending->Made();
    return mended ? Make({mended, mended, nullptr}) : nullptr;
}

bool Geometry::Covers(const Bounds& rectangle) const {
    return geos::Covers(*state_.shape, rectangle);
}

std::shared_ptr<IGeometry> Geometry::Clone() const {
    return Make(state_);
}

bool Geometry::Within(const std::shared_ptr<IEnvelope>& other) const {
    return geos::Within(*state_.shape, Bounds::Of(Object(other)), *state_.whole);
}

bool Geometry::Crosses(const std::shared_ptr<IEnvelope>& other) const {
    return geos::Crosses(*state_.shape, Bounds::Of(Object(other)), *state_.whole);
}

bool Geometry::Overlaps(const std::shared_ptr<IEnvelope>& other) const {
    return geos::Overlaps(*state_.shape, Bounds::Of(Object(other)), *state_.whole);
}

void Geometry::Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) {
    const Bounds rectangle = Bounds::Of(Object(clipEnvelope));
    const bool isHeld = !rectangle.IsEmpty() && rectangle.HasArea() && rectangle.Holds(Extent());
    if (isHeld && state_.shape->type != GeometryType::Other) return;
    auto cut =
        std::make_shared<const Shape>(geos::Clip(*state_.shape, rectangle, *state_.whole, *state_.mending));
    state_ = {cut, cut, nullptr};
}

}  // namespace orvo::geos
