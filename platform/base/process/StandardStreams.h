// The descriptors 0, 1 and 2 of this process.
#pragma once

namespace StandardStreams
{

// Opens those that are closed on /dev/null, so that no file of ours gets the number of one.
void open();

} // namespace StandardStreams
