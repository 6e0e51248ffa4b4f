// Signals that ask a tool to stop. The handler only sets a flag: whoever works looks at it between
// two pieces of work, so that everything begun is undone by ordinary code.
#pragma once

namespace Interrupt
{

// SIGINT and SIGTERM ask to stop, SIGHUP too unless it is ignored (nohup); so does the end of the
// process that started this one. SIGPIPE and SIGXFSZ become errors of the write that causes them.
void install();

[[nodiscard]] bool isRequested();

// Throws a Failure of kind Interrupted when a stop has been asked for.
void check();

} // namespace Interrupt
