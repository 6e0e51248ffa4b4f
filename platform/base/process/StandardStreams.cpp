#include "platform/base/process/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

void StandardStreams::open()
{
    int opened = 0;
    do
        opened = ::open("/dev/null", O_RDWR);
    while (opened >= 0 && opened <= STDERR_FILENO);
    if (opened > STDERR_FILENO)
        ::close(opened);
}
