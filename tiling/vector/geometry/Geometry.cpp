#include "tiling/vector/geometry/Geometry.h"

#include "tiling/vector/geometry/Clip.h"
#include "tiling/vector/geometry/Convert.h"
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
    return Make(State(shared));
}

std::shared_ptr<Geometry> Geometry::FromWkb(std::span<const unsigned char> bytes) {
    auto shape = std::make_shared<const Shape>(ReadWkb(bytes));
    State state(shape);
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
    state.answers = nullptr;
    return Make(std::move(state));
}

std::shared_ptr<Geometry> Geometry::Mended() const {
    const auto& mended = state_.mending->Made();
    return mended ? Make(State(mended)) : nullptr;
}

std::shared_ptr<Geometry> Geometry::Foretold(const Bounds& rectangle) const {
    auto answers = std::make_shared<Answers>();
    answers->about = rectangle;
    const bool isShape = GeometryType() != GeometryType::Multipoint;
    answers->within = geos::Within(*state_.shape, rectangle, *state_.whole);
    if (!*answers->within && isShape) {
        answers->crosses = geos::Crosses(*state_.shape, rectangle, *state_.whole);
        answers->overlaps = geos::Overlaps(*state_.shape, rectangle, *state_.whole);
        if (!*answers->crosses && !*answers->overlaps)
            answers->covers = GeometryType() == GeometryType::Polygon && Covers(rectangle);
    }
    if (!*answers->within && answers->covers.value_or(true)) answers->cut = CutTo(rectangle);
    State state = state_;
    state.answers = std::move(answers);
    return Make(std::move(state));
}

const Geometry::Answers* Geometry::AnswersOf(const Bounds& rectangle) const {
    return state_.answers && state_.answers->about == rectangle ? state_.answers.get() : nullptr;
}

bool Geometry::Covers(const Bounds& rectangle) const {
    const Answers* const known = AnswersOf(rectangle);
    return known && known->covers ? *known->covers : geos::Covers(*state_.shape, rectangle);
}

bool Geometry::IsInvalid() const {
    return GeometryType() == GeometryType::Polygon &&
           !Answer(GEOSisValid_r(GeosContext(), ToGeos(*state_.shape).get()));
}

std::shared_ptr<IGeometry> Geometry::Clone() const {
    return Make(state_);
}

bool Geometry::Within(const std::shared_ptr<IEnvelope>& other) const {
    const Bounds rectangle = Bounds::Of(Object(other));
    const Answers* const known = AnswersOf(rectangle);
    return known && known->within ? *known->within : geos::Within(*state_.shape, rectangle, *state_.whole);
}

bool Geometry::Crosses(const std::shared_ptr<IEnvelope>& other) const {
    const Bounds rectangle = Bounds::Of(Object(other));
    const Answers* const known = AnswersOf(rectangle);
    return known && known->crosses ? *known->crosses : geos::Crosses(*state_.shape, rectangle, *state_.whole);
}

bool Geometry::Overlaps(const std::shared_ptr<IEnvelope>& other) const {
    const Bounds rectangle = Bounds::Of(Object(other));
    const Answers* const known = AnswersOf(rectangle);
    return known && known->overlaps ? *known->overlaps
                                    : geos::Overlaps(*state_.shape, rectangle, *state_.whole);
}

std::shared_ptr<const Shape> Geometry::CutTo(const Bounds& rectangle) const {
    const Answers* const known = AnswersOf(rectangle);
    if (known && known->cut) return known->cut;
    const bool isHeld = !rectangle.IsEmpty() && rectangle.HasArea() && rectangle.Holds(Extent());
    if (isHeld && state_.shape->type != GeometryType::Other) return state_.shape;
    return std::make_shared<const Shape>(
        geos::Clip(*state_.shape, rectangle, *state_.whole, *state_.mending));
}

void Geometry::Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) {
    auto cut = CutTo(Bounds::Of(Object(clipEnvelope)));
    if (cut != state_.shape) state_ = State(cut);
}

}  // namespace orvo::geos
