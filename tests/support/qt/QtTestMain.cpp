// The main function of test programs whose tests take a QApplication.
//
// The user's own files are out of reach: the home folder and those for configuration, data, caches
// and state are private to the run. There is no display unless QT_QPA_PLATFORM asks for one.

#include "tests/support/TestFolder.h"

#include <QApplication>

#include <cstdlib>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    const support::TestFolder home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
             "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
        ::setenv(variable, home.path().c_str(), 1);
    if (!std::getenv("QT_QPA_PLATFORM"))
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);

    ::testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
