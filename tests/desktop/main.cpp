#include <csignal>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Writing to an application that ended is an answer, not the end of the test.
    std::signal(SIGPIPE, SIG_IGN);
    return RUN_ALL_TESTS();
}
