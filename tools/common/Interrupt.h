// Signals that ask a tool to stop. The handler only sets a flag: whoever works looks at it between
// two pieces of work, so that everything begun is undone by ordinary code.
#pragma once

namespace Interrupt
{

// SIGINT and SIGTERM ask to stop; so do SIGHUP and the end of the process that started this one,
// unless SIGHUP is ignored (nohup). SIGPIPE and SIGXFSZ become errors of the write that causes
// them.
void install();

[[nodiscard]] bool isRequested();

// Throws a Failure of kind Interrupted when a stop has been asked for.
void check();

} // namespace Interrupt
