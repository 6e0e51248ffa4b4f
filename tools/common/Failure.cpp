#include "tools/common/Failure.h"

#include <cerrno>
#include <cstring>

std::string errorText(int error)
{
    return std::strerror(error);
}

Failure systemFailure(FailureKind kind, const std::string& what)
{
    return {kind, what + ": " + errorText(errno)};
}
