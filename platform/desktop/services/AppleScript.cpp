#include "platform/desktop/services/AppleScript.h"

#include "platform/desktop/services/LoginItems.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/ScriptReader.h"

#include <algorithm>
#include <utility>

namespace
{

// Whether the command was done.
struct Execution {
    bool operator()(const ScriptReader::ComposeMessage& message) const
    {
        return MailComposer::sharedComposer().composeMessage(message.attachment);
    }
    bool operator()(const ScriptReader::MakeLoginItem& item) const
    {
        return LoginItems::add(item.path, item.hidden);
    }
    bool operator()(const ScriptReader::DeleteLoginItem& item) const
    {
        return LoginItems::remove(item.name);
    }
};

} // namespace

AppleScript::AppleScript(std::string source)
    : _source(std::move(source))
{
}

AppleScript AppleScript::initWithSource(std::string source)
{
    return AppleScript(std::move(source));
}

bool AppleScript::executeAndReturnError() const
{
    const auto commands = ScriptReader::read(_source);
    return commands && std::all_of(commands->begin(), commands->end(), [](const auto& command) {
        return std::visit(Execution{}, command);
    });
}
