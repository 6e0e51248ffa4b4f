#include "platform/desktop/services/DefaultApplication.h"

#include "platform/desktop/services/ProgramLauncher.h"
#include "system/FileBytes.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <span>
#include <utility>

#include <sys/mman.h>

namespace
{

// It takes some tenths of a second; on a desktop that it asks by D-Bus, as long as that hangs.
constexpr std::chrono::seconds longestWait{5};

QString firstLineOf(const FileDescriptor& file)
{
    std::array<char, 4096> bytes{}; // a desktop id is a file's name
    const auto size
        = FileBytes::readFullyAt(file.number(), 0, std::as_writable_bytes(std::span(bytes)));
    const auto text = QByteArray(bytes.data(), std::max<qsizetype>(size, 0));
    return QString::fromUtf8(text.split('\n').first()).trimmed();
}

} // namespace

void DefaultApplication::query(
    const QString& type, QObject* context, std::function<void(const QString& id)> then)
{
    // A file in memory: it takes what xdg-mime writes without anybody reading meanwhile.
    const auto output = std::make_shared<FileDescriptor>(::memfd_create("xdg-mime", MFD_CLOEXEC));
    ProgramLauncher::launch(
        {.program = "xdg-mime",
            .arguments = {"query", "default", type.toStdString()},
            .output = output->number()},
        context, [output, then = std::move(then)](bool) { then(firstLineOf(*output)); },
        longestWait);
}
