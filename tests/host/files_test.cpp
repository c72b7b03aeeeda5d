// Files on a real disk: written whole or not at all.
#include "host/files.h"

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <csignal>

#include "scratch.h"

namespace gainsmith::test {
namespace {

struct FilesTest : Scratch {
  // What lies in the test's directory, or below it.
  QStringList Names(const std::string& below = ".") {
    return QDir(QString::fromStdString(Path(below))).entryList(QDir::Files | QDir::Hidden);
  }
};

TEST_F(FilesTest, AreReadAndWrittenWhole) {
  const std::string bytes("a\0b\r\n\xff", 6);
  ASSERT_TRUE(WriteWholeFile(Path("f"), "old, and longer than the new"));
  ASSERT_TRUE(WriteWholeFile(Path("f"), bytes));
  EXPECT_EQ(ReadAll(Path("f")), bytes);
  EXPECT_EQ(ReadAll(Path("missing")), std::nullopt);
  EXPECT_EQ(ReadAll(Path(".")), std::nullopt);
  EXPECT_FALSE(WriteWholeFile(Path("no/such/place"), bytes));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  EXPECT_FALSE(WriteWholeFile(Path("fifo"), bytes));
  EXPECT_EQ(ReadAll(Path("fifo")), std::nullopt);
  EXPECT_EQ(ReadAll("/dev/zero"), std::nullopt);
}

TEST_F(FilesTest, OnAFullDiskTheOldFileStays) {
  constexpr std::size_t Room = 4096;
  // Less and more than what is buffered before anything is written.
  constexpr std::size_t Sizes[] = {2 * Room, 50 * Room};
  ASSERT_TRUE(WriteWholeFile(Path("f"), "old"));
  for (const std::size_t size : Sizes) {
    const auto write = [&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{Room, Room};
      setrlimit(RLIMIT_FSIZE, &limit);
      _exit(WriteWholeFile(Path("f"), std::string(size, 'x')) ? 1 : 0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "") << "told as written: " << size;
    EXPECT_TRUE(ReadAll(Path("f")) == "old") << size;
    EXPECT_EQ(Names(), QStringList{"f"});
  }

  // The same on a file system that is really full, where the test may make one.
  ASSERT_EQ(mkdir(Path("disk").c_str(), 0700), 0);
  if (mount("tmpfs", Path("disk").c_str(), "tmpfs", 0, "size=8k") != 0) return;
  ASSERT_TRUE(WriteWholeFile(Path("disk/f"), "old"));
  for (const std::size_t size : Sizes) {
    EXPECT_FALSE(WriteWholeFile(Path("disk/f"), std::string(size, 'x')));
    EXPECT_TRUE(ReadAll(Path("disk/f")) == "old") << size;
    EXPECT_EQ(Names("disk"), QStringList{"f"});
  }
  EXPECT_EQ(umount(Path("disk").c_str()), 0);
}

}  // namespace
}  // namespace gainsmith::test
