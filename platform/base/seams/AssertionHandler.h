// Receives reports of misuse. Each thread has a current handler of its own, which can be replaced;
// the default one throws AssertionFailure, so whoever reports must also cope with a handler that
// returns.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

// What the default handler throws: a mistake of the program, not of its user.
class AssertionFailure : public std::logic_error
{
public:
    using std::logic_error::logic_error;
};

class AssertionHandler
{
public:
    struct Report {
        std::string method;
        const void* object = nullptr;
        std::string file;
        int lineNumber = 0;
        std::string description;
    };
    using Handler = std::function<void(const Report&)>;

    // Replaces this thread's handler; an empty one stands for the default. Returns the former.
    static Handler setCurrentHandler(Handler handler);

    static void handleFailureInMethod(const Report& report);
};
