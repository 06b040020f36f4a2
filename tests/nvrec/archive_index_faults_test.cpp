/* An index that cannot be read for the moment, or is in use, is not taken for a damaged one. */
#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/types.h>

#include "archive/archive_reader.h"
#include "archive/index.h"
#include "archive_days.h"

namespace
{

using namespace nvrec;
using archive_days::kHour_us;

using ReadAt = ssize_t (*)(int, void *, size_t, int64_t); /* offsets of SQLite are wide everywhere */

/* While it lives, SQLite reads nothing beyond the first pages of a file: a disk that is lost on the way. */
class LostDisk
{
public:
    LostDisk() : system_(sqlite3_vfs_find(nullptr))
    {
        for (size_t i = 0; i < std::size(kNames); ++i) {
            before_[i] = system_->xGetSystemCall(system_, kNames[i]);
            if (!whole_) whole_ = reinterpret_cast<ReadAt>(before_[i]);
            system_->xSetSystemCall(system_, kNames[i], reinterpret_cast<sqlite3_syscall_ptr>(&read_start));
        }
    }
    ~LostDisk()
    {
        for (size_t i = 0; i < std::size(kNames); ++i)
            system_->xSetSystemCall(system_, kNames[i], before_[i]);
        whole_ = nullptr;
    }

private:
    static constexpr const char *kNames[] = {"pread", "pread64"};
    static constexpr int64_t kGood_bytes = 8 * 4096;

    static ssize_t read_start(int file, void *buffer, size_t bytes, int64_t at)
    {
        if (at < kGood_bytes) return whole_(file, buffer, bytes, at);
        errno = ETIMEDOUT; /* of EIO, SQLite says that the database is damaged */
        return -1;
    }

    static inline ReadAt whole_ = nullptr;
    sqlite3_vfs *system_;
    sqlite3_syscall_ptr before_[std::size(kNames)] = {};
};

class IndexOfADirectory : public testing::Test
{
protected:
    void SetUp() override
    {
        Index index;
        ASSERT_EQ(index.open(scratch_.path()), "");
        ASSERT_NE(index.put_pin(index.camera_number(0, "yard"), {5, 9}), 0);
        Transaction together(index.database());
        for (int hour = 0; hour < 5000; ++hour) {
            ASSERT_TRUE(index.put_segment({0, "yard", "main", "file" + std::to_string(hour), hour * kHour_us,
                                           (hour + 1) * kHour_us, 1000, true}));
        }
        ASSERT_TRUE(together.commit());
    }

    bool is_set_aside() const { return std::filesystem::exists(scratch_.file("nvrec.sqlite.damaged")); }

    ScratchDirectory scratch_;
};

TEST_F(IndexOfADirectory, IsLeftWhereItIsWhenItsDiskDoesNotAnswer)
{
    {
        const LostDisk lost;
        Index index;
        const std::string problem = index.open(scratch_.path());
        EXPECT_NE(problem.find("disk I/O error"), std::string::npos) << problem;
    }
    EXPECT_FALSE(is_set_aside());
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_FALSE(index.made_anew());
    EXPECT_EQ(index.pins().size(), 1u);
    EXPECT_EQ(index.segments({}).size(), 5000u);
}

TEST_F(IndexOfADirectory, IsNotSetAsideByAReaderWhileARecorderIsAtWork)
{
    {
        Index index;
        ASSERT_EQ(index.open(scratch_.path()), "");
        ASSERT_TRUE(index.database().run("PRAGMA user_version = 99"));
    }
    {
        DirectoryLock recorder;
        ASSERT_EQ(recorder.take(scratch_.path()), "");
        Archive archive;
        ASSERT_EQ(open_archive(scratch_.path(), &archive), "");
        EXPECT_TRUE(archive.in_memory) << "there it reads the files";
        EXPECT_FALSE(is_set_aside());
        Index own;
        EXPECT_EQ(own.open(scratch_.path(), OpenedBy::kRecorder), "");
        EXPECT_TRUE(own.made_anew()) << "the recorder itself makes it anew";
    }
    EXPECT_TRUE(is_set_aside());
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_EQ(index.pins().size(), 1u);
}

} // namespace
