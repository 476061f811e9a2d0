#include "platform/Puppet.h"

#include "platform/TestClient.h"

#include <cstdlib>
#include <unistd.h>

namespace skylet::test {

Puppet::Puppet(const Look& look)
    : process_({"/proc/self/exe", "--puppet", look.windowClass, std::to_string(look.x),
                std::to_string(look.y), std::to_string(look.width), std::to_string(look.height)})
    , window_(static_cast<xcb_window_t>(std::strtoul(process_.readLine().c_str(), nullptr, 10))) {}

int runPuppet(int argc, char** argv) {
    if (argc != 5) {
        return EXIT_FAILURE;
    }
    const auto number = [argv](int i) {
        return std::strtol(argv[i], nullptr, 10);
    };
    TestClient client;
    const xcb_window_t window =
        client.createWindow({static_cast<std::int16_t>(number(1)), static_cast<std::int16_t>(number(2)),
                             static_cast<std::uint16_t>(number(3)), static_cast<std::uint16_t>(number(4))});
    const std::string name = argv[0];
    client.setText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name + std::string(1, '\0') + name + '\0');
    client.map(window);
    const std::string line = std::to_string(window) + "\n";
    if (write(3, line.data(), line.size()) < 0) {
        return EXIT_FAILURE;
    }
    while (client.waitForEvent()) {
    }
    return EXIT_SUCCESS;
}

} // namespace skylet::test
