#include "usage.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "routes.h"

#ifdef SENSORCTL_INSTALLED_LIBRARY_DIR
#define SENSORCTL_LIBRARY_DIRS SENSORCTL_INSTALLED_LIBRARY_DIR " if it is there, else in ../lib"
#else
#define SENSORCTL_LIBRARY_DIRS "../lib"
#endif
#ifndef SENSORCONTROL_LIBRARY_FILE
#define SENSORCONTROL_LIBRARY_FILE "libsensorcontrol.so"
#endif
#ifndef SENSORCONTROL_VERSION
#define SENSORCONTROL_VERSION "unknown"
#endif

namespace sensorctl {

namespace {

char const kIntroduction[] = R"(sensorctl: send requests to libsensorcontrol the way a host application does.

Usage:
  sensorctl [options] 'REQUEST' ['REQUEST'...]   each argument is one request
  sensorctl [options] -f FILE                    one request per line; -f - reads standard input
  sensorctl [options] demo                       a guided tour of the simulated world
  sensorctl serve [serve options]                every resource over HTTP, and the console
  sensorctl --help | --version

All requests of one run share one loaded library, so a sensor opened by one
request stays open for the next ones (sensor ids live only as long as the
process).

Requests:
  METHOD /Resource/path[?QUERY] [BODY] [-> $name [SELECTOR]]

  METHOD   GET, POST, PUT or DELETE (any case); it becomes {"method":"GET"}.
  path     a resource path of the table below; {name} segments become the
           path-parameter object, as strings: /Sensors/8 -> {"deviceID":"8"}.
  QUERY    key or key=value items joined by '&'. A bare key becomes true, a
           value a string: ?connected -> {"connected":true},
           ?deviceIDs=8,11 -> {"deviceIDs":"8,11"}. The library tests most
           keys for presence only.
  BODY     the rest of the line, passed unchanged as the data text (empty when
           absent). JSON usually; text that is not JSON reaches the library as
           a string.

Variables:
  A request ending in "-> $name" stores the "value" of its response: a string
  as its text, anything else as compact JSON. A SELECTOR picks a member
  first: ".serial", "[0].id", ".referenceSensor.serial". When the response
  has nothing there (an error, say), the variable becomes empty and a warning
  is printed. Later requests use $name or ${name} in path parameters, query
  values and the body; $$ is a literal '$'. Variables never choose the
  resource, and a variable must be set by an earlier request.

    POST /Sensors/8 -> $spectro
    GET /Sensors/$spectro/XYZ
    GET /Sensors/$spectro -> $serial .serial

Scripts (-f):
  One request per line; blank lines and lines starting with '#' are skipped.
  The whole script is read and checked (syntax, resource paths, variables)
  before the library is loaded; the first line that cannot be understood is
  reported with its line number and nothing is sent.

Output:
  One line "STATUS RESPONSE" per request, for example
    200 {"error":null,"value":["3f2a..."]}
  With --echo each request is printed first as "> REQUEST"; with --journal the
  simulator's device calls of each request follow as "journal [...]".
  Messages of sensorctl, and the library's log lines where the logging
  library writes them there, go to standard error.

Demo:
  "sensorctl demo" opens the simulated sensors and monitors and walks through
  discovery, opening, description, mode, calibration, measurement,
  corrections, presence sensing and correlation, printing each request and
  its response. It exits 0 whatever the statuses are.

Serve:
  "sensorctl serve" loads the library and serves every resource below over
  HTTP/1.1 until interrupted: the path and method as in requests, the query
  string as QUERY (percent-decoded), the body as BODY; the answer is the
  library's status and response text, as application/json. It prints the
  console's address once, http://HOST:PORT/#token=TOKEN; the console is at /
  (its files at /console/NAME), the OpenAPI description at /openapi.json,
  server-sent events at /events ("request" for every request, "reading" for
  every measurement).
  Every request but the console's files needs "Authorization: Bearer TOKEN"
  (401 otherwise), and a Host header naming the server (421 otherwise).
  PUT /Sensors/{id}/Lease {"owner": NAME, "seconds": N} leases an open sensor
  and answers its token; the same call with "Sensor-Lease: TOKEN" renews it,
  DELETE with it releases it. While it is leased, requests for the sensor
  without the token answer 409, except GET /Sensors/{id}. Requests for one
  sensor are served in arrival order; others run in parallel.

