// Files behind a handle: on this machine or in memory. Platforms keep theirs in a FileTable.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/host_context.h"

namespace qel {

class File {
  public:
    virtual ~File() = default;                                                // closes it
    virtual bool read(std::uint32_t offset, std::span<std::uint8_t> to) = 0;  // all or false
    virtual bool append(std::span<const std::uint8_t> bytes) = 0;             // all or false
};

// A file of this machine, for reading. Null: there is none, it may not be read, or it is a directory.
std::unique_ptr<File> openLocalFile(const std::string& path);

// An empty file called `name`, in a directory made for it alone that nobody else can enter; both are removed when the
// file is closed. Null when it cannot be made.
std::unique_ptr<File> createPrivateFile(std::string_view name);

std::unique_ptr<File> makeMemoryFile(std::vector<std::uint8_t> bytes);

class FileTable {
  public:
    FileHandle add(std::unique_ptr<File> file);  // invalidFile for null
    File* find(FileHandle handle) const;         // null for handles that are not open
    void close(FileHandle handle);

  private:
    std::vector<std::unique_ptr<File>> files_;  // the handle is the index; null where one was closed
};

}  // namespace qel
