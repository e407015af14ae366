#include "tessel/platform/memory.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

#include "tessel/base/line_reader.h"
#include "tessel/base/number.h"

namespace tessel {
namespace {

constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t less(std::uint64_t value, std::uint64_t used) {
    return value - std::min(value, used);
}

// The number behind the first line's beginning `key`, which may be empty.
std::optional<std::uint64_t> number_in_file(const std::string& path, std::string_view key) {
    CLineReader reader(path);
    std::string_view line;
    while (reader.ReadLine(line)) {
        if (!line.starts_with(key)) continue;
        line.remove_prefix(key.size());
        std::uint64_t number = 0;
        if (read_integer(line.data(), line.data() + line.size(), number)) return number;
        return std::nullopt;
    }
    return std::nullopt;
}

std::uint64_t machine_memory(const std::string& root) {
    const std::string path = root + "/proc/meminfo";
    const auto kilobytes = number_in_file(path, "MemAvailable:");
    if (!kilobytes) return kUnlimited;
    return (*kilobytes + number_in_file(path, "SwapFree:").value_or(0)) * 1024;
}

std::uint64_t address_space(const std::string& root) {
    rlimit limit;
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kUnlimited;
    const auto pages = number_in_file(root + "/proc/self/statm", "");
    return less(limit.rlim_cur,
                pages.value_or(0) * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
}

// Where the two versions of control groups keep their figures.
struct GROUP_FILES {
    const char* mount;
    const char* limit;
    const char* used;
    const char* inactiveCache;
    const char* activeCache;
};
constexpr GROUP_FILES kVersion1 = {"/sys/fs/cgroup/memory", "/memory.limit_in_bytes",
                                   "/memory.usage_in_bytes", "total_inactive_file ",
                                   "total_active_file "};
constexpr GROUP_FILES kVersion2 = {"/sys/fs/cgroup", "/memory.max", "/memory.current",
                                   "inactive_file ", "active_file "};

std::uint64_t group_memory(const std::string& folder, const GROUP_FILES& files) {
    const auto limit = number_in_file(folder + files.limit, "");
    if (!limit) return kUnlimited;
    // Cached files count as used, but give way.
    const std::string statistics = folder + "/memory.stat";
    const std::uint64_t cache = number_in_file(statistics, files.inactiveCache).value_or(0) +
                                number_in_file(statistics, files.activeCache).value_or(0);
    return less(*limit, less(number_in_file(folder + files.used, "").value_or(0), cache));
}

// A group is bound by the limits of all groups above it, too. Inside a container only the last of
// them, the root, may be there.
std::uint64_t group_and_parents_memory(const std::string& root, std::string_view group,
                                       const GROUP_FILES& files) {
    std::uint64_t available = kUnlimited;
    for (;;) {
        while (group.ends_with('/'))
            group.remove_suffix(1);
        const std::string folder = root + files.mount + std::string(group);
        available = std::min(available, group_memory(folder, files));
        if (group.empty()) return available;
        group = group.substr(0, group.rfind('/') + 1);
    }
}

// Lines "number:controllers:group"; the second version has no controllers.
std::uint64_t container_memory(const std::string& root) {
    CLineReader reader(root + "/proc/self/cgroup");
    std::uint64_t available = kUnlimited;
    std::string_view line;
    while (reader.ReadLine(line)) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string_view::npos) continue;
        const std::string name =
            ',' + std::string(line.substr(first + 1, second - first - 1)) + ',';
        if (name != ",," && name.find(",memory,") == std::string::npos) continue;
        const GROUP_FILES& files = name == ",," ? kVersion2 : kVersion1;
        const std::string_view group = line.substr(second + 1);
        available = std::min(available, group_and_parents_memory(root, group, files));
    }
    return available;
}

}  // namespace

std::uint64_t available_memory(const std::string& root) {
    return std::min({machine_memory(root), address_space(root), container_memory(root)});
}

void CFreshPages::MakeReady() {
#ifdef MADV_POPULATE_WRITE
    // So little that it is still in the cache when it is written.
    constexpr std::uintptr_t kPiece = std::uintptr_t{1} << 18;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = reinterpret_cast<std::uintptr_t>(m_pReady) / page * page;
    const auto end = reinterpret_cast<std::uintptr_t>(m_pEnd) / page * page;
    const std::uintptr_t next = std::min(begin + kPiece, end);
    // NOLINTBEGIN(performance-no-int-to-ptr): addresses of pages are numbers
    if (next > begin &&
        madvise(reinterpret_cast<void*>(begin), next - begin, MADV_POPULATE_WRITE) == 0) {
        m_pReady = next < end ? reinterpret_cast<char*>(next) : m_pEnd;
        return;
    }
    // NOLINTEND(performance-no-int-to-ptr)
#endif
    m_pReady = m_pEnd;
}

}  // namespace tessel
