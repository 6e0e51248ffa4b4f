// The one exception type of the tools: why a run ends without an archive. Each tool's main turns
// the kind into its exit status and the text into a message.
#pragma once

#include <stdexcept>
#include <string>

enum class FailureKind {
    Usage, // the arguments are not of the one form that is taken
    CannotCreate, // the archive can't be made or opened
    NameTaken, // the archive was made by somebody else meanwhile
    BadArchive, // an existing archive that can't be added to safely
    NothingToDo, // no input is left that could be stored
    Write, // the archive can't be written or put in place
    Interrupted, // a signal asked to stop
    Memory,
    Internal, // our own books do not balance
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

// The failure of a system call, with errno's text: "what: reason".
Failure systemFailure(FailureKind kind, const std::string& what);

// errno's text for `error`.
std::string errorText(int error);
