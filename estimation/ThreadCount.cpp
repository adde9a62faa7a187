#include "estimation/ThreadCount.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <thread>

#ifdef __linux__
#include <sched.h>
#endif

namespace fenn::estimation
{

namespace
{

constexpr double noLimit = std::numeric_limits<double>::infinity();

/// quota and period as numbers of microseconds; "max" and -1 are no limit.
double ratioOf(const std::string& quota, const std::string& period)
{
    std::istringstream quotaText(quota);
    std::istringstream periodText(period);
    double quotaTime = 0.0;
    double periodTime = 0.0;
    if (!(quotaText >> quotaTime) || !(periodText >> periodTime) || quotaTime <= 0.0 || periodTime <= 0.0)
        return noLimit;
    return quotaTime / periodTime;
}

std::string firstLine(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/// The limit of one group, by the files of both versions.
double limitOfGroup(const std::string& folder)
{
    std::istringstream line(firstLine(folder + "/cpu.max"));
    std::string quota;
    std::string period;
    line >> quota >> period;
    return std::min(ratioOf(quota, period),
                    ratioOf(firstLine(folder + "/cpu.cfs_quota_us"), firstLine(folder + "/cpu.cfs_period_us")));
}

/// The least limit of a group, given as a path below the mount, and of all groups around it.
double limitOfGroups(const std::string& mount, std::string group)
{
    double limit = limitOfGroup(mount);
    while (!group.empty() && group != "/")
    {
        limit = std::min(limit, limitOfGroup(mount + group));
        group.erase(group.find_last_of('/') == std::string::npos ? 0 : group.find_last_of('/'));
    }
    return limit;
}

bool listsProcessorTime(const std::string& controllers)
{
    return ("," + controllers + ",").find(",cpu,") != std::string::npos;
}

int coresOfAffinity()
{
#ifdef __linux__
    // Grown until the kernel's mask fits.
    for (int numCpus = 1024; numCpus <= 1 << 20; numCpus *= 2)
    {
        cpu_set_t* set = CPU_ALLOC(static_cast<std::size_t>(numCpus));
        if (set == nullptr)
            break;
        const std::size_t size = CPU_ALLOC_SIZE(static_cast<std::size_t>(numCpus));
        const bool isKnown = sched_getaffinity(0, size, set) == 0;
        const int count = isKnown ? CPU_COUNT_S(size, set) : 0;
        CPU_FREE(set);
        if (isKnown)
            return count;
    }
#endif
    return static_cast<int>(std::thread::hardware_concurrency());
}

} // namespace

double grantedCores(const std::string& membership, const std::string& root)
{
    double limit = noLimit;
    std::istringstream lines(membership);
    for (std::string line; std::getline(lines, line);)
    {
        // number:controllers:group, without controllers in version 2
        const std::size_t first = line.find(':');
        const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos)
            continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        const std::string group = line.substr(second + 1);
        if (controllers.empty())
            limit = std::min(limit, limitOfGroups(root, group));
        else if (listsProcessorTime(controllers))
            limit =
                std::min({limit, limitOfGroups(root + "/" + controllers, group), limitOfGroups(root + "/cpu", group)});
    }
    return limit;
}

int availableCores()
{
    std::ifstream file("/proc/self/cgroup");
    const std::string membership{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    // Rounded up: a fraction of a core is worth a thread, because work is handed out in small ranges.
    const double granted = std::ceil(grantedCores(membership, "/sys/fs/cgroup"));
    const int cores = std::max(coresOfAffinity(), 1);
    return granted < cores ? std::max(static_cast<int>(granted), 1) : cores;
}

int chooseThreadCount(int numThreads)
{
    return numThreads > 0 ? numThreads : availableCores();
}

} // namespace fenn::estimation
