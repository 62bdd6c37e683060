// Random valid geometries around the tile from (0, 0) to (10, 10).
#pragma once

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "GeosShapes.h"

namespace orvo::geos::test {

class Random {
  public:
    /// A new seed each time, or the one in ORVO_SEED to see a failure again.
    Random() : seed_(Choose()), engine_(seed_) {}

    std::string Seed() const { return "ORVO_SEED=" + std::to_string(seed_); }
    double Number(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }
    int Whole(int low, int high) { return std::uniform_int_distribution(low, high)(engine_); }

    /// Coordinates are multiples of `step`; 0 for any.
    std::string Geometry(double step, bool hasZ = false) {
        const int kind = Whole(0, 5);
        if (kind == 0) return Point(step, hasZ);
        if (kind == 1) return Line(step, hasZ);
        return Area(step, hasZ);
    }

    std::string Point(double step, bool hasZ = false) {
        Ring points;
        for (int n = Whole(1, 4); n > 0; --n) points.push_back(Place(step));
        return points.size() == 1 && Whole(0, 1) == 0 ? Text("POINT", points, hasZ)
                                                      : Text("MULTIPOINT", points, hasZ);
    }

    std::string Line(double step, bool hasZ = false) {
        std::string text;
        const int parts = Whole(1, 3);
        for (int n = 0; n < parts; ++n) text += (n == 0 ? "" : ", ") + Text("", Walk(step), hasZ);
        return std::string("MULTILINESTRING ") + (hasZ ? "Z " : "") + "(" + text + ")";
    }

    /// Valid; with parts and holes now and then.
    std::string Area(double step, bool hasZ = false) {
        for (;;) {
            std::string text = AnyArea(step, hasZ);
            if (GEOSisValid_r(Library(), FromText(text).get()) == 1) return text;
        }
    }

    /// May cross or touch itself.
    std::string AnyArea(double step, bool hasZ = false) {
        const int parts = Whole(1, 4) == 1 ? 2 : 1;
        std::string text;
        for (int n = 0; n < parts; ++n) text += (n == 0 ? "" : ", ") + OneArea(step, hasZ);
        return std::string(parts > 1 ? "MULTIPOLYGON " : "POLYGON ") + (hasZ ? "Z " : "") +
               (parts > 1 ? "(" + text + ")" : text);
    }

  private:
    using Ring = std::vector<std::pair<double, double>>;

    static unsigned Choose() {
        const char* given = std::getenv("ORVO_SEED");
        return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                : std::random_device{}();
    }

    static double Snapped(double value, double step) {
        return step > 0 ? std::round(value / step) * step : value;
    }

    std::pair<double, double> Place(double step) {
        return {Snapped(Number(-8, 18), step), Snapped(Number(-8, 18), step)};
    }

    Ring Walk(double step) {
        Ring line;
        const int size = Whole(2, 7);
        while (static_cast<int>(line.size()) < size) {
            const auto next = Place(step);
            if (line.empty() || next != line.back()) line.push_back(next);
        }
        return line;
    }

    std::string OneArea(double step, bool hasZ) {
        const auto [x, y] = Place(0);
        const double size = Number(0.5, Whole(0, 1) == 0 ? 25 : 4);
        const int corners = Whole(3, 30);
        std::string text = Text("", Star(x, y, size / 3, size, corners, step), hasZ);
        if (Whole(0, 2) == 0)
            text += ", " + Text("", Star(x, y, size / 12, size / 4, Whole(3, 9), step), hasZ);
        return "(" + text + ")";
    }

    /// A ring around a centre, of any orientation.
    Ring Star(double x, double y, double least, double most, int corners, double step) {
        Ring ring;
        const double turn = Whole(0, 1) == 0 ? 1 : -1;
        for (int n = 0; n < corners; ++n) {
            const double angle = turn * 2 * std::numbers::pi * n / corners;
            const double radius = Number(least, most);
            ring.emplace_back(Snapped(x + radius * std::cos(angle), step),
                              Snapped(y + radius * std::sin(angle), step));
        }
        ring.push_back(ring.front());
        return ring;
    }

    /// Heights lie on a slope, so that every place on a segment has a known one.
    static std::string Text(const std::string& kind, const Ring& ring, bool hasZ) {
        std::ostringstream text;
        text.precision(17);
        text << kind << (hasZ && !kind.empty() ? " Z" : "") << "(";
        for (std::size_t n = 0; n < ring.size(); ++n) {
            text << (n == 0 ? "" : ", ") << ring[n].first << " " << ring[n].second;
            if (hasZ) text << " " << Slope(ring[n].first, ring[n].second);
        }
        text << ")";
        return text.str();
    }

  public:
    static double Slope(double x, double y) { return 100 + 2 * x - 3 * y; }

  private:
    unsigned seed_;
    std::mt19937 engine_;
};

}  // namespace orvo::geos::test
