#include "export/DataCopy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace arraysim {
namespace {

void require(bool succeeded, const std::filesystem::path& file)
{
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), file.string());
    }
}

class OpenFile
{
public:
    OpenFile(const std::filesystem::path& name, int flags)
        : m_name(name), m_descriptor(::open(name.c_str(), flags, 0600))
    {
        require(m_descriptor >= 0, name);
    }
    ~OpenFile() { ::close(m_descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return m_descriptor; }
    const std::filesystem::path& name() const { return m_name; }
    off_t size() const
    {
        struct stat status;
        require(::fstat(m_descriptor, &status) == 0, m_name);
        return status.st_size;
    }
    /** From where on there is data, or a hole; the size where there is none any more. */
    off_t seek(off_t from, int whence) const
    {
        const off_t found = ::lseek(m_descriptor, from, whence);
        require(found >= 0 || errno == ENXIO, m_name);
        return found < 0 ? size() : found;
    }

private:
    const std::filesystem::path m_name;
    const int m_descriptor;
};

void copyRange(const OpenFile& from, const OpenFile& to, off_t at, off_t end)
{
    while (at < end) {
        off_t target = at;
        const ssize_t copied = ::copy_file_range(from.descriptor(), &at, to.descriptor(), &target,
                                                 static_cast<std::size_t>(end - at), 0);
        require(copied >= 0 || errno == EINTR, to.name());
        if (copied == 0) {
            return; // the file has become shorter
        }
    }
}

void copyContents(const OpenFile& from, const OpenFile& to)
{
    if (::ioctl(to.descriptor(), FICLONE, from.descriptor()) == 0) {
        return;
    }
    const off_t size = from.size();
    require(::ftruncate(to.descriptor(), size) == 0, to.name());
    for (off_t data = from.seek(0, SEEK_DATA); data < size;) {
        const off_t hole = from.seek(data, SEEK_HOLE);
        copyRange(from, to, data, hole);
        data = from.seek(hole, SEEK_DATA);
    }
}

} // namespace

void copyData(const std::filesystem::path& from, const std::filesystem::path& to)
{
    const OpenFile source(from, O_RDONLY | O_CLOEXEC);
    const OpenFile target(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
    try {
        copyContents(source, target);
    } catch (...) {
        ::unlink(to.c_str());
        throw;
    }
}

void makeSparse(const std::filesystem::path& file, std::uintmax_t size)
{
    const OpenFile made(file, O_WRONLY | O_CREAT | O_CLOEXEC);
    require(::ftruncate(made.descriptor(), static_cast<off_t>(size)) == 0, file);
}

} // namespace arraysim
