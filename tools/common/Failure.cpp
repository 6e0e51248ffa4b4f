#include "tools/common/Failure.h"

#include <cstring>

std::string errorText(int error)
{
    return std::strerror(error);
}

Failure systemFailure(FailureKind kind, const std::string& what, const std::error_code& reason)
{
    return {kind, what + ": " + reason.message()};
}
