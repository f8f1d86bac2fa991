// zucom_soak MINUTES KIND_OF_FILE [SEED]: many ports in as many threads, used against readers that spoil their
// answers. It goes in rounds; between two rounds nothing is open, and what the process holds must be what it held
// before.

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>

#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <zucom/zucom.h>

#include "tests/soak/logOutputs.h"
#include "tests/soak/soakedPort.h"

namespace
{

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int ports = 16;
constexpr auto roundLength = 5s;
constexpr auto patience = 120s;             // for the last call to come back
constexpr long heapTolerance = 64 * 1024;   // bytes; one byte lost per exchange is more
constexpr long memoryTolerance = 16 * 1024; // KiB of resident memory
constexpr int warmUp = 2;                   // rounds until every thread's heap has been made

struct Holding
{
    long descriptors;
    long heap;     // bytes
    long resident; // KiB

    static Holding now()
    {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        return {std::distance(begin(open), end(open)), static_cast<long>(mallinfo2().uordblks),
                pages * sysconf(_SC_PAGESIZE) / 1024};
    }
};

std::string devicePath(const std::string& folder, int number) { return folder + "/reader" + std::to_string(number); }

// Walks and searches the ports while they come and go.
void look(const std::string& folder, const std::atomic<bool>& stop, SoakedPort::Figures& figures)
{
    const auto oneOf = [&](int result, std::initializer_list<int> codes)
    {
        if (result <= 0 && std::find(codes.begin(), codes.end(), result) == codes.end())
            figures.failures.push_back(fmt::format("the list of ports answered {}", result));
    };
    while (!stop)
    {
        int handle = 0;
        do
        {
            handle = ZUCOM_GetPortList(handle);
            oneOf(handle, {ZUCOM_ERR_PORT_LIST_EMPTY, ZUCOM_ERR_NO_HANDLE, ZUCOM_ERR_UNKNOWN_HANDLE});
        } while (handle > 0);
        for (int number = 0; number < ports; ++number)
            oneOf(ZUCOM_GetPortHnd(devicePath(folder, number).c_str()), {ZUCOM_ERR_NO_HANDLE});
        std::this_thread::sleep_for(1ms);
    }
}

// Joins all of them, or ends the process when one does not come back.
class Threads
{
public:
    template <class Work>
    void start(Work work)
    {
        threads_.emplace_back(
            [this, work]
            {
                work();
                const std::lock_guard lock(mutex_);
                ++finished_;
                changed_.notify_all();
            });
    }

    void join(std::FILE* console)
    {
        std::unique_lock lock(mutex_);
        if (!changed_.wait_for(lock, patience, [this] { return finished_ == threads_.size(); }))
        {
            fmt::print(console, "{} calls did not come back\nsoak: 1 cases, 0 faults, 1 failures\n",
                       threads_.size() - finished_);
            std::fflush(console);
            _exit(1);
        }
        lock.unlock();
        for (std::thread& thread : threads_)
            thread.join();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t finished_ = 0;
    std::vector<std::thread> threads_;
};

void add(SoakedPort::Figures& sum, const SoakedPort::Figures& part)
{
    sum.openings += part.openings;
    sum.exchanges += part.exchanges;
    sum.faults += part.faults;
    sum.failures.insert(sum.failures.end(), part.failures.begin(), part.failures.end());
}

SoakedPort::Figures runRound(const std::string& folder, std::uint64_t seed, Clock::duration length, std::FILE* console)
{
    SoakedPort::Figures sum;
    std::atomic<bool> stop = false;
    std::vector<std::unique_ptr<SoakedPort>> soaked;
    Threads threads;
    for (int number = 0; number < ports; ++number)
    {
        SoakedPort& port = *soaked.emplace_back(
            std::make_unique<SoakedPort>(devicePath(folder, number), seed + static_cast<std::uint64_t>(number)));
        threads.start([&] { port.use(stop); });
    }
    threads.start([&] { look(folder, stop, sum); });
    std::this_thread::sleep_for(length);
    stop = true;
    threads.join(console);
    for (const auto& port : soaked)
        add(sum, port->figures());
    return sum;
}

std::vector<std::string> growth(const Holding& before, const Holding& now)
{
    std::vector<std::string> wrong;
    if (now.descriptors != before.descriptors)
        wrong.push_back(fmt::format("{} descriptors are open, {} before", now.descriptors, before.descriptors));
    if (now.heap > before.heap + heapTolerance)
        wrong.push_back(fmt::format("{} bytes of heap are in use, {} before", now.heap, before.heap));
    if (now.resident > before.resident + memoryTolerance)
        wrong.push_back(fmt::format("{} KiB are resident, {} before", now.resident, before.resident));
    return wrong;
}

int soak(double minutes, const std::string& folder, const std::string& kindOfFile, std::uint64_t seed)
{
    static LogOutputs outputs(folder, kindOfFile);
    std::FILE* const console = outputs.console();
    const auto end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(minutes * 60));
    SoakedPort::Figures sum;
    Holding before{};
    fmt::print(console, "{} ports, seed {}, {}\nround openings exchanges   faults  loglines  fds  heap-KiB  rss-KiB\n",
               ports, seed, kindOfFile);
    for (int round = 1; Clock::now() < end; ++round, seed += ports)
    {
        SoakedPort::Figures figures =
            runRound(folder, seed, std::min<Clock::duration>(roundLength, end - Clock::now()), console);
        const auto note = [&](const std::vector<std::string>& wrong)
        { figures.failures.insert(figures.failures.end(), wrong.begin(), wrong.end()); };
        note(outputs.compare());
        if (const int handle = ZUCOM_GetPortList(0); handle != ZUCOM_ERR_PORT_LIST_EMPTY)
            note({fmt::format("after the round port {} is still there", handle)});
        const Holding now = Holding::now();
        if (round > warmUp)
            note(growth(before, now));
        else
            before = now;
        add(sum, figures);
        fmt::print(console, "{:5} {:8} {:9} {:8} {:9} {:4} {:9} {:8}\n", round, sum.openings, sum.exchanges, sum.faults,
                   outputs.lines(), now.descriptors, now.heap / 1024, now.resident);
        for (const std::string& failure : figures.failures)
            fmt::print(console, "  {}\n", failure);
        std::fflush(console);
    }
    fmt::print(console, "soak: {} cases, {} faults, {} failures\n", sum.exchanges, sum.faults, sum.failures.size());
    std::fflush(console);
    return sum.failures.empty() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 3)
    {
        std::fputs("usage: zucom_soak MINUTES logfileshared|logfileperreader [SEED]\n", stderr);
        return 2;
    }
    std::string folder = std::filesystem::temp_directory_path() / "zucom-soak.XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
    {
        std::perror(folder.c_str());
        return 2;
    }
    const int result = soak(std::stod(arguments[1]), folder, arguments[2], count > 3 ? std::stoull(arguments[3]) : 1);
    std::filesystem::remove_all(folder);
    return result;
}
