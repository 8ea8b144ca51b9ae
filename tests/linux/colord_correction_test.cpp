// Extra corrections: the CCMX files of the corrections folder applied to colord's readings.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "colord_host.h"

namespace colordtest {
namespace {

std::string Ccmx(std::string const& descriptor, std::string const& rows, int sets = 3) {
    return "CCMX   \n\nDESCRIPTOR \"" + descriptor +
           "\"\nORIGINATOR \"sensorcontrol tests\"\nCREATED \"Mon Nov 23 15:00:00 2026\"\n"
           "KEYWORD \"INSTRUMENT\"\nINSTRUMENT \"Orbin Colori 3\"\nKEYWORD \"DISPLAY\"\nDISPLAY \"LMN27A\"\n"
           "KEYWORD \"TECHNOLOGY\"\nTECHNOLOGY \"LCD White LED IPS\"\nKEYWORD \"COLOR_REP\"\nCOLOR_REP "
           "\"XYZ\"\n\n"
           "NUMBER_OF_FIELDS 3\nBEGIN_DATA_FORMAT\nXYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS " +
           std::to_string(sets) + "\nBEGIN_DATA\n" + rows + "END_DATA\n";
}

void Write(std::string const& path, std::string const& text) {
    std::ofstream(path) << text;
}

std::string Read(std::string const& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

size_t Count(std::string const& text, std::string const& word) {
    size_t n = 0;
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++n;
    return n;
}

class ColordCorrections : public ColordTest {
protected:
    void SetUp() override {
        ColordTest::SetUp();
        if (HasFatalFailure()) return;
        folder = colord->folder() + "/corrections";
        mkdir(folder.c_str(), 0755);
        setenv("SENSORCONTROL_CORRECTIONS_DIR", folder.c_str(), 1);
        setenv("LORVANT_LOG_FILE", (colord->folder() + "/lorvant.log").c_str(), 1);
    }
    std::string folder;
};

TEST_F(ColordCorrections, SelectedMatrixIsAppliedBesideTheRawReadingAndBadFilesAreLeftOut) {
    Write(folder + "/b-panel.ccmx",
          Ccmx("Wide gamut panel", "1.02 -0.01 0.03\n0.005 0.98 0.01\n-0.002 0.02 1.05\n"));
    Write(folder + "/a-panel.ccmx", Ccmx("Office panel", "2 0 0\n0 3 0\n0 0 4\n"));
    Write(folder + "/c-garbage.ccmx", "this is not CGATS at all\n\x01\x02");
    Write(folder + "/d-two-rows.ccmx", Ccmx("Two rows", "1 0 0\n0 1 0\n", 2));
    Write(folder + "/e-word.ccmx", Ccmx("A word", "1 0 0\n0 one 0\n0 0 1\n"));
    Write(folder + "/notes.txt", Ccmx("Not a .ccmx file", "1 0 0\n0 1 0\n0 0 1\n"));

    // stderr goes to a file for the library's report of the bad files.
    std::string const errors = colord->folder() + "/stderr.log";
    int const saved = dup(2);
    int const file = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(file, 2);
    std::string const id = openFirst();
    std::string const again = openFirst(); // the folder is read again: no second report
    fflush(stderr);
    dup2(saved, 2);
    close(saved);
    close(file);

    EXPECT_EQ(Json("3"), on(id, "SensorExCorrection", "GET", "{\"count\":true}").value());
    EXPECT_EQ(Json("[\"no correction\",\"Office panel\",\"Wide gamut panel\"]"),
              on(id, "SensorExCorrection", "GET", "{\"name\":true}").value());
    std::string const log = Read(errors) + Read(colord->folder() + "/lorvant.log");
    for (char const* bad : {"c-garbage.ccmx", "d-two-rows.ccmx", "e-word.ccmx"})
        EXPECT_EQ(1u, Count(log, bad)) << bad << " in:\n" << log;
    EXPECT_EQ(0u, Count(log, "notes.txt")) << log;

    ASSERT_EQ(200u, on(id, "SensorExCorrection", "PUT", "", "2").status);
    EXPECT_EQ(Json("2"), on(id, "SensorExCorrection").value());
    EXPECT_EQ(Json("0"), on(again, "SensorExCorrection").value()) << "selected per handle";
    Response r = on(id, "SensorXYZ");
    ASSERT_EQ(200u, r.status) << r.text;
    double const X = r.value()["rawXYZ"]["X"].getDouble(), Y = r.value()["rawXYZ"]["Y"].getDouble(),
                 Z = r.value()["rawXYZ"]["Z"].getDouble();
    EXPECT_NEAR(1.02 * X - 0.01 * Y + 0.03 * Z, r.value()["XYZ"]["X"].getDouble(), 1e-9) << r.text;
    EXPECT_NEAR(0.005 * X + 0.98 * Y + 0.01 * Z, r.value()["XYZ"]["Y"].getDouble(), 1e-9) << r.text;
    EXPECT_NEAR(-0.002 * X + 0.02 * Y + 1.05 * Z, r.value()["XYZ"]["Z"].getDouble(), 1e-9) << r.text;

    ExpectDvError(on(id, "SensorExCorrection", "PUT", "", "3"), 0x8000000A, "Set correction index.");
    ASSERT_EQ(200u, on(id, "SensorExCorrection", "PUT", "", "0").status);
    r = on(id, "SensorXYZ");
    EXPECT_EQ(r.value()["rawXYZ"], r.value()["XYZ"]) << r.text;
}

TEST_F(ColordCorrections, WithoutTheFolderOnlyNoCorrectionIsListed) {
    setenv("SENSORCONTROL_CORRECTIONS_DIR", (folder + "/missing").c_str(), 1);
    std::string const id = openFirst();
    EXPECT_EQ(Json("[\"no correction\"]"), on(id, "SensorExCorrection", "GET", "{\"name\":true}").value());
}

} // namespace
} // namespace colordtest
