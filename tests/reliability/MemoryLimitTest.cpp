// The system gives the process only so much more memory, to Qt and to threads' stacks as to everything else. Linux
// only, like the whole of this program.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "tests/support/ModelSample.h"
#include "tests/support/RequestArrays.h"

using namespace fenn::test;

namespace
{

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool canLimitMemory = false; // the sanitizer's own memory is beyond any limit
#else
constexpr bool canLimitMemory = true;
#endif

constexpr int rightAnswer = 0;
constexpr int wrongAnswer = 1;
constexpr int outOfMemory = 2;
constexpr int otherFailure = 3;

std::size_t bytesInUse()
{
    std::size_t numPages = 0;
    std::ifstream("/proc/self/statm") >> numPages;
    return numPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// Of a child process that may take so many more bytes and runs the operation; its exit status, or minus the signal
/// that ended it. This process must not have had threads before: what their arenas and stacks leave is not limited.
template <typename Operation>
int outcomeWithin(std::size_t numBytes, Operation operation)
{
    const pid_t child = fork();
    if (child == 0)
    {
        const rlim_t limit = bytesInUse() + numBytes;
        const rlimit limits{limit, limit};
        alarm(60); // a hang is an outcome too
        int outcome = otherFailure;
        try
        {
            if (setrlimit(RLIMIT_AS, &limits) == 0)
                outcome = operation() ? rightAnswer : wrongAnswer;
        }
        catch (const std::bad_alloc&)
        {
            outcome = outOfMemory;
        }
        catch (...)
        {
        }
        _exit(outcome);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return otherFailure;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Numbers that child processes leave to their parent.
class SharedNumbers
{
public:
    explicit SharedNumbers(std::size_t count_)
        : count(count_),
          numbers(static_cast<double*>(
              mmap(nullptr, count * sizeof(double), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
    }
    ~SharedNumbers()
    {
        munmap(numbers, count * sizeof(double));
    }
    SharedNumbers(const SharedNumbers& other) = delete;
    SharedNumbers& operator=(const SharedNumbers& other) = delete;

    double* data()
    {
        return numbers;
    }

private:
    std::size_t count;
    double* numbers;
};

} // namespace

TEST(MemoryLimitTest, AModelIsBuiltAndAskedOrFailsWithBadAlloc)
{
    if (!canLimitMemory)
        GTEST_SKIP();
    constexpr std::size_t numTargets = 200;
    ModelSample samples(randomValues(2, 500, 0.0, 1.0, 90), randomValues(1, 500, 0.0, 1.0, 91));
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;
    ValueArrays targets(randomValues(2, numTargets, 0.0, 1.0, 92));
    ResultArrays results(1, numTargets);
    SharedNumbers expected(numTargets);
    double* const values = results.arrays()[0];
    const auto request = [&](const KrigingSurrogateModel& model)
    {
        model.interpolateDependentValues(targets.arrays(), {0}, results.arrays(), numTargets);
        return std::memcmp(values, expected.data(), numTargets * sizeof(double)) == 0;
    };
    const auto keepAnswer = [&]
    {
        request(samples.build(settings));
        std::copy_n(values, numTargets, expected.data());
        return true;
    };
    const auto answersRightTwice = [&]
    {
        const KrigingSurrogateModel model = samples.build(settings);
        return request(model) && request(model);
    };
    ASSERT_EQ(outcomeWithin(std::size_t{1} << 40, keepAnswer), rightAnswer);

    int numRight = 0;
    int numOutOfMemory = 0;
    const std::size_t enough = (std::size_t{9} << 20) * std::thread::hardware_concurrency() + (std::size_t{16} << 20);
    const std::size_t step = enough / 220;
    for (std::size_t numBytes = 0; numBytes < enough; numBytes += step)
    {
        const int outcome = outcomeWithin(numBytes, answersRightTwice);
        EXPECT_TRUE(outcome == rightAnswer || outcome == outOfMemory)
            << "outcome " << outcome << " within " << numBytes << " bytes";
        numRight += outcome == rightAnswer ? 1 : 0;
        numOutOfMemory += outcome == outOfMemory ? 1 : 0;
    }
    std::cout << "Memory limits: " << numRight << " with the right answer, " << numOutOfMemory << " out of memory\n";
    EXPECT_GT(numRight, 0);
    EXPECT_GT(numOutOfMemory, 0);
}
