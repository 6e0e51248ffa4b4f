#include "app/commandline/CommandLine.h"
#include "app/commandline/CommandLineJob.h"
#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/StandardStreams.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

constexpr int exitFailed = 1;
constexpr int exitWrongUsage = 2;

int complainOfUsage(const std::string& problem)
{
    std::cerr << "parcelo: " << problem << "\n\n" << CommandLine::usage();
    return exitWrongUsage;
}

// The window is a program of its own, so that this one needs none of its libraries.
int becomeTheWindow(char* programName, CommandLine line)
{
    const auto window = Bundle::main().bundlePath() / "parcelo-window";
    std::string endOfOptions = "--";
    std::vector<char*> arguments{programName};
    if (!line.windowOption.empty())
        arguments.push_back(line.windowOption.data());
    arguments.push_back(endOfOptions.data());
    for (const auto& file : line.files)
        arguments.push_back(const_cast<char*>(file.c_str())); // which execv does not change
    arguments.push_back(nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    ::execv(window.c_str(), arguments.data());
    const std::string reason = std::strerror(errno);
    std::cerr << "parcelo: there is no window to open (" << window.native() << ": " << reason
              << "); give --to FOLDER\n";
    return exitFailed;
}

} // namespace

int main(int argc, char** argv)
try {
    StandardStreams::open();
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
        return becomeTheWindow(argv[0], line);
    case CommandLine::Request::wrongUsage:
        break;
    }
    return complainOfUsage(line.problem);
} catch (const std::exception& failure) {
    std::cerr << "parcelo: " << failure.what() << "\n";
    return exitFailed;
}
