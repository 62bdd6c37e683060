// Geometries over GEOS: points, multipoints, lines and areas, with parts, holes and heights.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/Vector.h"
#include "tiling/vector/geometry/Mend.h"
#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// A geometry of the platform. Points offer `IPoint` beside.
///
/// Its coordinates are shared among copies and never change: a copy costs nothing, and cutting one leaves the
/// others alone. Use each object on one thread at a time.
class Geometry : public IGeometry, public IClone, public IRelationalOperator, public ITopologicalOperator {
  public:
    /// Reads ISO or extended WKB; fails with number 440 where the bytes make no sense. Collections, curves
    /// and surfaces come back as type `Other`: never empty, without an extent; they relate to nothing and are
    /// not cut.
    static std::shared_ptr<Geometry> FromWkb(std::span<const unsigned char> bytes);
    static std::shared_ptr<Geometry> Make(Shape shape);

    /// ISO WKB, little-endian; of type `Other`, the bytes as they were read.
    std::vector<unsigned char> ToWkb() const;
    const Shape& Coordinates() const { return *state_.shape; }
    const Bounds& Extent() const { return state_.shape->Extent(); }

    /// This geometry thinned out around a range: relates to, and is cut to, rectangles in the range as this
    /// one is, only sooner. Its own form outside the range means nothing.
    std::shared_ptr<Geometry> ReducedTo(const Bounds& range) const;

    /// An area whose border crosses itself so that cuts were in doubt, mended; null while none was. Copies
    /// and thinned out forms share it.
    std::shared_ptr<Geometry> Mended() const;
    /// Why a cut is empty that should not be: the border cannot be mended. Empty where nothing was lost.
    const std::string& Refusal() const { return state_.mending->Refusal(); }

    /// Whether an area holds the whole rectangle. Where it does, the rectangle itself is the cut, though the
    /// predicates know of no relation unless the two are equal.
    bool Covers(const Bounds& rectangle) const;
    /// Whether an area has a border that crosses or touches itself as no border may.
    bool IsInvalid() const;

    /// The same geometry, which knows already how it lies to the rectangle and what a cut to it leaves. Fails
    /// as those questions do.
    std::shared_ptr<Geometry> Foretold(const Bounds& rectangle) const;

    orvo::GeometryType GeometryType() const override { return state_.shape->type; }
    bool IsEmpty() const override {
        return state_.shape->type != GeometryType::Other && state_.shape->IsEmpty();
    }
    std::shared_ptr<IGeometry> Clone() const override;
    bool Within(const std::shared_ptr<IEnvelope>& other) const override;
    bool Crosses(const std::shared_ptr<IEnvelope>& other) const override;
    bool Overlaps(const std::shared_ptr<IEnvelope>& other) const override;
    /// Fails with number 438 for type `Other`.
    void Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) override;

  protected:
    /// What is known beforehand about one rectangle.
    struct Answers {
        Bounds about;
        std::optional<bool> within, crosses, overlaps, covers;
        std::shared_ptr<const Shape> cut;
    };
    struct State {
        explicit State(const std::shared_ptr<const Shape>& alone) : shape(alone), whole(alone) {}
        std::shared_ptr<const Shape> shape;
        std::shared_ptr<const Shape> whole;  ///< before it was thinned out; else the same
        std::shared_ptr<const std::vector<unsigned char>> bytes;               ///< of type `Other` only
        std::shared_ptr<Mending> mending = std::make_shared<geos::Mending>();  ///< of the whole
        std::shared_ptr<const Answers> answers;
    };
    explicit Geometry(State state) : state_(std::move(state)) {}

  private:
    class Single;
    class Several;
    static std::shared_ptr<Geometry> Make(State state);
    /// Null where nothing is known of the rectangle.
    const Answers* AnswersOf(const Bounds& rectangle) const;
    std::shared_ptr<const Shape> CutTo(const Bounds& rectangle) const;

    State state_;
};

}  // namespace orvo::geos