  --listen ADDR:PORT      where to listen (default 127.0.0.1:8080; port 0 picks
                          a free port, printed in the address)
  --token-file FILE       the token is read from FILE; a missing FILE is
                          created (owner-only) with a fresh token. Without it a
                          fresh token is made at every start.
  --max-body BYTES        bodies over this answer 413 (default 1048576)
  --rate-limit N          requests per second per client address; more answer
                          429 (default 200; 0 turns the limit off)
  --max-connections N     connections served at once; more answer 503
                          (default 128)
  --cors-origin ORIGIN    allow cross-origin requests from ORIGIN (repeatable;
                          "*" for any). Without it no CORS headers are sent.
  --library PATH, --backend SET, --scenario FILE   as below

Options:
  --library PATH    the library to load (default: )" SENSORCONTROL_LIBRARY_FILE R"( in
                    )" SENSORCTL_LIBRARY_DIRS R"(,
                    relative to the folder of the sensorctl program)
  --backend SET     the device set the library drives: sim (the simulated
                    world) or linux (real instruments through colord and
                    udev), looked for in sensorcontrol/SET beside the library,
                    else in the build tree's lib or lib/linux; without it, the
                    set the loader finds: the simulated one unless
                    LD_LIBRARY_PATH names another set's folder
  -f FILE           read requests from FILE ('-' for standard input)
  --pretty          pretty-print responses (and journals)
  --echo            print each request before its response (always on in demo)
  --journal         print the simulator's device calls after each response
                    (warns and goes on when the back-end has no simulator)
  --scenario FILE   load FILE into the simulator before Setup (also sets
                    SENSORSIM_SCENARIO to it before the library is loaded)
  --fail            exit 3 when a response status is 400 or above
  -n, --dry-run     check the requests and print what each would pass to
                    which export, without loading the library
  -h, --help        this text
  -V, --version     print the version and exit

Exit codes:
  0  every request was sent and answered (whatever its status, unless --fail)
  1  the library, one of its exports, a file or the scenario could not be used
  2  bad options, or a request that cannot be understood (nothing is sent)
  3  with --fail: a response status of 400 or above
)";

char const kRoutingNotes[] = R"(
  The first row that matches wins. /Sensors/<x> is decided by the method: POST
  opens the device with that device id (DeviceID); GET, PUT and DELETE address
  the open sensor with that id (Sensor). Every other path takes any method;
  the library answers a method it does not serve with 405 "MethodError".
)";

} // namespace

void PrintUsage(std::ostream& out) {
    out << kIntroduction << "\nResources (served methods; query keys read):\n";
    size_t width = 0;
    for (Route const& route : Routes())
        width = std::max(width, std::strlen(route.pattern));
    for (Route const& route : Routes()) {
        if (route.kind == RouteKind::Gateway) continue; // listed with serve
        std::string pattern = route.pattern;
        pattern.resize(width + 2, ' ');
        std::string name = route.exportName;
        name.resize(35, ' ');
        out << "  " << pattern << name << MaskText(route.served);
        if (*route.queryKeys) out << "; ?" << route.queryKeys;
        out << "\n";
    }
    out << kRoutingNotes;
}

void PrintVersion(std::ostream& out) {
    out << "sensorctl " SENSORCONTROL_VERSION "\n";
}

void PrintShortUsage(std::ostream& out) {
    out << "usage: sensorctl [options] 'REQUEST'... | -f FILE | demo   (sensorctl --help for more)\n";
}

} // namespace sensorctl
