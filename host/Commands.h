// The commands of orvo-tile: one file each, which declares the options and runs the command.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace orvo::host {

struct Command {
    CLI::App* app = nullptr;  ///< owned by the application's parser
    std::function<int()>
        run;  ///< gives the exit code; fails with UsageError, RunError or any other exception
};

Command AddRaster(CLI::App& application);
Command AddMerge(CLI::App& application);
Command AddVector(CLI::App& application);
Command AddLocate(CLI::App& application);
Command AddErrorDemo(CLI::App& application);

}  // namespace orvo::host
