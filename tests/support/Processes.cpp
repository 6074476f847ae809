#include "tests/support/Processes.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace processes {

namespace {

// The file `name` under /proc/<pid>, or under /proc/self for pid 0.
FILE* openProcFile(int pid, const char* name) {
    char path[64];
    if (pid > 0)
        snprintf(path, sizeof path, "/proc/%d/%s", pid, name);
    else
        snprintf(path, sizeof path, "/proc/self/%s", name);
    return fopen(path, "r");
}

} // namespace

pid_t spawnQuietly(const char* path, char* const argv[], const char* setting) {
    const char* equals = strchr(setting, '=');
    const size_t nameLength = equals ? (size_t)(equals - setting) + 1 : strlen(setting);
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e) {
        if (strncmp(*e, setting, nameLength) != 0) env.emplace_back(*e);
    }
    env.emplace_back(setting);
    std::vector<char*> envp;
    for (std::string& s : env) envp.push_back(&s[0]);
    envp.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int status = posix_spawn(&pid, path, &actions, nullptr, argv, envp.data());
    posix_spawn_file_actions_destroy(&actions);
    return status == 0 ? pid : -1;
}

double peakResidentKib(int pid) {
    FILE* file = openProcFile(pid, "status");
    if (!file) return -1.0;
    char line[256];
    double kib = -1.0;
    while (fgets(line, sizeof line, file)) {
        // "VmHWM:     123456 kB"
        if (strncmp(line, "VmHWM:", 6) == 0) {
            long value = 0;
            if (sscanf(line + 6, "%ld", &value) == 1) kib = (double)value;
            break;
        }
    }
    fclose(file);
    return kib;
}

double cpuSeconds(int pid) {
    FILE* file = openProcFile(pid, "stat");
    if (!file) return -1.0;
    char line[1024];
    const bool read = fgets(line, sizeof line, file) != nullptr;
    fclose(file);
    if (!read) return -1.0;
    // "pid (name) state ..." with utime and stime the 14th and 15th fields; the name may hold
    // spaces and brackets, so the fields are counted from its last ')'.
    const char* rest = strrchr(line, ')');
    if (!rest) return -1.0;
    unsigned long utime = 0;
    unsigned long stime = 0;
    if (sscanf(rest + 1, " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &utime, &stime) != 2) return -1.0;
    return (double)(utime + stime) / (double)sysconf(_SC_CLK_TCK);
}

int runUnprivileged(const std::function<int()>& body) {
    const uid_t NOBODY = 65534;
    const pid_t child = fork();
    if (child < 0) return -1;
    if (child == 0) {
        if (geteuid() == 0 && (setgid(NOBODY) != 0 || setuid(NOBODY) != 0)) _exit(126);
        _exit(body() & 0xff);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

} // namespace processes
