#ifndef OVRA_DISK_MULTIPATH_H
#define OVRA_DISK_MULTIPATH_H

#include <optional>
#include <string>
#include <vector>

namespace ovra::disk {

/** The first path device, e.g. sdc, of a device-mapper node, e.g. dm-3, in what multipath -ll prints. */
std::optional<std::string> firstPathOf(const std::string& node, const std::vector<std::string>& lines);

} // namespace ovra::disk

#endif
