#pragma once
// A crash that leaves its trace: on a fatal signal, one line naming the signal, the thread that
// met it and how long the program had run, then that thread's stack, go to standard error; the
// signal then ends the process as it would have without the report (same exit status, same core
// dump).

#include <cstdint>

namespace orvel {

class CrashReport {
public:
    CrashReport() = delete;

    // What the line tells of one fatal signal.
    struct Fault {
        int signal;
        bool hasAddress; // a fault at an address, not a signal another process sent
        uintptr_t address;
        long threadId;
        const char* threadName;
        unsigned long runningMs; // since install()
    };

    // Installs the report for SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGABRT, each line starting with
    // `program` (kept, not copied), and starts its clock. Builds with AddressSanitizer keep the
    // sanitizer's own report.
    static void install(const char* program);

    // The line for `fault`, without the newline, written into `out` (at most `size` bytes with
    // the terminating zero). Uses nothing a signal handler may not.
    static void describe(char* out, unsigned size, const char* program, const Fault& fault);
};

} // namespace orvel
