// The one exception type of the tools: why a run ends without an archive. Each tool's main turns
// the kind into its exit status and the text into a message.
#pragma once

#include "system/LastError.h"

#include <stdexcept>
#include <string>

enum class FailureKind {
    usage, // the arguments are not of the one form that is taken
    cannotCreate, // the archive can't be made or opened
    nameTaken, // the archive was made by somebody else meanwhile
    badArchive, // an existing archive that can't be added to safely
    nothingToDo, // no input is left that could be stored
    write, // the archive can't be written or put in place
    interrupted, // a signal asked to stop
    memory,
    internal, // our own books do not balance
};

class Failure : public std::runtime_error
{
public:
    Failure(FailureKind kind, const std::string& message)
        : std::runtime_error(message)
        , _kind(kind)
    {
    }
    [[nodiscard]] FailureKind kind() const { return _kind; }

private:
    FailureKind _kind;
};

// The failure of a system call: "what: reason".
Failure systemFailure(
    FailureKind kind, const std::string& what, const std::error_code& reason = lastError());

// errno's text for `error`.
std::string errorText(int error);
