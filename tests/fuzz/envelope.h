// What every fuzz target of the exports does with a promise id: fetch the
// response in the host's two steps and abort unless it is a well-formed
// envelope with a status the library answers. And the sensors they address.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using Endpoint = uint32_t (*)(char const*, char const*, char const*, char const*);

// Looks the export up in the process (the library is linked); null when absent.
Endpoint FindExport(std::string const& name);

// The export names of sensorctl's route table, each once.
std::vector<std::string> const& ExportNames();

struct Fetched {
    uint32_t status = 0;
    std::string text;
};

// Calls the endpoint, fetches and checks the response; aborts on a fault.
Fetched CallChecked(Endpoint endpoint, char const* request, char const* parameters, char const* query,
                    char const* data);

// The sensor id a successful open answered, else "".
std::string IdOf(Fetched const& opened);

// The id of the default world's device 8, or of the built-in sensor of its
// first monitor; opened again when a request closed it.
std::string const& SensorId(bool builtin);

// `text` with every `from` replaced by `to`.
std::string Replace(std::string text, std::string const& from, std::string const& to);

} // namespace fuzz
