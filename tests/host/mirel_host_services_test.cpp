#include <fcntl.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/admin.h"
#include "platform/services.h"

namespace {

namespace fs = std::filesystem;

/// Each test works in a directory of its own, in which one/bin/kato can be run.
class Services : public testing::Test {
 protected:
  Services() {
    fs::create_directories(here + "/one/bin");
    fs::current_path(here);
    std::ofstream("one/bin/kato") << "";
    fs::permissions("one/bin/kato", fs::perms(0755));
  }
  ~Services() override {
    setenv("PATH", m_path.c_str(), 1);
    fs::current_path("/");
    fs::remove_all(here);
  }

  static unsigned int writeFile(const char* path, const std::string& text) {
    OSSHFile file;
    unsigned long written = 7;
    const OSSFileOpenParam open = {OSS_VERSION_STAMP, path, 16, 2, 1, 0644, 0};
    const OSSFileWriteParam write = {OSS_VERSION_STAMP, text.data(), text.size(), 0};
    if (file.open(&open) != 0 || file.write(&write, &written) != 0 || file.sync() != 0) {
      return 1;
    }
    EXPECT_EQ(text.size(), written);
    return file.close();
  }

  static std::string readFile(const char* path) {
    OSSHFile file;
    unsigned long size = 7;
    const OSSFileOpenParam open = {OSS_VERSION_STAMP, path, 1, 1, 0, 0, 0};
    EXPECT_EQ(0U, file.open(&open));
    EXPECT_EQ(0U, file.getSize(&size));
    std::string text(size, '?');
    const OSSFileReadParam read = {OSS_VERSION_STAMP, size, 0};
    EXPECT_EQ(0U, file.read(&read, text.data(), &size));
    EXPECT_EQ(0U, file.close());
    return text.substr(0, size);
  }

  const std::string here = fs::temp_directory_path() / ("mirel-services-" + std::to_string(getpid()));

 private:
  const std::string m_path = getenv("PATH");
};

TEST_F(Services, FilesAreReplacedAndReadWhole) {
  for (const std::string& text : {std::string(3000000, 'x'), std::string("short\0text", 10), std::string()}) {
    EXPECT_EQ(0U, writeFile("out", text));
    EXPECT_TRUE(text == readFile("out")) << text.size();
  }
  EXPECT_EQ(fs::perms(0644), fs::status("out").permissions());
  std::string version;
  std::getline(std::ifstream("/proc/version"), version);
  EXPECT_EQ(version + "\n", readFile("/proc/version"));  // of size 0, if one asks fstat
}

TEST_F(Services, WhatIsNoFileIsNotWritten) {
  mkfifo("fifo", 0600);
  for (const char* path : {"fifo", ".", "missing/file"}) {
    EXPECT_NE(0U, writeFile(path, "x")) << path;
  }
}

// The driver of PostgreSQL sets the locale of the process. A Turkish one knows no upper case of "i" in a
// byte, and columns were not found by their names.
TEST_F(Services, LocaleOfTheProcessIsNotThatOfTheRun) {
  EXPECT_EQ(0U, ossOneTimeOnly());
  EXPECT_NE(nullptr, setlocale(LC_ALL, "C.UTF-8"));
  EXPECT_EQ(1U, MB_CUR_MAX);
}

// What does not fit into a pipe waits for its reader.
TEST_F(Services, SlowReaderGetsAll) {
  FILE* reader = popen("sleep 0.1; wc -c > count", "w");
  writeFile(("/dev/fd/" + std::to_string(fileno(reader))).c_str(), std::string(1000000, 'x'));
  pclose(reader);
  EXPECT_EQ("1000000\n", readFile("count"));
}

TEST_F(Services, InstallPathIsAboveTheBinThatHasTheProgram) {
  fs::create_directories("directory/bin/kato");
  fs::create_directories("plain/bin");
  std::ofstream("plain/bin/kato") << "no permission to run it";
  fs::create_directory_symlink("one/bin", "bin");
  char buffer[1025];
  for (const auto& [path, expected] : {
           std::pair(here + "/none:/usr/bin:plain/bin:directory/bin:" + here + "/one/bin/:", here + "/one"),
           {here + "/bin", here},  // links are kept: the files of the instance are beside them
           {"/usr/bin:plain/bin", "failed"},
           {"", "failed"},
       }) {
    setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(expected, sqloInstallPath(sizeof buffer, buffer) == 0 ? buffer : "failed") << path;
  }
  fs::current_path("one/bin");
  setenv("PATH", "/usr/bin::/bin", 1);  // the empty element is the current directory
  EXPECT_EQ(0, sqloInstallPath(here.size() + 5, buffer));
  EXPECT_EQ(here + "/one", buffer);
  EXPECT_NE(0, sqloInstallPath(here.size() + 4, buffer));
}

TEST_F(Services, DatabasePathsLeadToTheConfiguration) {
  setenv("PATH", "one/bin", 1);
  char path[256];
  for (const std::string& name :
       {std::string(), std::string(".."), std::string("A/B"), std::string(256, 'A')}) {
    EXPECT_NE(0, sqlfGetGDBPath(name.c_str(), path, 1)) << name;
  }
  int handle = 7;
  unsigned long received = 7;
  EXPECT_NE(0, sqloopenp(".", 52, 0640, &handle, 0, 1));
  EXPECT_NE(0, sqloread(handle, sizeof path, path, &received));
  EXPECT_NE(0, sqloclose(handle));
}

}  // namespace
