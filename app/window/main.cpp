#include "app/window/HereProgram.h"
#include "app/window/WindowedProgram.h"
#include "platform/base/process/StandardStreams.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <span>
#include <string_view>

namespace
{

// [OPTION] -- FILE…, or files alone, also those that begin with "-".
WindowedProgram::Start startFor(std::span<char*> arguments)
{
    const auto isEndOfOptions = [&](std::size_t at) {
        return at < arguments.size() && arguments[at] == std::string_view("--");
    };
    WindowedProgram::Start start;
    if (isEndOfOptions(0)) {
        arguments = arguments.subspan(1);
    } else if (isEndOfOptions(1)) {
        start.option = arguments.front();
        arguments = arguments.subspan(2);
    }
    start.files.assign(arguments.begin(), arguments.end());
    return start;
}

} // namespace

int main(int argc, char** argv)
try {
    StandardStreams::open();
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away must not cost the clean-up
    const std::span<char*> all(argv, static_cast<std::size_t>(argc));
    const WindowedProgram::Start start = startFor(all.subspan(all.empty() ? 0 : 1));
    if (start.option == "--here" && !start.files.empty())
        return HereProgram::run(argv[0], start.files);
    return WindowedProgram::run(argv[0], start);
} catch (const std::exception& failure) {
    std::cerr << "parcelo: " << failure.what() << "\n";
    return EXIT_FAILURE;
}
