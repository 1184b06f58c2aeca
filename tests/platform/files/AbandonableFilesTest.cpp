#include "platform/files/AbandonableFiles.h"

#include "tests/platform/files/FilesFixture.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace mirovane {
namespace {

using namespace test;

/// The real calls, but a share that went away holds them until it is back, and heeds nothing.
class HangingCalls final : public CFileCalls {
public:
    void hang(bool on) {
        const std::lock_guard lock(mutex_);
        hangs_ = on;
        changed_.notify_all();
    }
    int statusAt(const std::string& path, struct stat& status) override {
        wait();
        return CFileCalls::statusAt(path, status);
    }
    int rename(const std::string& from, const std::string& to) override {
        const int done = CFileCalls::rename(from, to);
        if (std::exchange(hangAfterRename, false))
            hang(true);
        wait();
        return done;
    }
    std::size_t waiting() {
        const std::lock_guard lock(mutex_);
        return waiting_;
    }
    bool hangAfterRename = false;

private:
    void wait() {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.wait(lock, [this] { return !hangs_; });
        --waiting_;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool hangs_ = false;
    std::size_t waiting_ = 0;
};

class AbandonableFilesTest : public FilesFixture {
protected:
    ~AbandonableFilesTest() override {
        hanging->hang(false);
        while (hanging->waiting() > 0)
            std::this_thread::yield();
    }
    bool answersAgain(CAbandonableFiles& asked) {
        hanging->hang(false);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!asked.status(path) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return asked.status(path).ok();
    }

    std::shared_ptr<HangingCalls> hanging = std::make_shared<HangingCalls>();
    /// A call that was given up may use them when the test is over.
    std::shared_ptr<CPosixFiles> posix{new CPosixFiles(*hanging, backup.path()),
                                       [calls = hanging](CPosixFiles* done) {
                                           delete done;
                                       }};
    static constexpr std::chrono::milliseconds span{300};
    CAbandonableFiles share{posix, {span, span, span}};
};

TEST_F(AbandonableFilesTest, AShareThatHangsIsAskedOnceAndUsedAgainWhenItIsBack) {
    writeBytes(path, before);
    ASSERT_FALSE(save(share, path, before));
    hanging->hang(true);
    for (int ticks = 0; ticks < 200; ++ticks) {
        const auto status = share.status(path);
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().kind, FileError::Kind::NotAnswering);
        EXPECT_EQ(save(share, path, after)->kind, FileError::Kind::NotAnswering);
    }
    EXPECT_EQ(hanging->waiting(), 1U) << "threads must not pile up";
    EXPECT_EQ(readBytes(path), before);
    const TestFolder elsewhere;
    writeBytes(elsewhere.file("other.mv"), before);
    ASSERT_TRUE(answersAgain(share));
    EXPECT_FALSE(save(share, path, after));
    EXPECT_EQ(readBytes(path), after);
}

/// A line on which every answer takes longer than a frame must not look like a share that is gone; but an
/// answer from before a save would look like another station's.
TEST_F(AbandonableFilesTest, AnAnswerThatComesLateIsTheNextOneUnlessTheFileWasUsed) {
    CAbandonableFiles slow(posix,
                           {std::chrono::milliseconds(0), std::chrono::hours(1), std::chrono::hours(1)});
    const auto settled = [&] {
        while (hanging->waiting() > 0)
            std::this_thread::yield();
        return slow.lock(folder.file("none"), FileAccess::Read, patience); // waits until nothing is under way
    };
    writeBytes(path, before);
    hanging->hang(true);
    ASSERT_FALSE(slow.status(path));
    while (hanging->waiting() == 0)
        std::this_thread::yield();
    hanging->hang(false);
    Result<FileIdentity, FileError> answer = slow.status(path);
    while (!answer)
        answer = slow.status(path);
    EXPECT_EQ(answer.value().size, before.size());

    hanging->hang(true);
    answer = slow.status(path);
    ASSERT_FALSE(answer);
    hanging->hang(false);
    settled();
    while (save(slow, path, after))
        std::this_thread::yield();
    answer = slow.status(path);
    while (!answer)
        answer = slow.status(path);
    EXPECT_EQ(answer.value().size, after.size()) << "asked before the save";
}

/// The new file was in place when the share went: the next save must find that out, and find no lock of ours.
TEST_F(AbandonableFilesTest, ASaveThatWasGivenUpIsWholeAndLetsGoOfItsLock) {
    writeBytes(path, before);
    CAbandonableFiles slow(posix, {span, span, std::chrono::hours(1)});
    auto locked = slow.lock(path, FileAccess::Write, patience);
    ASSERT_TRUE(locked);
    hanging->hangAfterRename = true;
    // Long before the hour is over that a transfer may take.
    const auto replaced = locked.value()->replace(after);
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().kind, FileError::Kind::NotAnswering);
    locked.value().reset();
    ASSERT_TRUE(answersAgain(slow));
    EXPECT_EQ(readBytes(path), after);
    EXPECT_FALSE(save(files, path, before)) << "another station can have the file";
}

} // namespace
} // namespace mirovane
