// Cuts a picture into PNG tiles from a program of your own: embed INPUT OUTDIR SIZE
#include <cstdlib>
#include <exception>
#include <iostream>

#include "platform/gdal/RasterLayer.h"
#include "platform/linux/Platform.h"
#include "tileimage/clsTileImage.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: embed INPUT OUTDIR SIZE\n";
        return 2;
    }
    try {
        orvo::platform::Install(orvo::linux_platform::MakePlatform());
        orvo::clsTileImage tiler;
        tiler.SavePath(argv[2]);
        tiler.GraphicFormat("png");
        tiler.ImageLayer(orvo::gdal::OpenRasterLayer(argv[1]));
        tiler.TileWidth(std::atoi(argv[3]));
        tiler.TileHeight(std::atoi(argv[3]));
        const bool walked = tiler.Tile();
        const auto tiles = tiler.TileObjectDict();
        for (const auto& name : tiles->Keys()) {
            const auto extent = tiles->Item(name);
            std::cout << name << ": " << extent->XMin() << ' ' << extent->YMin() << ' ' << extent->XMax()
                      << ' ' << extent->YMax() << '\n';
        }
        return walked ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "embed: " << error.what() << '\n';
        return 1;
    }
}
