// A host of the product on the Linux set, against a colord of its own.
//
// The Linux set's libhalvern and libpallast are loaded before the product, as
// sensorctl --backend linux does, so the product drives that set. Every test
// process gets its own bus and colord (PrivateColord), so tests may run in
// parallel.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "devices/pallast.h"
#include "host_library.h"
#include "private_colord.h"
#include "quilljson/value.h"

namespace quilljson {
void PrintTo(Value const& value, std::ostream* out);
} // namespace quilljson

namespace colordtest {

using quilljson::Value;

struct Response {
    uint32_t status = 0;
    std::string text;
    Value json;
    Value const& value() const { return json["value"]; }
    Value const& error() const { return json["error"]; }
};

Value Json(std::string const& text);

// The product loaded on the Linux set, with Setup done (TearDown on destruction).
class Product {
public:
    Product();
    // Export called with {"method": method} and the texts, then the two-step fetch.
    Response call(char const* endpoint, std::string const& method, std::string const& params = "",
                  std::string const& query = "", std::string const& body = "") const;
    // A sensor-specific call with {"id": id} as path parameters.
    Response sensorCall(char const* endpoint, std::string const& id, std::string const& method,
                        std::string const& query = "", std::string const& body = "") const;
    // A linked libpallast function, as the product sees it.
    void* pallast(char const* name) const;

private:
    mutable sensorctl::HostLibrary library_;
};

// colord's own view of its dummy sensor, read over the bus by the test itself.
struct BusSensor {
    std::string kind, vendor, model, serial, sensorId;
};
BusSensor DummyBusSensor();

// A private bus and colord, then the product; fails the test when either cannot start.
class ColordTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens colord's first sensor by the device id the listing reports.
    std::string openFirst();
    // A request to the sensor: {"id": sensor} as path parameters.
    Response on(std::string const& sensor, char const* endpoint, std::string const& method = "GET",
                std::string const& query = "", std::string const& body = "") const {
        return product->sensorCall(endpoint, sensor, method, query, body);
    }

    std::unique_ptr<testing_colord::PrivateColord> colord;
    std::unique_ptr<Product> product;
};

void ExpectDvError(Response const& r, uint32_t code, std::string const& reason);

} // namespace colordtest
