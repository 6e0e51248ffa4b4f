#include "app/CommandLine.h"
#include "app/CommandLineJob.h"
#include "app/WindowedProgram.h"

#include <csignal>
#include <exception>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int exitWrongUsage = 2;

// So that no file of ours gets the number of a standard stream that was closed.
void openStandardStreams()
{
    int opened = 0;
    do
        opened = ::open("/dev/null", O_RDWR);
    while (opened >= 0 && opened <= STDERR_FILENO);
    if (opened > STDERR_FILENO)
        ::close(opened);
}

int complainOfUsage(const std::string& problem)
{
    std::cerr << "parcelo: " << problem << "\n\n" << CommandLine::usage();
    return exitWrongUsage;
}

} // namespace

int main(int argc, char** argv)
try {
    openStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away must not cost the clean-up

    const CommandLine line = CommandLine::parse({argv + (argc > 0 ? 1 : 0), argv + argc});
    switch (line.request) {
    case CommandLine::Request::archive:
        return CommandLineJob(line).run();
    case CommandLine::Request::help:
        std::cout << CommandLine::usage();
        return 0;
    case CommandLine::Request::version:
        std::cout << "parcelo " PARCELO_VERSION "\n";
        return 0;
    case CommandLine::Request::window:
        return WindowedProgram::run(argv[0], line.files);
    case CommandLine::Request::wrongUsage:
        break;
    }
    return complainOfUsage(line.problem);
} catch (const std::exception& failure) {
    std::cerr << "parcelo: " << failure.what() << "\n";
    return 1;
}
