// orvo-tile: finds the command and runs it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Commands.h"
#include "host/HelpFormat.h"
#include "host/Interrupt.h"
#include "host/Options.h"
#include "host/Session.h"
#include "host/Suggestion.h"
#include "platform/FailureInFlight.h"
#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr const char* kFooter =
    "Exit codes: 0 all tiles are there; 1 something failed or is missing; 2 wrong usage; 130 interrupted.\n"
    "Put -- before paths that begin with a dash.";

int Fail(ExitCode code, const std::string& text) {
    Say(text);
    return code;
}

bool IsNumber(const std::string& text) {
    return text.find_first_of("0123456789") != std::string::npos &&
           text.find_first_not_of("+-.0123456789eE") == std::string::npos;
}

/// As the parser takes them. A number such as -.5 gets its zero: it would be read as an option. The words of
/// "--values stretch MIN MAX" become one.
std::vector<std::string> ArgumentsInReverse(int count, char** values) {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        std::string value = values[i];
        if (value.size() > 2 && value.starts_with("-.") && value[2] >= '0' && value[2] <= '9')
            value.insert(1, "0");
        const bool stretches = value == "stretch" && !arguments.empty() && arguments.back() == "--values";
        if (stretches && i + 2 < count && IsNumber(values[i + 1]) && IsNumber(values[i + 2])) {
            value += std::string(" ") + values[i + 1] + " " + values[i + 2];
            i += 2;
        }
        arguments.push_back(std::move(value));
    }
    std::ranges::reverse(arguments);
    return arguments;
}

int Run(const std::vector<Command>& commands) {
    try {
        for (const Command& command : commands) {
            if (command.app->parsed()) return command.run();
        }
        return kExitUsage;
    } catch (const tiling::UsageError& error) {
        return Fail(kExitUsage, error.what());
    } catch (...) {
        return Interrupted() ? kExitInterrupted : Fail(kExitIncomplete, FailureInFlight().Description());
    }
}

int Main(int count, char** values) {
    KeepCommandLine(count, values);
    CLI::App application{"Cuts raster and vector layers into georeferenced tiles.", "orvo-tile"};
    const auto format = std::make_shared<HelpFormat>();
    format->label("Positionals", "Arguments");
    application.formatter(format);
    application.set_version_flag("--version", ProgramName());
    application.require_subcommand(1);
    application.footer(kFooter);
    application.fallthrough(false);
    const std::vector<Command> commands{AddRaster(application), AddMerge(application), AddVector(application),
                                        AddLocate(application), AddErrorDemo(application)};
    for (const Command& command : commands) {
        AddHelp(*command.app);
        command.app->footer(kFooter);
    }
    try {
        application.parse(ArgumentsInReverse(count, values));
    } catch (const CLI::Success& wish) {
        return application.exit(wish, std::cout, std::cerr) == 0 ? kExitDone : kExitUsage;
    } catch (const tiling::UsageError& error) {
        return Fail(kExitUsage, error.what());
    } catch (const CLI::ParseError& error) {
        return Fail(kExitUsage, Explain(application, error));
    }
    return Run(commands);
}

}  // namespace
}  // namespace orvo::host

int main(int count, char** values) {
    try {
        return orvo::host::Main(count, values);
    } catch (...) {
        return orvo::host::Fail(orvo::host::kExitIncomplete, orvo::FailureInFlight().Description());
    }
}
