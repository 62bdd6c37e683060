// The limit that a vector run is measured against: the layer in memory, and one GEOSClipByRect for each
// feature and tile whose bounds meet.
//
//   limit_clip SOURCE LAYER XMIN YMIN TILE_WIDTH TILE_HEIGHT COLUMNS ROWS
#include <gdal_priv.h>
#include <geos_c.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from) {
    return std::chrono::duration<double>(Clock::now() - from).count();
}

struct Grid {
    double xMin, yMin, width, height;
    int columns, rows;
};

struct Held {
    GEOSGeometry* geometry;
    OGREnvelope bounds;
};

std::vector<Held> Read(const char* source, const char* name, GEOSContextHandle_t geos) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(source, GDAL_OF_VECTOR));
    OGRLayer* const layer = dataset ? dataset->GetLayerByName(name) : nullptr;
    if (layer == nullptr) std::exit(2);
    std::vector<Held> held;
    for (const auto& feature : *layer) {
        const OGRGeometry* const geometry = feature->GetGeometryRef();
        if (geometry == nullptr || geometry->IsEmpty()) continue;
        Held one{geometry->exportToGEOS(geos), {}};
        geometry->getEnvelope(&one.bounds);
        held.push_back(one);
    }
    return held;
}

int First(double from, double origin, double size) {
    return std::max(0, static_cast<int>(std::floor((from - origin) / size)));
}

long Clip(const std::vector<Held>& held, const Grid& grid, GEOSContextHandle_t geos) {
    long pieces = 0;
    for (const Held& one : held) {
        const int lastColumn = std::min(First(one.bounds.MaxX, grid.xMin, grid.width), grid.columns - 1);
        const int lastRow = std::min(First(one.bounds.MaxY, grid.yMin, grid.height), grid.rows - 1);
        for (int row = First(one.bounds.MinY, grid.yMin, grid.height); row <= lastRow; ++row) {
            for (int column = First(one.bounds.MinX, grid.xMin, grid.width); column <= lastColumn; ++column) {
                const double x = grid.xMin + column * grid.width;
                const double y = grid.yMin + row * grid.height;
                GEOSGeometry* const piece =
                    GEOSClipByRect_r(geos, one.geometry, x, y, x + grid.width, y + grid.height);
                if (piece != nullptr && GEOSisEmpty_r(geos, piece) == 0) ++pieces;
                GEOSGeom_destroy_r(geos, piece);
            }
        }
    }
    return pieces;
}

}  // namespace

int main(int count, char** values) {
    if (count != 9) return 2;
    GDALAllRegister();
    GEOSContextHandle_t const geos = GEOS_init_r();
    const Grid grid{std::atof(values[3]), std::atof(values[4]), std::atof(values[5]),
                    std::atof(values[6]), std::atoi(values[7]), std::atoi(values[8])};
    const auto start = Clock::now();
    const auto held = Read(values[1], values[2], geos);
    const double reading = Seconds(start);
    const auto middle = Clock::now();
    const long pieces = Clip(held, grid, geos);
    std::printf("read %.3f s, clip %.3f s, %zu features, %ld pieces\n", reading, Seconds(middle), held.size(),
                pieces);
    for (const Held& one : held) GEOSGeom_destroy_r(geos, one.geometry);
    GEOS_finish_r(geos);
}
