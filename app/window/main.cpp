#include "app/window/WindowedProgram.h"
#include "platform/base/process/StandardStreams.h"

#include <csignal>
#include <exception>
#include <iostream>

// The arguments are files, also those that begin with "-"; a "--" ends what could be options.
int main(int argc, char** argv)
try {
    StandardStreams::open();
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away must not cost the clean-up
    char** const end = argv + argc;
    char** files = argv + (argc > 0 ? 1 : 0);
    if (files != end && std::string_view(*files) == "--")
        ++files;
    return WindowedProgram::run(argv[0], {files, end});
} catch (const std::exception& failure) {
    std::cerr << "parcelo: " << failure.what() << "\n";
    return EXIT_FAILURE;
}
