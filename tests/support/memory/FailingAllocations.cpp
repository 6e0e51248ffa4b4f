// Linked into a tool, lets one allocation fail, or it and all after it: PARCELO_FAILING_ALLOCATION
// is "7" or "7+". Without it, the last line of standard output is how many there were.

#include <atomic>
#include <cerrno>
#include <charconv>
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
    char text[24] = {};
    const std::to_chars_result result = std::to_chars(text, text + sizeof text - 1, made.load());
    *result.ptr = '\n';
    if (std::getenv("PARCELO_FAILING_ALLOCATION") == nullptr)
        (void)!::write(STDOUT_FILENO, text, static_cast<std::size_t>(result.ptr + 1 - text));
}

} // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// The sanitizers have the C library's functions.
void* operator new(std::size_t size)
{
    void* const memory = fails() ? nullptr : std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

#else

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

static void* none()
{
    errno = ENOMEM;
    return nullptr;
}
void* malloc(std::size_t size)
{
    return fails() ? none() : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size)
{
    return fails() ? none() : __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size)
{
    return fails() ? none() : __libc_realloc(memory, size);
}
}

#endif
