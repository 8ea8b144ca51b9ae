// `sensorctl serve` as a user runs it: the address printed once, the token
// file honoured, requests served, a clean stop on SIGTERM.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>

#include "gateway_server.h"
#include "token.h"

namespace gatewaytest {
namespace {

TEST(GatewayServeCommand, PrintsTheConsoleAddressAndServesUntilStopped) {
    std::string const tokenFile = testing::TempDir() + "serve-token-" + std::to_string(getpid());
    std::remove(tokenFile.c_str());
    // The shell prints its process id, then becomes sensorctl.
    FILE* printed = popen(
        ("echo $$; exec " TEST_BINARY_DIR "/sensorctl serve --listen 127.0.0.1:0 --token-file " + tokenFile)
            .c_str(),
        "r");
    ASSERT_NE(nullptr, printed);
    char line[512] = {};
    ASSERT_NE(nullptr, fgets(line, sizeof line, printed));
    pid_t const child = std::atoi(line);
    ASSERT_NE(nullptr, fgets(line, sizeof line, printed)) << "sensorctl serve printed nothing";

    // The token file was made owner-only, and the printed token is its token.
    struct stat info {};
    ASSERT_EQ(0, stat(tokenFile.c_str(), &info));
    EXPECT_EQ(0600u, info.st_mode & 0777u);
    std::string token, error;
    ASSERT_TRUE(sensorctl::gateway::ReadOrCreateTokenFile(tokenFile, &token, &error)) << error;
    std::smatch match;
    std::string const address = line;
    ASSERT_TRUE(std::regex_match(address, match, std::regex(R"(http://127\.0\.0\.1:(\d+)/#token=(\w+)\n)")))
        << address;
    EXPECT_EQ(token, match[2].str());

    httplib::Client client("127.0.0.1", std::stoi(match[1].str()));
    client.set_bearer_token_auth(token);
    httplib::Result result = client.Get("/Sensors?connected");
    ASSERT_TRUE(result);
    EXPECT_EQ(200, result->status);
    EXPECT_NE(std::string::npos, result->body.find("\"deviceID\":8")) << result->body;

    kill(child, SIGTERM);
    EXPECT_EQ(nullptr, fgets(line, sizeof line, printed)) << "printed more: " << line;
    int const status = pclose(printed);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    std::remove(tokenFile.c_str());
}

} // namespace
} // namespace gatewaytest
