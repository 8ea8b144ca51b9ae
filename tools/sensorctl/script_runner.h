// Runs a list of requests against the library in one process, so that sensor
// ids returned by one request stay valid for the next ones.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "request_line.h"
#include "routes.h"

namespace sensorctl {

enum ExitCode : int {
    kExitOk = 0,
    kExitBackEnd = 1,     // library, export, file or scenario could not be used
    kExitUsage = 2,       // bad option or a request that cannot be understood
    kExitErrorStatus = 3, // with --fail: a response status of 400 or above
};

struct ScriptLine {
    std::string origin; // where it came from, for messages: "demo.txt:4", "argument 2"
    std::string text;
    std::string note; // printed as "# note" before the request (the demo's narration)
};

struct RunOptions {
    std::string libraryPath;
    // The device set, "sim" or "linux" (see device_set.h); empty: the one the
    // library's run path and the loader's search path find.
    std::string backend;
    std::string scenarioPath; // empty: the back-end's own world
    bool pretty = false;
    bool echo = false;    // print each request before its response
    bool journal = false; // print the simulator's device calls after each response
    bool failOnErrorStatus = false;
};

struct Step {
    ScriptLine line;
    RequestLine request;
    RouteMatch match;
};

// One ScriptLine per line of the stream that is not blank or a comment.
std::vector<ScriptLine> ReadScript(std::istream& in, std::string const& name);

// Parses and routes every line and checks that each variable is set by an
// earlier line, before anything is sent. On the first failure writes
// "sensorctl: <origin>: <why>" to err and returns false.
bool PrepareScript(std::vector<ScriptLine> const& lines, std::vector<Step>* steps, std::ostream& err);

// Prints what each step would pass to which export, without loading anything.
void PrintDryRun(std::vector<Step> const& steps, std::ostream& out);

// Loads the library, runs the steps in order and returns an ExitCode.
int RunScript(std::vector<Step> const& steps, RunOptions const& options, std::ostream& out,
              std::ostream& err);

} // namespace sensorctl
