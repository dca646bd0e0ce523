#ifndef SIMULATOR_FAKECONFIGFS_H
#define SIMULATOR_FAKECONFIGFS_H

#include "export/ConfigFs.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

/**
 * A tree in a temporary folder that keeps the rules of the kernel's: directories come and go with their
 * attributes, links keep their ends from going, and a store is set up before it is enabled.
 */
class FakeConfigFs : public arraysim::ConfigFs
{
public:
    FakeConfigFs(const Path& root, const std::string& iqn)
        : ConfigFs(root), m_group(root / "iscsi" / iqn / "tpgt_1")
    {
        namespace fs = std::filesystem;
        fs::create_directories(root / "core");
        fs::create_directories(m_group / "lun");
        fs::create_directories(m_group / "acls");
    }

    void makeDirectory(const Path& directory) override
    {
        namespace fs = std::filesystem;
        ConfigFs::makeDirectory(directory);
        if (isStore(directory)) {
            fs::create_directory(directory / "wwn");
            for (const char* name :
                 {"control", "enable", "udev_path", "wwn/company_id", "wwn/vpd_unit_serial"}) {
                std::ofstream(directory / name).close();
            }
        } else if (directory.parent_path().parent_path().filename() == "acls") {
            std::ofstream(directory / "write_protect").close();
        }
    }

    void removeDirectory(const Path& directory) override
    {
        namespace fs = std::filesystem;
        for (const auto& entry : fs::directory_iterator(directory)) {
            if (entry.is_symlink() || (entry.is_directory() && entry.path().filename() != "wwn")) {
                throw std::runtime_error(entry.path().string() + " is in the way");
            }
        }
        for (const auto& entry : fs::recursive_directory_iterator(root())) {
            std::error_code broken;
            if (entry.is_symlink() && fs::equivalent(entry.path(), directory, broken)) {
                throw std::runtime_error(directory.string() + " is linked to by " + entry.path().string());
            }
        }
        fs::remove_all(directory);
    }

    void write(const Path& attribute, const std::string& value) override
    {
        if (!std::filesystem::exists(attribute)) {
            throw std::runtime_error("no attribute " + attribute.string());
        }
        const Path store = attribute.parent_path().filename() == "wwn" ? attribute.parent_path().parent_path()
                                                                       : attribute.parent_path();
        if (attribute.filename() != "enable" && read(store / "enable") == "1") {
            throw std::runtime_error("too late for " + attribute.string());
        }
        if (value.find(failing) != std::string::npos && !failing.empty()) {
            throw std::runtime_error("refused");
        }
        ConfigFs::write(attribute, value);
    }

    /** The names of the stores that an initiator sees, in the order of their numbers. */
    std::vector<std::string> seenBy(const std::string& initiator) const
    {
        namespace fs = std::filesystem;
        std::vector<std::string> stores;
        for (int number = 0; number < 20; ++number) {
            const Path store =
                m_group / "acls" / initiator / ("lun_" + std::to_string(number)) / "export" / "store";
            if (fs::exists(store)) {
                stores.push_back(fs::canonical(store).filename());
            }
        }
        return stores;
    }
    std::vector<std::string> stores() const { return names(root() / "core" / "fileio_0"); }
    Path group() const { return m_group; }
    Path store(const std::string& name) const { return root() / "core" / "fileio_0" / name; }

    std::string failing; ///< a part of values that are refused

private:
    static bool isStore(const Path& directory) { return directory.parent_path().filename() == "fileio_0"; }
    static std::vector<std::string> names(const Path& directory)
    {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            all.push_back(entry.path().filename());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    const Path m_group;
};

#endif
