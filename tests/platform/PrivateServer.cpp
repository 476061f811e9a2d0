#include "platform/PrivateServer.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

namespace skylet::test {

namespace {

// A server must not outlive a test that crashes.
std::vector<std::string> boundToTest(std::vector<std::string> command) {
    command.insert(command.begin(), {"setpriv", "--pdeathsig", "TERM"});
    return command;
}

std::vector<std::string> serverArguments(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"Xvfb",       "-displayfd", "3",   "-screen", "0",
                                       "800x600x24", "-nolisten",  "tcp", "-noreset"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return boundToTest(std::move(arguments));
}

} // namespace

Environment::Environment(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* before = std::getenv(name_.c_str())) { // NOLINT: tests set it up before threads run
        before_ = before;
    }
    if (value) {
        setenv(name_.c_str(), value->c_str(), 1); // NOLINT
    } else {
        unsetenv(name_.c_str()); // NOLINT
    }
}

Environment::~Environment() {
    if (before_) {
        setenv(name_.c_str(), before_->c_str(), 1); // NOLINT
    } else {
        unsetenv(name_.c_str()); // NOLINT
    }
}

PrivateServer::PrivateServer(const std::vector<std::string>& arguments)
    : process_(serverArguments(arguments))
    , display_(":" + process_.readLine())
    , variable_("DISPLAY", display_) {}

PrivateBus::PrivateBus()
    : process_(boundToTest({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=3"}))
    , address_(process_.readLine())
    , variable_("DBUS_SESSION_BUS_ADDRESS", address_) {}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace skylet::test
