#include "engine/CrashReport.h"

#include <csignal>
#include <cstdint>
#include <cstring>

#include <execinfo.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace orvel {

namespace {

const int FATAL_SIGNALS[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
const int MAX_FRAMES = 64;

const char* reportedProgram = "program";
timespec installedAt = {};
// A stack of its own for the handler, so that the main thread can still report when it overflowed
// its stack. Other threads have none: the handler runs on their own stacks.
char alternateStack[64 * 1024];

// Bounded appending into a fixed buffer; always leaves it terminated.
struct Line {
    char* out;
    unsigned size;
    unsigned used;

    void add(const char* text) {
        while (*text && used + 1 < size) out[used++] = *text++;
        out[used] = 0;
    }
    // Digits are written from the end of the buffer backwards, lowest first, at least `digits`
    // of them.
    void addNumber(unsigned long value, unsigned base, int digits = 1) {
        char text[24];
        char* digit = text + sizeof text;
        *--digit = 0;
        int written = 0;
        do {
            *--digit = "0123456789abcdef"[value % base];
            value /= base;
            ++written;
        } while (value || written < digits);
        add(digit);
    }
};

unsigned long millisecondsSince(const timespec& start) {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (unsigned long)((now.tv_sec - start.tv_sec) * 1000 + (now.tv_nsec - start.tv_nsec) / 1000000);
}

void writeAll(const char* text, size_t length) {
    while (length > 0) {
        const ssize_t written = write(STDERR_FILENO, text, length);
        if (written <= 0) return;
        text += written;
        length -= (size_t)written;
    }
}

void onFatalSignal(int signal, siginfo_t* info, void*) {
    char name[17] = {};
    prctl(PR_GET_NAME, name, 0, 0, 0);
    // A fault names its address; the same signal sent by a process (si_code 0 or less) has none.
    const bool faulted = info->si_code > 0 && signal != SIGABRT;
    CrashReport::Fault fault = {};
    fault.signal = signal;
    fault.hasAddress = faulted;
    fault.address = (uintptr_t)info->si_addr;
    fault.threadId = (long)syscall(SYS_gettid);
    fault.threadName = name;
    fault.runningMs = millisecondsSince(installedAt);
    char line[256];
    CrashReport::describe(line, sizeof line, reportedProgram, fault);
    writeAll(line, strlen(line));
    writeAll("\n", 1);
    void* frames[MAX_FRAMES];
    const int count = backtrace(frames, MAX_FRAMES);
    backtrace_symbols_fd(frames, count, STDERR_FILENO);
    // The handler was reset as it ran. A fault happens again when the instruction does, now
    // under the default action; a signal that was sent is sent again.
    if (!faulted) raise(signal);
}

} // namespace

void CrashReport::describe(char* out, unsigned size, const char* program, const Fault& fault) {
    if (size == 0) return;
    Line line{out, size, 0};
    out[0] = 0;
    line.add(program);
    line.add(": fatal signal ");
    line.addNumber((unsigned long)fault.signal, 10);
    // The C library's own table of names ("SEGV"), which a signal handler may read.
    const char* name = sigabbrev_np(fault.signal);
    line.add(" (SIG");
    line.add(name ? name : "?");
    line.add(")");
    if (fault.hasAddress) {
        line.add(" at address 0x");
        line.addNumber((unsigned long)fault.address, 16);
    }
    line.add(" in thread ");
    line.addNumber((unsigned long)fault.threadId, 10);
    line.add(" \"");
    line.add(fault.threadName);
    line.add("\" after ");
    line.addNumber(fault.runningMs / 1000, 10);
    line.add(".");
    line.addNumber(fault.runningMs % 1000, 10, 3);
    line.add(" s; its stack:");
}

void CrashReport::install(const char* program) {
#if defined(__SANITIZE_ADDRESS__)
    (void)program;
#else
    reportedProgram = program;
    clock_gettime(CLOCK_MONOTONIC, &installedAt);
    // The first backtrace loads the unwinder, which allocates: done here, not in the handler.
    void* frames[2];
    backtrace(frames, 2);
    stack_t stack = {};
    stack.ss_sp = alternateStack;
    stack.ss_size = sizeof alternateStack;
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_sigaction = onFatalSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESETHAND;
    sigemptyset(&action.sa_mask);
    for (int signal : FATAL_SIGNALS) sigaction(signal, &action, nullptr);
#endif
}

} // namespace orvel
