#include "tools/tar/HardLinks.h"

namespace
{

constexpr std::size_t mostBytes = std::size_t{8} << 20; // some 40,000 files
constexpr std::size_t bytesPerFile = 100; // besides the name

} // namespace

const std::string* HardLinks::find(const FileStatus& status)
{
    const auto first = _files.find({status.st_dev, status.st_ino});
    if (status.st_nlink < 2 || first == _files.end())
        return nullptr;
    _found = first->second.name;
    if (--first->second.namesToCome == 0) {
        _size -= _found.size() + bytesPerFile;
        _files.erase(first);
    }
    return &_found;
}

void HardLinks::add(const FileStatus& status, const std::string& name)
{
    if (status.st_nlink < 2 || _size > mostBytes)
        return;
    const bool isNew
        = _files.try_emplace({status.st_dev, status.st_ino}, First{name, status.st_nlink - 1})
              .second;
    if (isNew)
        _size += name.size() + bytesPerFile;
}
