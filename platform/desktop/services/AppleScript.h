// Runs the sentences that platform/desktop/services/ScriptReader.h lists by what this desktop has
// for them: MailComposer and LoginItems. Main thread.
#pragma once

#include <string>

class AppleScript
{
public:
    // The source is bytes, as the paths in it are. It is read when the script is run.
    [[nodiscard]] static AppleScript initWithSource(std::string source);

    // False for an error of the script: it says something else, and nothing of it was done; or one
    // of its commands failed, and those behind it were not done. A message is only asked for:
    // MailComposer tells later what became of it.
    bool executeAndReturnError() const;

private:
    explicit AppleScript(std::string source);

    std::string _source;
};
