#include "ccmx.h"

#include <dirent.h>
#include <lcms2.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <locale>
#include <mutex>
#include <set>
#include <sstream>

#include "log.h"

namespace pallast {

namespace {

// LittleCMS reports through the context's error handler; the default one may
// print, so every read gets a context whose handler keeps the text instead.
void keepError(cmsContext context, cmsUInt32Number, char const* text) {
    auto* reason = static_cast<std::string*>(cmsGetContextUserData(context));
    if (reason != nullptr && reason->empty() && text != nullptr) *reason = text;
}

bool endsWithCcmx(std::string const& name) {
    if (name.size() < 5) return false;
    std::string tail = name.substr(name.size() - 5);
    std::transform(tail.begin(), tail.end(), tail.begin(), [](unsigned char c) { return std::tolower(c); });
    return tail == ".ccmx";
}

bool parseNumber(char const* text, double* value) {
    if (text == nullptr) return false;
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    in >> *value;
    return !in.fail() && in.eof() && std::isfinite(*value);
}

std::string homeFolder() {
    char const* home = std::getenv("HOME");
    return home != nullptr ? home : "";
}

} // namespace

std::string correctionsFolder() {
    char const* folder = std::getenv("SENSORCONTROL_CORRECTIONS_DIR");
    if (folder != nullptr && *folder != '\0') return folder;
    char const* data = std::getenv("XDG_DATA_HOME");
    std::string base = data != nullptr && *data != '\0' ? data : homeFolder() + "/.local/share";
    return base + "/sensorcontrol/corrections";
}

bool readCcmx(std::string const& path, Correction* correction, std::string* reason) {
    std::string lcmsError;
    cmsContext context = cmsCreateContext(nullptr, &lcmsError);
    if (context == nullptr) {
        *reason = "LittleCMS context could not be made";
        return false;
    }
    cmsSetLogErrorHandlerTHR(context, keepError);
    cmsHANDLE it8 = cmsIT8LoadFromFile(context, path.c_str());
    bool ok = false;
    if (it8 == nullptr) {
        *reason = lcmsError.empty() ? "not a CGATS file" : lcmsError;
    } else {
        char const* sheet = cmsIT8GetSheetType(it8);
        char const* descriptor = cmsIT8GetProperty(it8, "DESCRIPTOR");
        int const columns[3] = {cmsIT8FindDataFormat(it8, "XYZ_X"), cmsIT8FindDataFormat(it8, "XYZ_Y"),
                                cmsIT8FindDataFormat(it8, "XYZ_Z")};
        if (sheet == nullptr || std::string(sheet).rfind("CCMX", 0) != 0) {
            *reason = "the sheet type is not CCMX";
        } else if (descriptor == nullptr || *descriptor == '\0') {
            *reason = "no DESCRIPTOR";
        } else if (columns[0] < 0 || columns[1] < 0 || columns[2] < 0) {
            *reason = "the fields are not XYZ_X XYZ_Y XYZ_Z";
        } else if (cmsIT8GetPropertyDbl(it8, "NUMBER_OF_SETS") != 3) {
            *reason = "the matrix does not have 3 rows";
        } else {
            ok = true;
            for (int row = 0; row < 3 && ok; ++row)
                for (int col = 0; col < 3 && ok; ++col)
                    ok = parseNumber(cmsIT8GetDataRowCol(it8, row, columns[col]),
                                     &correction->matrix[row][col]);
            if (!ok) *reason = "a matrix value is not a number";
            correction->name = descriptor;
        }
        cmsIT8Free(it8);
    }
    cmsDeleteContext(context);
    return ok;
}

std::vector<Correction> loadCorrections() {
    static std::mutex reportedMutex;
    static std::set<std::string>* reported = new std::set<std::string>; // lives as long as the process

    std::string const folder = correctionsFolder();
    std::vector<std::string> names;
    if (DIR* dir = opendir(folder.c_str())) {
        while (dirent* entry = readdir(dir)) {
            std::string const name = entry->d_name;
            struct stat info;
            if (endsWithCcmx(name) && stat((folder + "/" + name).c_str(), &info) == 0 &&
                S_ISREG(info.st_mode))
                names.push_back(name);
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());

    std::vector<Correction> corrections;
    for (auto const& name : names) {
        std::string const path = folder + "/" + name;
        Correction correction;
        std::string reason;
        if (readCcmx(path, &correction, &reason)) {
            corrections.push_back(correction);
            continue;
        }
        std::lock_guard<std::mutex> guard(reportedMutex);
        if (reported->insert(path).second)
            logError("Correction file " + path + " is left out: " + reason + ".");
    }
    return corrections;
}

} // namespace pallast
