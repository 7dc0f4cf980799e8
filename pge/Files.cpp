#include "pge/Files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pge::files {

namespace {

// Links followed before a path counts as a loop, as the kernel counts them.
constexpr int kMaxLinks = 40;

struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

std::string FolderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The file a path names at the end of its chain of symbolic links, which may not exist yet.
bool FollowLinks(std::string path, std::string& target) {
    for (int hop = 0; hop < kMaxLinks; ++hop) {
        struct stat st {};
        if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) {
            target = path;
            return true;
        }
        std::string link(size_t(st.st_size > 0 ? st.st_size : 255) + 1, '\0');
        const ssize_t n = ::readlink(path.c_str(), link.data(), link.size());
        if (n <= 0 || size_t(n) >= link.size()) return false;
        link.resize(size_t(n));
        path = link[0] == '/' ? link : FolderOf(path) + "/" + link;
    }
    return false;
}

bool WriteFully(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes.remove_prefix(size_t(n));
    }
    return true;
}

void IgnoreFileSizeSignal() {
    static std::once_flag s_once;
    std::call_once(s_once, [] {
        struct sigaction now {};
        if (::sigaction(SIGXFSZ, nullptr, &now) == 0 && now.sa_handler == SIG_DFL) std::signal(SIGXFSZ, SIG_IGN);
    });
}

} // namespace

bool ReadAll(const std::string& path, std::string& out, size_t maxBytes) {
    out.clear();
    // Without O_NONBLOCK, opening a FIFO would wait for a writer.
    Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)};
    struct stat st {};
    if (file.fd < 0 || ::fstat(file.fd, &st) != 0 || !S_ISREG(st.st_mode) || uint64_t(st.st_size) > maxBytes)
        return false;
    std::string data(size_t(st.st_size), '\0');
    size_t have = 0;
    // One byte more than the limit tells a file that grew beyond it while being read.
    const size_t room = maxBytes < SIZE_MAX ? maxBytes + 1 : maxBytes;
    for (;;) {
        if (have == data.size()) data.resize(std::min(room, have + 65536));
        if (have == data.size()) break;
        const ssize_t n = ::read(file.fd, data.data() + have, data.size() - have);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) break;
        have += size_t(n);
    }
    if (have > maxBytes) return false;
    data.resize(have);
    out = std::move(data);
    return true;
}

bool WriteAll(const std::string& path, std::string_view bytes) {
    IgnoreFileSizeSignal();
    std::string target;
    if (path.empty() || !FollowLinks(path, target)) return false;
    // Only a regular file is replaced: a link to /dev/null stays a way not to keep a file,
    // and a device is never swapped for a file, not even by root.
    struct stat old {};
    const bool replacing = ::stat(target.c_str(), &old) == 0;
    if (replacing && !S_ISREG(old.st_mode)) return false;

    // A name of its own in the same folder (rename works only within one file system),
    // hidden, and with no extension that a folder listing would take for the file's.
    static std::atomic<unsigned> s_serial{0};
    const std::string folder = FolderOf(target);
    const std::string temporary = folder + "/." + target.substr(target.rfind('/') + 1) + ".neu-" +
                                  std::to_string(::getpid()) + "-" + std::to_string(s_serial.fetch_add(1));
    Descriptor file{::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666)};
    if (file.fd < 0) return false;
    const bool written = (!replacing || ::fchmod(file.fd, old.st_mode & 07777) == 0) && WriteFully(file.fd, bytes) &&
                         ::fsync(file.fd) == 0;
    const int fd = file.fd;
    file.fd = -1;
    if (::close(fd) != 0 || !written || ::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    // The new name on the disk as well; the content is already in place if this fails.
    Descriptor dir{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (dir.fd >= 0) ::fsync(dir.fd);
    return true;
}

} // namespace pge::files
