#include "platform/TestClient.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <iostream>
#include <string>

namespace {

// What a Puppet does.
void showWindow(const std::string& name) {
    skylet::test::TestClient client;
    const xcb_window_t window = client.createWindow({0, 0, 100, 80});
    client.setText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name + '\0' + name + '\0');
    client.map(window);
    std::cout << window << std::endl;
    while (skylet::platform::x11::XcbOwned<xcb_generic_event_t>(xcb_wait_for_event(client.raw()))) {
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2 && std::string(argv[1]) == "--puppet") {
        showWindow(argv[2]);
        return 0;
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
