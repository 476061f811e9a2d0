#include "platform/Puppet.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <string_view>

#ifdef __SANITIZE_THREAD__
// These libraries are not built with the sanitizer, so it does not see how they keep their own threads apart.
// What our code does from within their callbacks has none of them in its stack and is judged all the same.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "race:libQt6Core.so\nrace:libQt6DBus.so\nrace:libglib-2.0.so\nrace:libdbus-1.so\n";
}
#endif

int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--puppet") {
        return skylet::test::runPuppet(argc - 2, argv + 2);
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
