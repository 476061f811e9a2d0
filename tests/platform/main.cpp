#include "platform/Puppet.h"
#include "support/ThreadSanitizer.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <string_view>

int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--puppet") {
        return skylet::test::runPuppet(argc - 2, argv + 2);
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
