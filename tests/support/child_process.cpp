#include "tests/support/child_process.h"

#include <grp.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace tessel::test {
namespace {

constexpr int kThrown = 99;
constexpr unsigned kNobody = 65534;

[[noreturn]] void run(const std::function<int()>& action) {
    int status = kThrown;
    try {
        status = action();
    } catch (const std::exception& thrown) {
        std::cout << "thrown: " << thrown.what() << '\n';
    }
    std::exit(status);
}

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

}  // namespace

CChild::CChild(const std::function<int()>& action) {
    std::cout << std::flush;
    std::fflush(nullptr);
    int ends[2];
    require(pipe(ends) == 0, "no pipe");
    m_nOutput = ends[0];
    m_nProcess = fork();
    require(m_nProcess >= 0, "no child process");
    if (m_nProcess == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        run(action);
    }
    close(ends[1]);
}

CChild::~CChild() {
    if (m_nProcess <= 0) return;
    Kill();
    Wait();
}

void CChild::Kill() const {
    kill(m_nProcess, SIGKILL);
}

CHILD_END CChild::Wait() {
    CHILD_END end;
    char buffer[4096];
    for (ssize_t count; (count = read(m_nOutput, buffer, sizeof buffer)) > 0;)
        end.m_strOutput.append(buffer, static_cast<std::size_t>(count));
    close(m_nOutput);
    int status = 0;
    waitpid(m_nProcess, &status, 0);
    m_nProcess = -1;
    if (WIFEXITED(status)) end.m_nExit = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end.m_nSignal = WTERMSIG(status);
    return end;
}

CHILD_END run_in_child(const std::function<int()>& action) {
    return CChild(action).Wait();
}

void limit_file_size(std::size_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit;
    limit.rlim_cur = limit.rlim_max = static_cast<rlim_t>(bytes);
    require(setrlimit(RLIMIT_FSIZE, &limit) == 0, "no limit of the file size");
}

void signal_often() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval timer = {{0, 500}, {0, 500}};
    require(setitimer(ITIMER_REAL, &timer, nullptr) == 0, "no timer");
}

void become_unprivileged() {
    if (geteuid() != 0) return;
    require(setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0,
            "root's rights stay");
}

}  // namespace tessel::test
