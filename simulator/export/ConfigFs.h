#ifndef SIMULATOR_EXPORT_CONFIGFS_H
#define SIMULATOR_EXPORT_CONFIGFS_H

#include <filesystem>
#include <string>

namespace arraysim {

/**
 * The file system through which the kernel's target is worked: a directory that is made there comes with its
 * attributes, and goes with them. Throws std::runtime_error, std::filesystem::filesystem_error among them.
 */
class ConfigFs
{
public:
    using Path = std::filesystem::path;

    explicit ConfigFs(Path root = "/sys/kernel/config/target") : m_root(std::move(root)) {}
    virtual ~ConfigFs() = default;

    const Path& root() const { return m_root; }
    virtual void makeDirectory(const Path& directory) { std::filesystem::create_directory(directory); }
    virtual void removeDirectory(const Path& directory) { std::filesystem::remove(directory); }
    virtual void write(const Path& attribute, const std::string& value);
    /** The first line of an attribute; empty where there is none. */
    static std::string read(const Path& attribute);

private:
    const Path m_root;
};

} // namespace arraysim

#endif
