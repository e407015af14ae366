// Rounds: a contender comes in, its CPU time and its peak resident memory come out.

#include "bench/measure.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace tessel::bench {
namespace {

double cpu_seconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A line of the kernel's account of this process, "VmRSS:" or "VmHWM:", in bytes.
std::uint64_t memory_line(const char* key) {
    std::FILE* const status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return 0;
    char line[256];
    std::uint64_t kilobytes = 0;
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, key, std::strlen(key)) != 0) continue;
        kilobytes = std::strtoull(line + std::strlen(key), nullptr, 10);
        break;
    }
    std::fclose(status);
    return kilobytes * 1024;
}

// Lets the peak begin at what is resident now.
void reset_peak() {
    const int file = open("/proc/self/clear_refs", O_WRONLY | O_CLOEXEC);
    if (file < 0 || write(file, "5", 1) != 1) {
        std::fputs("The peak of resident memory cannot be reset: it includes preparations\n",
                   stderr);
    }
    if (file >= 0) close(file);
}

// A function of its own, never inlined: instructions are counted while it runs.
[[gnu::noinline]] void measured_work(const std::function<void()>& work) {
    work();
}

[[noreturn]] void run_and_tell(const Contender& contender, int pipe) {
    CRound round;
    try {
        contender(round);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s\n", fault.what());
        _exit(1);
    }
    std::fflush(stdout);
    const FIGURES& figures = round.m_cFigures;
    _exit(write(pipe, &figures, sizeof figures) == sizeof figures ? 0 : 1);
}

}  // namespace

void CRound::Run(const std::function<void()>& work) {
    malloc_trim(0);
    reset_peak();
    const std::uint64_t resident = memory_line("VmRSS:");
    const double start = cpu_seconds();
    measured_work(work);
    if (m_bOnce) std::_Exit(EXIT_SUCCESS);
    m_cFigures.m_lfSeconds = cpu_seconds() - start;
    m_cFigures.m_uPeak = memory_line("VmHWM:");
    m_cFigures.m_uOverStart = m_cFigures.m_uPeak > resident ? m_cFigures.m_uPeak - resident : 0;
}

std::optional<FIGURES> run_in_child(const Contender& contender) {
    int ends[2];
    if (pipe(ends) != 0) return std::nullopt;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) run_and_tell(contender, ends[1]);
    close(ends[1]);
    FIGURES figures;
    const bool told = child > 0 && read(ends[0], &figures, sizeof figures) == sizeof figures;
    close(ends[0]);
    int status = 1;
    if (child > 0) waitpid(child, &status, 0);
    if (told && status == 0) return figures;
    std::fprintf(stderr, "A round failed: %s %d\n", WIFSIGNALED(status) ? "signal" : "exit status",
                 WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status));
    return std::nullopt;
}

}  // namespace tessel::bench
