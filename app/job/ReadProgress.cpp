#include "app/job/ReadProgress.h"

#include "platform/base/process/ProcessReading.h"
#include "shared/Library/Archiver/Archiver.h"

#include <algorithm>
#include <utility>

namespace fs = std::filesystem;

namespace
{

// What could be read and compressed in the time that a run of the tool takes beside that.
constexpr double bytesPerRun = 200'000;

InputSizes::Reading readingOf(int type, bool excludesDSStore)
{
    const bool isTar = type == ArchiveTypeTarGz;
    const bool isPlainZip = type == ArchiveTypePlainZip;
    return {.followsItems = isTar || type == ArchiveTypeDiskImage,
        .followsLinks = isTar,
        .excludesDSStore = excludesDSStore && (isTar || isPlainZip)};
}

} // namespace

ReadProgress::ReadProgress(
    const std::vector<std::filesystem::path>& items, int type, bool excludesDSStore)
    : _hasRunForEach(type == ArchiveTypePlainZip)
    , _sizes(items, readingOf(type, excludesDSStore))
{
}

void ReadProgress::look(pid_t tool)
{
    _readByTool = std::max(_readByTool, ProcessReading::bytesRead(tool).value_or(0));
    _lookForName(tool);
    const auto before = _hasRunForEach ? _sizes.ofFirst(_runs) : std::nullopt;
    const auto after = _hasRunForEach ? _sizes.ofFirst(_runs + 1) : _sizes.ofAll();
    const std::uint64_t read = before.value_or(_readBefore) + _readByTool;
    _advanceTo(after ? std::min(read, *after) : read);
}

// A tool reads other files, too, but not for long.
void ReadProgress::_lookForName(pid_t tool)
{
    const bool isInItem = _hasRunForEach && _runs < _sizes.items().size();
    const fs::path item = isInItem ? _sizes.items()[_runs] : fs::path();
    std::error_code missing;
    if (isInItem && !fs::is_directory(fs::symlink_status(item, missing)))
        _progress.name = item.filename();
    else if (const auto file = ProcessReading::openFile(tool))
        _progress.name = file->filename();
}

void ReadProgress::toolHasEnded()
{
    ++_runs;
    _readBefore += std::exchange(_readByTool, 0);
}

void ReadProgress::finish()
{
    if (const auto all = _sizes.ofAll())
        _progress.bytesDone = _progress.bytesInAll = *all;
    _progress.fraction = 1;
    _progress.name.clear();
    _progress.timeLeft.reset();
}

double ReadProgress::_workOf(std::uint64_t bytes, std::size_t runs) const
{
    return static_cast<double>(bytes)
        + (_hasRunForEach ? bytesPerRun * static_cast<double>(runs) : 0);
}

void ReadProgress::_advanceTo(std::uint64_t bytes)
{
    _progress.bytesDone = std::max(_progress.bytesDone, bytes);
    if (const auto all = _sizes.ofAll()) {
        _progress.bytesInAll = *all;
        _progress.bytesDone = std::min(_progress.bytesDone, *all);
        if (const double work = _workOf(*all, _sizes.items().size()); work > 0)
            _progress.fraction = std::max(
                _progress.fraction.value_or(0), _workOf(_progress.bytesDone, _runs) / work);
    }
    const Pace::Seconds time = std::chrono::steady_clock::now() - _begin;
    _pace.add(time, static_cast<double>(_progress.bytesDone), _progress.fraction);
    _progress.bytesPerSecond = _pace.rate();
    _progress.timeLeft = _pace.timeLeft();
}
