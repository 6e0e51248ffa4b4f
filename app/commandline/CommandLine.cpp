#include "app/commandline/CommandLine.h"

#include "app/job/ArchiveKind.h"
#include "system/FileName.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{

// Each setter gives what is wrong with the value; nothing when it was taken.
using Problem = std::string;

Problem setType(CommandLine& line, const std::string& value)
{
    const ArchiveKind* kind = ArchiveKind::named(value);
    if (kind == nullptr)
        return "no such type: '" + value + "'";
    line.type = kind->type;
    return {};
}

Problem setLevel(CommandLine& line, const std::string& value)
{
    if (value.size() != 1 || value.front() < '0' || value.front() > '9')
        return "the level is a digit, not '" + value + "'";
    line.level = value.front() - '0';
    return {};
}

// What the window program takes, which see (app/window/main.cpp).
constexpr std::array windowOptions{"--email", "--here", "--preferences", "--gapplication-service"};

struct Option {
    std::string_view word;
    bool takesValue;
    Problem (*set)(CommandLine& line, const std::string& value);
};

constexpr std::array options{
    Option{"--to", true,
        [](CommandLine& line, const std::string& value) {
            line.toFolder = value;
            return Problem();
        }},
    Option{"--name", true,
        [](CommandLine& line, const std::string& value) {
            line.name = value;
            return Problem();
        }},
    Option{"--type", true, setType},
    Option{"--level", true, setLevel},
    Option{"--keep-ds-store", false,
        [](CommandLine& line, const std::string&) {
            line.excludeDSStore = false;
            return Problem();
        }},
    Option{"--password-stdin", false,
        [](CommandLine& line, const std::string&) {
            line.passwordFromInput = true;
            return Problem();
        }},
    Option{"--quiet", false,
        [](CommandLine& line, const std::string&) {
            line.quiet = true;
            return Problem();
        }},
    Option{"--help", false,
        [](CommandLine& line, const std::string&) {
            line.request = CommandLine::Request::help;
            return Problem();
        }},
    Option{"--version", false,
        [](CommandLine& line, const std::string&) {
            line.request = CommandLine::Request::version;
            return Problem();
        }},
};

using Arguments = std::vector<std::string>;

// Takes one option, "--name=VALUE" or "--name" and the argument after it, and moves on to its last
// argument.
Problem takeOption(CommandLine& line, Arguments::const_iterator& argument, const Arguments& all)
{
    const auto equals = argument->find('=');
    const std::string word = argument->substr(0, equals);
    const auto* option = std::ranges::find(options, word, &Option::word);
    if (option == options.end())
        return "no such option: '" + word + "'";
    if (equals != std::string::npos)
        return option->takesValue ? option->set(line, argument->substr(equals + 1))
                                  : "the option " + word + " takes no value";
    if (!option->takesValue)
        return option->set(line, {});
    if (argument + 1 == all.end())
        return "the option " + word + " needs a value";
    return option->set(line, *++argument);
}

Problem takeArguments(CommandLine& line, const Arguments& arguments)
{
    bool optionsEnded = false;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (optionsEnded || argument->size() < 2 || argument->front() != '-')
            line.files.emplace_back(*argument);
        else if (*argument == "--")
            optionsEnded = true;
        else if (std::ranges::count(windowOptions, *argument) > 0)
            line.windowOption = *argument;
        else if (Problem problem = takeOption(line, argument, arguments); !problem.empty())
            return problem;
    }
    return {};
}

// A name may be given with its extension, but "Demo.zip" should not become "Demo.zip.zip".
void dropExtension(std::string& name, std::string_view extension)
{
    if (name.size() > extension.size() && name.ends_with(extension))
        name.resize(name.size() - extension.size());
}

Problem checkName(const std::string& name, std::string_view extension)
{
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)
        return "'" + name + "' cannot be the name of a file";
    if (name.size() + extension.size() > FileName::longestInBytes)
        return "the name is too long";
    return {};
}

Problem checkArchive(CommandLine& line)
{
    if (!line.toFolder)
        return "there is no --to FOLDER";
    if (line.files.empty())
        return "there is no FILE";
    if (line.passwordFromInput && line.type != ArchiveTypeDiskImage)
        return "only the type dmg takes a password";
    if (!line.name)
        return {};
    dropExtension(*line.name, line.extension());
    return checkName(*line.name, line.extension());
}

} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine line;
    line.problem = takeArguments(line, arguments);
    const bool hasEndOfOptions = std::ranges::find(arguments, "--") != arguments.end();
    const bool hasWindowOption = !line.windowOption.empty();
    const bool isForWindow
        = line.files.size() + (hasEndOfOptions ? 1 : 0) + (hasWindowOption ? 1 : 0)
        == arguments.size();
    if (line.problem.empty() && hasWindowOption && !isForWindow)
        line.problem = "the option " + line.windowOption + " goes with files alone";
    if (line.problem.empty() && line.windowOption == "--here" && line.files.empty())
        line.problem = "there is no FILE";
    if (line.problem.empty() && line.request == Request::window && !isForWindow) {
        line.request = Request::archive;
        line.problem = checkArchive(line);
    }
    if (!line.problem.empty())
        line.request = Request::wrongUsage;
    return line;
}

std::string CommandLine::usage()
{
    return R"(Usage:
  parcelo [--email] [--] [FILE...]
  parcelo --preferences
  parcelo --here [--] FILE...
  parcelo --to FOLDER [OPTION...] [--] FILE...

The first opens the window, and proposes an archive of the files: for a new message with --email;
a FILE may be a file:// address. The second shows its preferences. The others make one archive of
the files and folders without a window and print its path. With --here it is made as the preferences
say, beside the files or in the folder chosen there, under the next free name, and the desktop's
notifications tell of it; here, too, a FILE may be a file:// address. With --to an archive of the same
name in FOLDER is replaced.

  --to FOLDER       where to put the archive
  --name NAME       its name without extension; otherwise that of the one FILE, or Untitled
  --type TYPE       zip (the default), mac-zip, tar.gz or dmg
  --level 0-9       how hard to compress a zip: 0 not at all, 9 hardest; otherwise 6
  --keep-ds-store   do not leave .DS_Store files out
  --password-stdin  encrypt a dmg with the first line of standard input
  --quiet           show no progress
  --help            print this
  --version         print the version

Exit status: 0 made; 1 a tool failed or something could not be archived; 2 wrong usage;
130 interrupted, nothing made.
)";
}

std::string CommandLine::extension() const
{
    return std::string(ArchiveKind::ofType(type)->extension);
}
