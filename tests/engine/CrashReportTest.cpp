// The report a fatal signal leaves on standard error, from a real fault in a child process.

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <sys/prctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "engine/CrashReport.h"

using orvel::CrashReport;

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define SKIP_UNDER_SANITIZER() GTEST_SKIP() << "AddressSanitizer reports fatal signals itself"
#else
#define SKIP_UNDER_SANITIZER()
#endif

std::string described(unsigned size, int signal, bool hasAddress, uintptr_t address, long thread,
                      const char* name, unsigned long runningMs = 3418) {
    char out[512];
    CrashReport::describe(out, size, "nightvector", {signal, hasAddress, address, thread, name, runningMs});
    return out;
}

TEST(CrashReportTest, TheLineNamesSignalAddressThreadAndRunningTime) {
    EXPECT_EQ(described(512, SIGSEGV, true, 0x7f3a00001000, 4242, "llvmpipe-0"),
              "nightvector: fatal signal 11 (SIGSEGV) at address 0x7f3a00001000 in thread 4242 "
              "\"llvmpipe-0\" after 3.418 s; its stack:");
}

TEST(CrashReportTest, ANullAddressIsNamedToo) {
    EXPECT_EQ(
        described(512, SIGBUS, true, 0, 7, "nightvector"),
        "nightvector: fatal signal 7 (SIGBUS) at address 0x0 in thread 7 \"nightvector\" after 3.418 s; its "
        "stack:");
}

TEST(CrashReportTest, ASignalWithoutAnAddressNamesNone) {
    EXPECT_EQ(described(512, SIGABRT, false, 0x1234, 99, ""),
              "nightvector: fatal signal 6 (SIGABRT) in thread 99 \"\" after 3.418 s; its stack:");
}

TEST(CrashReportTest, TheRunningTimeKeepsThreeDigitsOfMilliseconds) {
    EXPECT_EQ(described(512, SIGFPE, false, 0, 1, "x", 0),
              "nightvector: fatal signal 8 (SIGFPE) in thread 1 \"x\" after 0.000 s; its stack:");
    EXPECT_EQ(described(512, SIGFPE, false, 0, 1, "x", 7),
              "nightvector: fatal signal 8 (SIGFPE) in thread 1 \"x\" after 0.007 s; its stack:");
    EXPECT_EQ(described(512, SIGFPE, false, 0, 1, "x", 61050),
              "nightvector: fatal signal 8 (SIGFPE) in thread 1 \"x\" after 61.050 s; its stack:");
    EXPECT_EQ(described(512, SIGFPE, false, 0, 1, "x", 123456),
              "nightvector: fatal signal 8 (SIGFPE) in thread 1 \"x\" after 123.456 s; its stack:");
}

TEST(CrashReportTest, AShortBufferKeepsTheStartAndIsTerminated) {
    EXPECT_EQ(described(10, SIGSEGV, true, 0, 1, "x"), "nightvect");
    EXPECT_EQ(described(1, SIGSEGV, true, 0, 1, "x"), "");
}

// Writes through a null pointer the optimiser cannot see through.
void faultOnNull() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

class CrashReportDeathTest : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// In the child: the report installed, this thread named `name`, then `end` run.
void reportedEnd(const char* name, void (*end)()) {
    CrashReport::install("tester");
    prctl(PR_SET_NAME, name, 0, 0, 0);
    end();
}

TEST_F(CrashReportDeathTest, AFaultInTheMainThreadReportsItsAddressAndStackThenDiesOfIt) {
    SKIP_UNDER_SANITIZER();
    EXPECT_EXIT(
        reportedEnd("main-thread", faultOnNull), ::testing::KilledBySignal(SIGSEGV),
        "^tester: fatal signal 11 \\(SIGSEGV\\) at address 0x0 in thread [0-9]+ \"main-thread\" after "
        "[0-9]+\\.[0-9]{3} s; its stack:\n"
        "(.*\\[0x[0-9a-f]+\\]\n){3,}$");
}

TEST_F(CrashReportDeathTest, AFaultInAnotherThreadNamesThatThread) {
    SKIP_UNDER_SANITIZER();
    EXPECT_EXIT(reportedEnd("main-thread",
                            [] {
                                std::thread worker([] {
                                    prctl(PR_SET_NAME, "decoder", 0, 0, 0);
                                    faultOnNull();
                                });
                                worker.join();
                            }),
                ::testing::KilledBySignal(SIGSEGV),
                "^tester: fatal signal 11 \\(SIGSEGV\\) at address 0x0 in thread [0-9]+ \"decoder\" after "
                "[0-9]+\\.[0-9]{3} s; its stack:\n");
}

TEST_F(CrashReportDeathTest, AnAbortIsReportedWithoutAnAddressAndStillAborts) {
    SKIP_UNDER_SANITIZER();
    EXPECT_EXIT(reportedEnd("aborting", [] { abort(); }), ::testing::KilledBySignal(SIGABRT),
                "^tester: fatal signal 6 \\(SIGABRT\\) in thread [0-9]+ \"aborting\" after [0-9]+\\.[0-9]{3} "
                "s; its stack:\n");
}

TEST_F(CrashReportDeathTest, ASegmentationSignalSentByAnotherProcessEndsTheProgramWithoutAnAddress) {
    SKIP_UNDER_SANITIZER();
    EXPECT_EXIT(reportedEnd("sent-to",
                            [] {
                                kill(getpid(), SIGSEGV);
                                // Not reached: the signal is sent again with its default action.
                                std::_Exit(0);
                            }),
                ::testing::KilledBySignal(SIGSEGV),
                "^tester: fatal signal 11 \\(SIGSEGV\\) in thread [0-9]+ \"sent-to\" after [0-9]+\\.[0-9]{3} "
                "s; its stack:\n");
}

} // namespace
