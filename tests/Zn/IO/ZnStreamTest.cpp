//===- ZnStreamTest.cpp - File, descriptor, data and sub-streams -----------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnDataStream.h"
#include "Zn/IO/ZnFileDescriptorStream.h"
#include "Zn/IO/ZnFileStream.h"
#include <fcntl.h>
#include <string>
#include <unistd.h>

using namespace Zn;

namespace {
class StreamTest : public ZnTest::LeakCheckedTest {
protected:
  void SetUp() override {
    LeakCheckedTest::SetUp();
    // Tests run in parallel processes: one file each.
    path_ = testing::TempDir() + "ZnStreamTest." + std::to_string(getpid()) + ".txt";
    FILE* file = std::fopen(path_.c_str(), "wb");
    std::fputs("0123456789", file);
    std::fclose(file);
  }
  void TearDown() override {
    unlink(path_.c_str());
    LeakCheckedTest::TearDown();
  }
  std::string path_;
};
using StreamDeathTest = StreamTest;

std::string Read(Stream* theStream, ZnIndex theCount) {
  uint8_t buffer[64];
  ZnIndex got = theStream->read(buffer, theCount, -1.0);
  return got < 0 ? "(none)" : std::string(reinterpret_cast<char*>(buffer), size_t(got));
}
} // namespace

TEST_F(StreamTest, ReadOnlyFileStopsAtItsEndWritableOneDoesNot) {
  EXPECT_EQ(FilePointerStream::createForReading("/nonexistent-dir/x"), nullptr);
  auto file = adopt(FilePointerStream::createForReading(path_.c_str()));
  ASSERT_TRUE(file);
  EXPECT_EQ(file->getLength(), 10);
  EXPECT_EQ(file->skip(3), 3);
  EXPECT_EQ(Read(file.get(), 2), "34");
  EXPECT_FALSE(file->setPosition(11));
  EXPECT_TRUE(file->setPosition(8));
  EXPECT_EQ(file->skip(5), 2);
  EXPECT_EQ(Read(file.get(), 4), "");
  auto writer = adopt(FilePointerStream::createForWriting(path_.c_str(), true));
  EXPECT_EQ(writer->getLength(), 10);
  EXPECT_TRUE(writer->setPosition(12));
  // The cached length follows the writes.
  EXPECT_EQ(writer->write(reinterpret_cast<const uint8_t*>("ab"), 2), 2);
  EXPECT_EQ(writer->getLength(), 14);
  // "rwb" opens read-only, yet the stream calls itself writable.
  auto both = adopt(FilePointerStream::createForReadingAndWriting(path_.c_str()));
  EXPECT_TRUE(both->isReadable() && both->isWritable());
}

TEST_F(StreamTest, SkipOnAPipeReadsAndDiscards) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  ASSERT_EQ(write(fds[1], "abcdefg", 7), 7);
  close(fds[1]);
  auto name = adopt(new String("pipe"));
  auto pipeStream = adopt(FilePointerStream::createWithFile(name.get(), true, false, fdopen(fds[0], "rb"), true));
  EXPECT_EQ(pipeStream->getLength(), -1);
  EXPECT_EQ(pipeStream->skip(3), 3);
  EXPECT_EQ(pipeStream->getReadCount(), 3);
  EXPECT_EQ(Read(pipeStream.get(), 10), "defg");
  EXPECT_EQ(pipeStream->skip(2), 0);
}

TEST_F(StreamTest, SubStreamStaysInsideItsWindow) {
  auto file = adopt(FilePointerStream::createForReading(path_.c_str()));
  auto window = adopt(new SubStream(file.get(), 2, 5));
  EXPECT_EQ(Read(window.get(), 3), "234");
  EXPECT_EQ(Read(window.get(), 50), "56");
  EXPECT_EQ(Read(window.get(), 50), "");
  EXPECT_EQ(file->getReadCount(), 5);
  EXPECT_TRUE(window->setPosition(1));
  EXPECT_EQ(Read(window.get(), 2), "34");
}

TEST_F(StreamTest, DescriptorStreamTimesOutAndClosesASharedDescriptorOnce) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  auto in = adopt(new FileDescriptorStream(nullptr, fds[0], -1, true));
  auto out = adopt(new FileDescriptorStream(nullptr, -1, fds[1], false));
  uint8_t buffer[8];
  EXPECT_EQ(in->read(buffer, 8, 0.0), 0);
  EXPECT_EQ(out->write(reinterpret_cast<const uint8_t*>("xyz"), 3), 3);
  EXPECT_EQ(in->read(buffer, 3, 5.0), 3);
  EXPECT_EQ(out->read(buffer, 1, -1.0), -1);
  EXPECT_EQ(in->write(buffer, 1), -1);
  // Counters: the position is what was consumed on both sides.
  in->addToReadCount(3);
  EXPECT_EQ(in->getPosition(), 3);
  in = nullptr;
  EXPECT_EQ(fcntl(fds[0], F_GETFD), -1);
  EXPECT_NE(fcntl(fds[1], F_GETFD), -1);
  auto both = adopt(new FileDescriptorStream(nullptr, fds[1], fds[1], true));
  both = nullptr;
  EXPECT_EQ(fcntl(fds[1], F_GETFD), -1);
}

TEST_F(StreamTest, DataStreamReadsToItsEndAndGrowsByDoubling) {
  auto bytes = adopt(new Data("abc", 3));
  auto reader = adopt(Data::createReadStream(bytes.get()));
  EXPECT_EQ(reader->skip(2), 2);
  EXPECT_EQ(Read(reader.get(), 5), "c");
  EXPECT_EQ(Read(reader.get(), 5), "");
  EXPECT_FALSE(reader->setPosition(4));
  EXPECT_EQ(reader->write(reinterpret_cast<const uint8_t*>("x"), 1), -1);
  auto data = adopt(new MutableData());
  auto writer = adopt(Data::createWriteStream(data.get()));
  EXPECT_EQ(writer->write(reinterpret_cast<const uint8_t*>("a"), 1), 1);
  EXPECT_EQ(data->getCapacity(), 1);
  EXPECT_EQ(writer->write(reinterpret_cast<const uint8_t*>("bcd"), 3), 3);
  EXPECT_EQ(data->getCapacity(), 4);
  EXPECT_TRUE(writer->setPosition(1));
  writer->write(reinterpret_cast<const uint8_t*>("X"), 1);
  EXPECT_EQ(Read(writer.get(), 1), "(none)");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(data->getBytesPtr()), 4), "aXcd");
  auto file = adopt(FilePointerStream::createForReading(path_.c_str()));
  auto all = adopt(Data::dataWithContentsOfStream(file.get()));
  EXPECT_EQ(all->getLength(), 10);
  EXPECT_EQ(file->getReadCount(), 10);
}

TEST_F(StreamDeathTest, BrokenConstructionIsReported) {
  EXPECT_EXIT(adopt(new FileDescriptorStream(nullptr, -1, -1, false)), testing::ExitedWithCode(255),
              "\"readable \\|\\| writable\"");
  auto file = adopt(FilePointerStream::createForReading(path_.c_str()));
  EXPECT_EXIT(adopt(new SubStream(file.get(), 8, 3)), testing::ExitedWithCode(255),
              "theStart \\+ theLength <= streamLength");
  auto bytes = adopt(new Data("abc", 3));
  EXPECT_EXIT(adopt(Data::createWriteStream(bytes.get())), testing::ExitedWithCode(255),
              "!writable \\|\\| \\(dynamic_cast<MutableData\\*>\\(theData\\) != NULL\\)");
}
