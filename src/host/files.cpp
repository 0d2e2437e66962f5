#include "host/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

namespace qel {
namespace {

class LocalFile : public File {
  public:
    explicit LocalFile(int descriptor) : descriptor_(descriptor) {}
    ~LocalFile() override { ::close(descriptor_); }

    bool read(std::uint32_t offset, std::span<std::uint8_t> to) override {
        auto at = static_cast<off_t>(offset);
        while (!to.empty()) {
            const ssize_t count = ::pread(descriptor_, to.data(), to.size(), at);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            to = to.subspan(static_cast<std::size_t>(count));
            at += count;
        }
        return true;
    }

    bool append(std::span<const std::uint8_t> bytes) override {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        return true;
    }

  private:
    int descriptor_;
};

class PrivateFile : public LocalFile {
  public:
    PrivateFile(int descriptor, std::string directory, std::string path)
        : LocalFile(descriptor), directory_(std::move(directory)), path_(std::move(path)) {}
    ~PrivateFile() override {
        ::unlink(path_.c_str());
        ::rmdir(directory_.c_str());
    }

  private:
    std::string directory_, path_;
};

class MemoryFile : public File {
  public:
    explicit MemoryFile(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    bool read(std::uint32_t offset, std::span<std::uint8_t> to) override {
        if (offset > bytes_.size() || to.size() > bytes_.size() - offset) return false;
        if (!to.empty()) std::memcpy(to.data(), bytes_.data() + offset, to.size());
        return true;
    }
    bool append(std::span<const std::uint8_t> bytes) override {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return true;
    }

  private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::unique_ptr<File> openLocalFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe must not hold us up
    if (descriptor < 0) return nullptr;
    struct stat about = {};
    if (::fstat(descriptor, &about) != 0 || !S_ISREG(about.st_mode)) {
        ::close(descriptor);
        return nullptr;
    }
    return std::make_unique<LocalFile>(descriptor);
}

std::unique_ptr<File> createPrivateFile(std::string_view name) {
    std::error_code error;
    std::string directory = (std::filesystem::temp_directory_path(error) / "qel-XXXXXX").string();
    if (error || !::mkdtemp(directory.data())) return nullptr;
    const std::string path = directory + "/" + std::string(name);
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        ::rmdir(directory.c_str());
        return nullptr;
    }
    return std::make_unique<PrivateFile>(descriptor, directory, path);
}

std::unique_ptr<File> makeMemoryFile(std::vector<std::uint8_t> bytes) {
    return std::make_unique<MemoryFile>(std::move(bytes));
}

FileHandle FileTable::add(std::unique_ptr<File> file) {
    if (!file) return invalidFile;
    const auto unused = std::find(files_.begin(), files_.end(), nullptr);
    const auto handle = static_cast<FileHandle>(unused - files_.begin());
    if (unused != files_.end()) {
        *unused = std::move(file);
    } else {
        files_.push_back(std::move(file));
    }
    return handle;
}

File* FileTable::find(FileHandle handle) const {
    return handle >= 0 && static_cast<std::size_t>(handle) < files_.size()
               ? files_[static_cast<std::size_t>(handle)].get()
               : nullptr;
}

void FileTable::close(FileHandle handle) {
    if (find(handle)) files_[static_cast<std::size_t>(handle)].reset();
}

}  // namespace qel
