// Linked into every test executable that can touch the marker file "/tmp/FramerateAdjust" (Part 1.5; see
// tests/CMakeLists.txt). CTest's RESOURCE_LOCK keeps such tests apart within one ctest run; this lock keeps
// them apart across runs, when the suites of several build folders run at once (default and asan, say):
// the process holds an exclusive lock on a file beside the marker for as long as its test runs.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

constexpr const char *kLockFile = "/tmp/FramerateAdjust.isptune-tests.lock";

class MarkerLock : public ::testing::Environment {
public:
    void SetUp() override
    {
        fd_ = open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        ASSERT_GE(fd_, 0) << "cannot open " << kLockFile;
        ASSERT_EQ(flock(fd_, LOCK_EX), 0) << "cannot lock " << kLockFile;
    }
    void TearDown() override
    {
        if (fd_ >= 0)
            close(fd_); // releases the lock
        fd_ = -1;
    }

private:
    int fd_ = -1;
};

// GoogleTest owns and deletes the environment.
[[maybe_unused]] ::testing::Environment *const kRegistered = ::testing::AddGlobalTestEnvironment(new MarkerLock);

} // namespace
