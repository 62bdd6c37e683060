// Cuts a vector layer into one file per tile from a program of your own: embed_layer INPUT OUTDIR COLUMNS
// ROWS
#include <cstdlib>
#include <exception>
#include <iostream>

#include "platform/linux/Platform.h"
#include "tiling/vector/VectorJob.h"

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: embed_layer INPUT OUTDIR COLUMNS ROWS\n";
        return 2;
    }
    try {
        orvo::platform::Install(orvo::linux_platform::MakePlatform());
        orvo::tiling::VectorJob job;
        job.input = argv[1];
        job.outdir = argv[2];
        job.sizes.columns = std::atoi(argv[3]);
        job.sizes.rows = std::atoi(argv[4]);
        orvo::tiling::Callbacks callbacks;
        callbacks.notice = [](const std::string& text) { std::cerr << text << '\n'; };
        const auto summary = orvo::tiling::CutVector(job, callbacks);
        for (const auto& line : summary.Lines(false)) std::cerr << line << '\n';
        std::cout << summary.placed << " of " << summary.featuresIn << " features as " << summary.pieces
                  << " pieces in " << summary.written << " tiles\n";
        return summary.Result() == orvo::tiling::Outcome::Complete ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "embed_layer: " << error.what() << '\n';
        return 1;
    }
}
