#include "platform/base/seams/AssertionHandler.h"

#include <sstream>
#include <utility>

namespace
{

AssertionHandler::Handler& currentHandler()
{
    thread_local AssertionHandler::Handler handler;
    return handler;
}

} // namespace

AssertionHandler::Handler AssertionHandler::setCurrentHandler(Handler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

void AssertionHandler::handleFailureInMethod(const Report& report)
{
    if (currentHandler())
        return currentHandler()(report);
    std::ostringstream text;
    text << "assertion failure in " << report.method << " of " << report.object << ", "
         << report.file << ":" << report.lineNumber << ": " << report.description;
    throw AssertionFailure(text.str());
}
