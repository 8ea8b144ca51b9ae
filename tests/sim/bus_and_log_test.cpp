// libtorvik snapshots and liblorvant2 log lines.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "devices/lorvant.h"
#include "devices/torvik.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class BusAndLog : public SimTest {};

std::vector<std::string> Names(TvkSnapshot* snapshot) {
    std::vector<std::string> names;
    for (uint32_t i = 0; TvkUSB* device = TvkEnumUSBDevice(snapshot, i); ++i)
        names.push_back(TvkGetUSBDeviceName(device));
    return names;
}

TEST_F(BusAndLog, SnapshotKeepsTheBusAsItWas) {
    TvkSnapshot* snapshot = TvkCreateUSBDeviceSnapshot();
    ASSERT_NE(nullptr, snapshot);
    LoadEdited([](Value& world) { world["usb"]["devices"] = Array({Value("Hub"), Value("Hub")}); });
    EXPECT_EQ((std::vector<std::string>{"Orbin USB Hub", "usbserial-LX21A", "Quorra Monitor Hub"}),
              Names(snapshot));
    TvkReleaseSnapshot(snapshot);
    snapshot = TvkCreateUSBDeviceSnapshot();
    EXPECT_EQ((std::vector<std::string>{"Hub", "Hub"}), Names(snapshot));
    TvkReleaseSnapshot(snapshot);

    LoadEdited([](Value& world) { world["usb"]["snapshotFails"] = true; });
    EXPECT_EQ(nullptr, TvkCreateUSBDeviceSnapshot());
}

TEST_F(BusAndLog, LogLinesGoToTheNamedFile) {
    char path[] = "/tmp/sensorsim-log-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    setenv("LORVANT_LOG_FILE", path, 1);
    void* logger = lorvant_get_logger();
    ASSERT_NE(nullptr, logger);
    lorvant_log(logger, "Mirel", 2, "statusCode:200\tmethod:GET");
    lorvant_log(logger, "Mirel", 5, "second");
    unsetenv("LORVANT_LOG_FILE");
    std::string const text = ReadFile(path);
    unlink(path);
    EXPECT_EQ(2, std::count(text.begin(), text.end(), '\n')) << text;
    EXPECT_NE(std::string::npos, text.find("[Mirel] level 2: statusCode:200\tmethod:GET\n")) << text;
    EXPECT_NE(std::string::npos, text.find("[Mirel] level 5: second\n")) << text;
    EXPECT_TRUE(JournalFunctions().empty()); // logging is not a device call
}

} // namespace
