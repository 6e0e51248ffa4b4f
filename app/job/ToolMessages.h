// Keeps what the tools of a job said besides their progress, as lines to be shown when the job has
// ended. Memory is bounded: a line has its longest, and after a number of lines the rest are only
// counted.
#pragma once

#include "app/job/LeftOut.h"

#include <string>
#include <string_view>
#include <vector>

class ToolMessages
{
public:
    // The tool's name for the messages about it.
    explicit ToolMessages(std::string tool);

    // Output of the running tool, in pieces of any kind.
    void addOutput(std::string_view bytes);

    struct LastWords {
        std::string text; // "zip ended with status 14: cannot write x"
        LeftOut warnings; // "warning: NAME: REASON"; where there are none, whatever there is
    };

    // The running tool has ended, and with it its last line.
    LastWords taskCompleted(int status);

    // A line that comes from no tool.
    void add(const std::string& line);

    // "zip ended with status 18: warning: a: Permission denied", "zip: ..." for words of a tool
    // that ended well; at last how many lines are missing here.
    [[nodiscard]] std::vector<std::string> lines() const;

    // With a question mark for each control character (also U+0080 to U+009F in UTF-8): they could
    // move the cursor of a terminal, or worse.
    [[nodiscard]] static std::string printable(std::string text);

private:
    void _endLine();

    std::string _tool;
    std::string _line; // not yet ended
    std::vector<std::string> _words; // of the running tool
    std::string _lastWord; // of these, also when it is not kept
    LeftOut _warnings; // among them
    std::vector<std::string> _kept;
    std::size_t _left = 0; // lines not kept
};
