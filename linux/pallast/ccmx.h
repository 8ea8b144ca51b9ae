// Extra corrections: the CCMX files of the corrections folder, read with LittleCMS.
#pragma once

#include <string>
#include <vector>

namespace pallast {

struct Correction {
    std::string name; // the file's DESCRIPTOR
    double matrix[3][3];
};

// $SENSORCONTROL_CORRECTIONS_DIR, else $XDG_DATA_HOME/sensorcontrol/corrections,
// else ~/.local/share/sensorcontrol/corrections.
std::string correctionsFolder();

// The valid *.ccmx files of the folder in file-name order. A file that is no
// valid CCMX is left out and logged, once per file and process.
std::vector<Correction> loadCorrections();

// Reads one file; false with the reason when it is no valid CCMX.
bool readCcmx(std::string const& path, Correction* correction, std::string* reason);

} // namespace pallast
