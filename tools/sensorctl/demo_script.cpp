#include "demo_script.h"

namespace sensorctl {

namespace {

struct DemoStep {
    char const* note; // printed before the request; empty to continue the previous topic
    char const* request;
};

// The default world: USB sensors 8 "Lumetra Spectro 8" (individual id
// 00000000a1b2c3d4) and 11 "Lumetra Colori 11" (00000000a1b2c3e5), serial
// sensor 21 on usbserial-LX21A, monitors LMN27A/41A00017 (first generation
// correlation records) and LMN32B/52B00042 (second generation).
DemoStep const kTour[] = {
    {"Sensors on USB", "GET /Sensors?connected"},
    {"Tell the library which device id the serial port carries, then list serial sensors",
     R"(PUT /Sensors {"serialMappings":{"usbserial-LX21A":21}})"},
    {"", "GET /Sensors?serialConnected"},
    {"Names by device id", "GET /Sensors/Name?deviceIDs=8,11,21"},

    {"Open the spectro by device id, the monitor's built-in sensor, the colorimeter by individual id",
     "POST /Sensors/8 -> $spectro"},
    {"", "POST /Monitors/LMN27A/41A00017/Sensor -> $monitor"},
    {"", "POST /Sensors/Individual/00000000a1b2c3e5 -> $colori"},
    {"Open sensors and their names", "GET /Sensors"},
    {"", "GET /Sensors/Name"},
    {"Describe the spectro", "GET /Sensors/$spectro -> $spectroSerial .serial"},
    {"", "GET /Sensors/$spectro?connection"},

    {"Measuring mode: what the spectro supports, then mode 1 with observer key 2",
     "GET /Sensors/$spectro/Mode?supports"},
    {"", R"(PUT /Sensors/$spectro/Mode {"mode":1,"observerKey":2})"},
    {"Calibrate", "GET /Sensors/$spectro/Calibration?needs"},
    {"", "PUT /Sensors/$spectro/Calibration"},
    {"Measure", "GET /Sensors/$spectro/XYZ"},
    {"Measure through the emission correction for the monitor's panel, then release it",
     R"(PUT /Sensors/$spectro/Correction {"type":"emission","observerKey":2,"product":"LMN27A","panelRevision":1})"},
    {"", "GET /Sensors/$spectro/XYZ"},
    {"", "DELETE /Sensors/$spectro/Correction"},

    {"Presence sensing on the monitor's built-in sensor: on, detection level 2",
     "PUT /Sensors/$monitor/AmbrelSense true"},
    {"", "GET /Sensors/$monitor/AmbrelSense"},
    {"", "PUT /Sensors/$monitor/AmbrelSense/Level 2"},
    {"", "GET /Sensors/$monitor/AmbrelSense/Level"},

    {"Correlation held in the monitor: reference sensor, data, and whether it is the factory set",
     "GET /Sensors/$monitor/Correlation/Description"},
    {"", "GET /Sensors/$monitor/Correlation/Data?checksFactoryData"},
    {"The database entry equal to the monitor's current data (null when there is none)",
     "GET /Sensors/$monitor/Correlation/Database"},

    {"Correction matrix (the 8-row form this monitor keeps): read it, write another, read again, put the "
     "old one back",
     "GET /Sensors/$monitor/CorrelationMatrix/Data?checksFactoryData -> $matrix .matrix"},
    {"",
     R"(PUT /Sensors/$monitor/CorrelationMatrix/Data {"matrix":[[0,0,0],[1,0,0],[0,1,0],[0,0,1],[0,0,0],[0,0,0],[0,0,0],[0,0,0]]})"},
    {"", "GET /Sensors/$monitor/CorrelationMatrix/Data?checksFactoryData"},
    {"", R"(PUT /Sensors/$monitor/CorrelationMatrix/Data {"matrix":$matrix})"},

    {"Correlation matrices stored for the monitor's sensor: list them, apply the first, release it",
     "GET /Sensors/$monitor/CorrelationMatrix?available -> $storedMatrix [0].id"},
    {"", "PUT /Sensors/$monitor/CorrelationMatrix $storedMatrix"},
    {"", "DELETE /Sensors/$monitor/CorrelationMatrix"},

    {"Correlation corrections stored with the spectro: list them, apply the first, release it",
     "GET /Sensors/$spectro/Correlation?available -> $correction [0].id"},
    {"", R"(PUT /Sensors/$spectro/Correlation {"id":$correction})"},
    {"", "DELETE /Sensors/$spectro/Correlation"},

    {"Store the monitor's current data in the database, then list the database: the new entry comes last",
     "GET /Sensors/$monitor/Correlation/Data -> $data"},
    {"",
     R"(POST /Sensors/$monitor/Correlation/Database {"referenceSensor":{"deviceID":8,"serial":"$spectroSerial"},"date":"2024-05-07 10:30:00","correlationData":$data})"},
    {"", "GET /Sensors/$monitor/Correlation/Database?available"},

    {"The second generation monitor keeps the other family of correlation records",
     "POST /Monitors/LMN32B/52B00042/Sensor -> $monitor2"},
    {"", "GET /Sensors/$monitor2/Correlation/Data"},

    {"Close the spectro, then all the others", "DELETE /Sensors/$spectro"},
    {"", "GET /Sensors"},
    {"", "DELETE /Sensors"},
    {"", "GET /Sensors"},
};

} // namespace

std::vector<ScriptLine> DemoScript() {
    std::vector<ScriptLine> lines;
    for (DemoStep const& step : kTour)
        lines.push_back({"demo step " + std::to_string(lines.size() + 1), step.request, step.note});
    return lines;
}

} // namespace sensorctl
