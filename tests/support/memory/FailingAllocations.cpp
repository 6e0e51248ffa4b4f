// Linked into a tool with --wrap=malloc, lets one allocation fail, or it and all after it:
// PARCELO_FAILING_ALLOCATION is "7" or "7+". Without it, the last line of standard output is how
// many there were.

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <unistd.h>

namespace
{

std::atomic<long> made = 0;

bool fails()
{
    static const char* const wanted = std::getenv("PARCELO_FAILING_ALLOCATION");
    static const long first = wanted == nullptr ? 0 : std::atol(wanted);
    static const bool isForGood = wanted != nullptr && std::strchr(wanted, '+') != nullptr;
    const long number = ++made;
    return number == first || (isForGood && number > first);
}

[[gnu::destructor]] void tellCount()
{
    if (std::getenv("PARCELO_FAILING_ALLOCATION") == nullptr)
        ::dprintf(STDOUT_FILENO, "%ld\n", made.load());
}

} // namespace

extern "C" void* __real_malloc(std::size_t size); // as the linker calls the C library's
extern "C" void* __wrap_malloc(std::size_t size)
{
    return fails() ? nullptr : __real_malloc(size);
}

void* operator new(std::size_t size)
{
    if (void* const memory = __wrap_malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
