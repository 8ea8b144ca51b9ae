// sensorctl: the command line host of libsensorcontrol. See usage.cpp.
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "demo_script.h"
#include "host_library.h"
#include "script_runner.h"
#include "serve_command.h"
#include "usage.h"

using namespace sensorctl;

namespace {

struct CommandLine {
    RunOptions run;
    std::string scriptPath; // -f
    std::vector<std::string> requests;
    bool dryRun = false;
    bool help = false;
    bool version = false;
};

// Returns kExitOk, or kExitUsage after a message.
int ParseCommandLine(int argc, char** argv, CommandLine* command) {
    command->run.libraryPath = DefaultLibraryPath(argc > 0 ? argv[0] : nullptr);
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        std::string value;
        bool hasValue = false;
        if (arg.rfind("--", 0) == 0 && arg.find('=') != std::string::npos) {
            value = arg.substr(arg.find('=') + 1);
            arg = arg.substr(0, arg.find('='));
            hasValue = true;
        }
        auto takeValue = [&](std::string* into) {
            if (!hasValue) {
                if (i + 1 >= argc) return false;
                value = argv[++i];
            }
            *into = value;
            return true;
        };
        bool ok = true;
        if (arg == "--library")
            ok = takeValue(&command->run.libraryPath);
        else if (arg == "-f" || arg == "--file")
            ok = takeValue(&command->scriptPath);
        else if (arg == "--backend") {
            ok = takeValue(&command->run.backend);
            if (ok && command->run.backend != "sim" && command->run.backend != "linux") {
                std::cerr << "sensorctl: --backend takes sim or linux, not " << command->run.backend << "\n";
                return kExitUsage;
            }
        } else if (arg == "--scenario")
            ok = takeValue(&command->run.scenarioPath);
        else if (arg == "--pretty")
            command->run.pretty = true;
        else if (arg == "--echo")
            command->run.echo = true;
        else if (arg == "--journal")
            command->run.journal = true;
        else if (arg == "--fail")
            command->run.failOnErrorStatus = true;
        else if (arg == "-n" || arg == "--dry-run")
            command->dryRun = true;
        else if (arg == "-h" || arg == "--help")
            command->help = true;
        else if (arg == "-V" || arg == "--version")
            command->version = true;
        else if (!arg.empty() && arg[0] == '-') {
            std::cerr << "sensorctl: unknown option " << arg << "\n";
            PrintShortUsage(std::cerr);
            return kExitUsage;
        } else
            command->requests.push_back(argv[i]);
        if (!ok) {
            std::cerr << "sensorctl: " << arg << " needs a value\n";
            return kExitUsage;
        }
    }
    return kExitOk;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "serve") return RunServe(argc, argv, 2);
    CommandLine command;
    if (int failed = ParseCommandLine(argc, argv, &command)) return failed;
    if (command.help) {
        PrintUsage(std::cout);
        return kExitOk;
    }
    if (command.version) {
        PrintVersion(std::cout);
        return kExitOk;
    }

    bool const demo = command.requests.size() == 1 && command.requests[0] == "demo";
    std::vector<ScriptLine> lines;
    if (!command.scriptPath.empty()) {
        if (!command.requests.empty()) {
            std::cerr << "sensorctl: give requests either as arguments or with -f, not both\n";
            return kExitUsage;
        }
        if (command.scriptPath == "-") {
            lines = ReadScript(std::cin, "stdin");
        } else {
            std::ifstream in(command.scriptPath);
            if (!in) {
                std::cerr << "sensorctl: cannot read " << command.scriptPath << "\n";
                return kExitBackEnd;
            }
            lines = ReadScript(in, command.scriptPath);
        }
    } else if (demo) {
        lines = DemoScript();
        command.run.echo = true;
    } else if (!command.requests.empty()) {
        for (size_t i = 0; i < command.requests.size(); ++i)
            lines.push_back({"argument " + std::to_string(i + 1), command.requests[i], ""});
    } else {
        PrintShortUsage(std::cerr);
        return kExitUsage;
    }

    std::vector<Step> steps;
    if (!PrepareScript(lines, &steps, std::cerr)) return kExitUsage;
    if (command.dryRun) {
        PrintDryRun(steps, std::cout);
        return kExitOk;
    }
    int result = RunScript(steps, command.run, std::cout, std::cerr);
    if (demo && result != kExitBackEnd) return kExitOk; // a tour, whatever the statuses
    return result;
}
