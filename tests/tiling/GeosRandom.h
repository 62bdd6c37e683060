// Random geometries around the tile from (0, 0) to (10, 10), as text.
#pragma once

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <sstream>

#include "GeosShapes.h"

namespace orvo::geos::test {

class Random {
  public:
    /// A new seed each time, or the one in ORVO_SEED to see a failure again.
    Random() {
        const char* given = std::getenv("ORVO_SEED");
        seed_ = given != nullptr ? static_cast<unsigned>(std::atoi(given)) : std::random_device{}() >> 1U;
        engine_.seed(seed_);
    }

    std::string Seed() const { return "ORVO_SEED=" + std::to_string(seed_); }
    double Number(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }
    int Whole(int low, int high) { return std::uniform_int_distribution(low, high)(engine_); }

    /// Heights lie on a slope, so that every place on a segment has a known one.
    static double Slope(double x, double y) { return 100 + 2 * x - 3 * y; }

    /// Valid, of any kind. Coordinates are multiples of `step`; 0 for any.
    std::string Geometry(double step, bool hasZ = false) {
        const int kind = Whole(0, 5);
        if (kind > 1) return Area(step, hasZ);
        const int points = Whole(1, 4);
        if (kind == 0) return (points == 1 ? "POINT " : "MULTIPOINT ") + Text(Places(points, step), hasZ);
        std::string lines;
        for (int parts = Whole(1, 3); parts > 0; --parts)
            lines += (lines.empty() ? "" : ", ") + Text(Places(Whole(2, 7), step), hasZ);
        return "MULTILINESTRING (" + lines + ")";
    }

  private:
    /// With parts and holes now and then.
    std::string Area(double step, bool hasZ) {
        for (;;) {
            const std::string text =
                Whole(1, 4) == 1 ? "MULTIPOLYGON (" + OneArea(step, hasZ) + ", " + OneArea(step, hasZ) + ")"
                                 : "POLYGON " + OneArea(step, hasZ);
            if (GEOSisValid_r(GeosContext(), FromText(text).get()) == 1) return text;
        }
    }

    static double Snapped(double value, double step) {
        return step > 0 ? std::round(value / step) * step : value;
    }

    /// No two in a row alike.
    std::vector<Coordinate> Places(int count, double step) {
        std::vector<Coordinate> places;
        while (static_cast<int>(places.size()) < count) {
            const Coordinate next{Snapped(Number(-8, 18), step), Snapped(Number(-8, 18), step)};
            if (places.empty() || !SamePlace(places.back(), next)) places.push_back(next);
        }
        return places;
    }

    std::string OneArea(double step, bool hasZ) {
        const Coordinate centre = Places(1, 0).front();
        const double size = Number(0.5, Whole(0, 1) == 0 ? 25 : 4);
        std::string text = Text(Star(centre, size / 3, size, Whole(3, 30), step), hasZ);
        if (Whole(0, 2) == 0) text += ", " + Text(Star(centre, size / 12, size / 4, Whole(3, 9), step), hasZ);
        return "(" + text + ")";
    }

    /// A ring around a centre, of any orientation.
    std::vector<Coordinate> Star(const Coordinate& centre, double least, double most, int corners,
                                 double step) {
        std::vector<Coordinate> ring;
        const double turn = (Whole(0, 1) == 0 ? 2 : -2) * std::numbers::pi / corners;
        for (int n = 0; n < corners; ++n) {
            const double radius = Number(least, most);
            ring.push_back({Snapped(centre.x + radius * std::cos(turn * n), step),
                            Snapped(centre.y + radius * std::sin(turn * n), step)});
        }
        ring.push_back(ring.front());
        return ring;
    }

    static std::string Text(const std::vector<Coordinate>& places, bool hasZ) {
        std::ostringstream text;
        text.precision(17);
        for (const Coordinate& c : places) {
            text << (text.tellp() == 0 ? "(" : ", ") << c.x << " " << c.y;
            if (hasZ) text << " " << Slope(c.x, c.y);
        }
        text << ")";
        return text.str();
    }

    unsigned seed_ = 0;
    std::mt19937 engine_;
};

}  // namespace orvo::geos::test
