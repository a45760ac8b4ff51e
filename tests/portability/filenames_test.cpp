// tests/portability/filenames_test.cpp: the functions of portability/filehandle.h that take names.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "portability/filehandle.h"
#include "tests/support/faults.h"
#include "tests/support/temp_dir.h"

namespace {

class FileNames : public testing::Test {
 protected:
  void SetUp() override { nErrno = 0; }
  orbtest::TempDir folder_;
};

TEST_F(FileNames, TemporaryFileIsMadeAndStays) {
  const struct {
    const char* prefix;
    uint32_t unique, result;
  } cases[] = {{"ab", 0, 1}, {"ab", 7, 7}, {nullptr, 0xFFFFFFFF, 0xFFFFFFFF}, {"", 0, 1}};
  for (const auto& each : cases) {
    char out[512] = "";
    EXPECT_EQ(each.result,
              voxGetTempFileName(folder_.path().c_str(), each.prefix, each.unique, out));
    const std::string start = folder_.path() + "/" + (each.prefix == nullptr ? "" : each.prefix);
    EXPECT_EQ(start, std::string(out).substr(0, start.size()));
    EXPECT_EQ(start.size() + 6, strlen(out));
    EXPECT_STRNE((start + "XXXXXX").c_str(), out);
    EXPECT_TRUE(std::filesystem::exists(out));
    EXPECT_EQ(0u, std::filesystem::file_size(out));
  }
}

TEST_F(FileNames, TemporaryFilesPathHasNoLimit) {
  const std::string part(200, 'd');
  const std::string deep = folder_.make_dir(part + "/" + part + "/" + part);
  char out[1024] = "";
  EXPECT_EQ(1u, voxGetTempFileName(deep.c_str(), std::string(249, 'p').c_str(), 0, out));
  EXPECT_EQ(deep.size() + 1 + 249 + 6, strlen(out));
  EXPECT_TRUE(std::filesystem::exists(out));
}

TEST_F(FileNames, TemporaryFileFailuresLeaveTheTextAlone) {
  char out[64] = "kept";
  EXPECT_EQ(0u, voxGetTempFileName(nullptr, "ab", 1, out));
  EXPECT_EQ(0u, voxGetTempFileName(folder_.path().c_str(), "ab", 1, nullptr));
  EXPECT_EQ(0u, voxGetTempFileName(folder_.path("missing").c_str(), "ab", 1, out));
  EXPECT_EQ(0, nErrno);
  EXPECT_EQ(ENOENT, errno);
  {
    orbtest::MemoryFaults faults(1);
    EXPECT_EQ(0u, voxGetTempFileName(folder_.path().c_str(), "ab", 1, out));
  }
  EXPECT_STREQ("kept", out);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(FileNames, MoveRenamesAndReplaces) {
  const std::string from = folder_.write("from", "new"), to = folder_.write("to", "older");
  EXPECT_EQ(1, voxMoveFile(from.c_str(), to.c_str()));
  EXPECT_FALSE(std::filesystem::exists(from));
  EXPECT_EQ(3u, std::filesystem::file_size(to));
  EXPECT_EQ(0, voxMoveFile(from.c_str(), to.c_str()));
  EXPECT_EQ(38, voxGetLastError());
  EXPECT_EQ(0, voxMoveFile(nullptr, to.c_str()));
  EXPECT_EQ(0, voxMoveFile(to.c_str(), nullptr));
  EXPECT_TRUE(std::filesystem::exists(to));
}

TEST_F(FileNames, AttributesAreAcceptedAndIgnored) {
  EXPECT_EQ(1, voxSetFileAttributes("/nowhere", 1));
  EXPECT_EQ(1, voxSetFileAttributes(nullptr, 0));
}

}  // namespace
