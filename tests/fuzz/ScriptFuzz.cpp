#include "platform/desktop/services/ScriptReader.h"
#include "tests/fuzz/Fuzzing.h"

using Fuzzing::require;

namespace
{

std::string_view textIn(const ScriptReader::Command& command)
{
    if (const auto* message = std::get_if<ScriptReader::ComposeMessage>(&command))
        return message->attachment;
    if (const auto* item = std::get_if<ScriptReader::MakeLoginItem>(&command))
        return item->path;
    return std::get<ScriptReader::DeleteLoginItem>(command).name;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string source(Fuzzing::textOf(data, size));
    const auto commands = ScriptReader::read(source);
    if (!commands)
        return 0;
    for (const auto& command : *commands) {
        const auto text = textIn(command);
        require(source.find("\"" + std::string(text) + "\"") != source.npos, "texts are quoted");
        require(text.find('\0') == text.npos, "a path has no zero");
    }
    auto twice = *commands;
    twice.insert(twice.end(), commands->begin(), commands->end());
    require(ScriptReader::read(" \r\n" + source + "\n\t\n" + source) == twice,
        "scripts can follow each other");
    return 0;
}
