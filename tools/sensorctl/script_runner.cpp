#include "script_runner.h"

#include <istream>
#include <ostream>
#include <set>

#include "device_set.h"
#include "host_library.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "scenario.h"
#include "variables.h"

namespace sensorctl {

namespace {

std::string Pretty(std::string const& text, bool pretty) {
    if (!pretty) return text;
    quilljson::Value value;
    if (!quilljson::Parser().parse(&value, text)) return text;
    std::string out;
    if (!quilljson::Serializer::serialize(out, value, quilljson::SerializeOption(0x80 | 0x01))) return text;
    return out;
}

// The request's pieces with variables replaced; path parameters and query
// values are replaced one by one, so a value never changes the route.
struct Expanded {
    std::string path;
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<QueryItem> query;
    std::string body;
};

bool Expand(Step const& step, Variables const& variables, Expanded* out, std::string* error) {
    RequestLine const& request = step.request;
    if (!variables.expand(request.path, &out->path, error)) return false;
    for (auto const& [name, written] : step.match.parameters) {
        std::string value;
        if (!variables.expand(written, &value, error)) return false;
        out->parameters.emplace_back(name, value);
    }
    for (QueryItem const& item : request.query) {
        QueryItem expanded{item.key, std::nullopt};
        if (item.value) {
            expanded.value.emplace();
            if (!variables.expand(*item.value, &*expanded.value, error)) return false;
        }
        out->query.push_back(std::move(expanded));
    }
    return variables.expand(request.body, &out->body, error);
}

std::string RequestText(Method method, std::string const& path, std::vector<QueryItem> const& query,
                        std::string const& body) {
    std::string text = std::string(MethodName(method)) + " " + path;
    for (size_t i = 0; i < query.size(); ++i) {
        text += i == 0 ? "?" : "&";
        text += query[i].key;
        if (query[i].value) text += "=" + *query[i].value;
    }
    if (!body.empty()) text += " " + body;
    return text;
}

// Without --backend nothing is loaded ahead: the library's own run path and
// the loader's search path decide, as for any host (the simulated set unless
// LD_LIBRARY_PATH names another).
bool ChooseDeviceSet(RunOptions const& options, std::string* error) {
    if (options.backend.empty()) return true;
    std::string const folder = FindDeviceSet(options.libraryPath, options.backend);
    if (folder.empty()) {
        *error = "no " + options.backend + " device set beside " + options.libraryPath;
        return false;
    }
    return PreloadDeviceSet(folder, error);
}

} // namespace

std::vector<ScriptLine> ReadScript(std::istream& in, std::string const& name) {
    std::vector<ScriptLine> lines;
    std::string text;
    for (int number = 1; std::getline(in, text); ++number) {
        if (IsCommentOrBlank(text)) continue;
        lines.push_back({name + ":" + std::to_string(number), text, ""});
    }
    return lines;
}

bool PrepareScript(std::vector<ScriptLine> const& lines, std::vector<Step>* steps, std::ostream& err) {
    Variables defined; // names set so far, each standing for itself
    for (ScriptLine const& line : lines) {
        Step step{line, {}, {}};
        std::string error;
        bool ok = ParseRequestLine(line.text, &step.request, &error);
        if (ok) {
            step.match = MatchRoute(step.request.method, step.request.path);
            if (step.match.route == nullptr) {
                error = "no resource matches " + std::string(MethodName(step.request.method)) + " " +
                        step.request.path + " (sensorctl --help lists the resources)";
                ok = false;
            }
        }
        Expanded unused;
        ok = ok && Expand(step, defined, &unused, &error);
        if (!ok) {
            err << "sensorctl: " << line.origin << ": " << error << "\n";
            return false;
        }
        if (!step.request.binding.name.empty())
            defined.set(step.request.binding.name, "$" + step.request.binding.name);
        steps->push_back(std::move(step));
    }
    return true;
}

void PrintDryRun(std::vector<Step> const& steps, std::ostream& out) {
    for (Step const& step : steps) {
        RequestLine const& request = step.request;
        CallTexts texts = MakeCallTexts(request.method, step.match.parameters, request.query, request.body);
        out << RequestText(request.method, request.path, request.query, request.body) << "\n"
            << "  " << step.match.route->exportName << " request=" << texts.request
            << " parameters=" << texts.parameters << " query=" << texts.query << " data=" << texts.data
            << "\n";
    }
}

int RunScript(std::vector<Step> const& steps, RunOptions const& options, std::ostream& out,
              std::ostream& err) {
    Scenario scenario(options.scenarioPath);
    if (!scenario.prepare(err)) return kExitBackEnd;

    std::string error;
    if (!ChooseDeviceSet(options, &error)) {
        err << "sensorctl: " << error << "\n";
        return kExitBackEnd;
    }
    HostLibrary library;
    if (!library.load(options.libraryPath, &error)) {
        err << "sensorctl: " << error << "\n";
        return kExitBackEnd;
    }
    std::set<std::string> missing;
    for (Step const& step : steps)
        if (!library.hasExport(step.match.route->exportName)) missing.insert(step.match.route->exportName);
    if (!missing.empty()) {
        err << "sensorctl: " << options.libraryPath << " does not export:";
        for (std::string const& name : missing)
            err << " " << name;
        err << "\n";
        return kExitBackEnd;
    }
    if (!scenario.apply(library, err)) return kExitBackEnd;

    library.setup();
    bool journal = options.journal;
    std::string probe;
    if (journal && !library.journal(&probe)) {
        err << "sensorctl: warning: the back-end has no device-call journal; --journal has no effect\n";
        journal = false;
    }
    if (journal) library.clearJournal(); // the calls of Setup are not of interest

    int result = kExitOk;
    Variables variables;
    for (Step const& step : steps) {
        RequestLine const& request = step.request;
        Expanded expanded;
        if (!Expand(step, variables, &expanded, &error)) { // cannot happen after PrepareScript
            err << "sensorctl: " << step.line.origin << ": " << error << "\n";
            return kExitUsage;
        }
        if (!step.line.note.empty())
            out << (&step == &steps.front() ? "# " : "\n# ") << step.line.note << "\n";
        if (options.echo) {
            out << "> " << RequestText(request.method, expanded.path, expanded.query, expanded.body);
            if (!request.binding.name.empty())
                out << "  -> $" << request.binding.name
                    << (request.binding.selector.empty() ? "" : " " + request.binding.selector);
            out << "\n";
            out.flush(); // ahead of anything the library writes to standard error
        }

        CallTexts texts = MakeCallTexts(request.method, expanded.parameters, expanded.query, expanded.body);
        Response response = library.call(step.match.route->exportName, texts);
        out << response.status << " " << Pretty(response.text, options.pretty) << "\n";
        out.flush();
        if (!response.stored) {
            err << "sensorctl: " << step.line.origin << ": the library stored no response for this request\n";
            result = kExitBackEnd;
        } else if (response.status >= 400 && options.failOnErrorStatus && result == kExitOk) {
            result = kExitErrorStatus;
        }

        if (journal) {
            std::string calls;
            library.journal(&calls);
            library.clearJournal();
            out << "journal " << Pretty(calls, options.pretty) << "\n";
        }

        Binding const& binding = request.binding;
        if (!binding.name.empty()) {
            quilljson::Value parsed;
            std::string text;
            if (!quilljson::Parser().parse(&parsed, response.text) ||
                !CaptureText(parsed["value"], binding.steps, &text)) {
                err << "sensorctl: " << step.line.origin << ": the response has no value"
                    << (binding.selector.empty() ? "" : " at " + binding.selector) << "; $" << binding.name
                    << " is now empty\n";
                text.clear();
            }
            variables.set(binding.name, text);
        }
    }
    return result;
}

} // namespace sensorctl
