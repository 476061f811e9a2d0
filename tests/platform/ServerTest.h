// A test with its own X server, our connection to it and another client.
#pragma once

#include "platform/PrivateServer.h"
#include "platform/TestClient.h"
#include "platform/x11/Connection.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

namespace skylet::test {

class ServerTest : public testing::Test {
  protected:
    ServerTest() : opened_(platform::x11::Connection::open({})) {
        if (!opened_.connection) {
            std::abort(); // nothing below makes sense without it
        }
        connection().setErrorSink([this](const platform::x11::XError& error) { reported_.push_back(error); });
    }
    ~ServerTest() override {
        dispatch();
        EXPECT_TRUE(reported_.empty()) << "error " << int(reported_.front().code) << " of request "
                                       << int(reported_.front().majorOpcode);
    }

    [[nodiscard]] platform::x11::Connection& connection() const { return *opened_.connection; }
    // Everything that was sent so far is done, and its events and errors are handled.
    void dispatch() {
        static_cast<void>(connection().serverTime());
        connection().dispatch();
    }

    PrivateServer server_;
    platform::x11::Connection::Opened opened_;
    TestClient other_;
    std::vector<platform::x11::XError> reported_; // what the connection did not expect
};

} // namespace skylet::test
